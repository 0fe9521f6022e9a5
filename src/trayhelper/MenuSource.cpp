#include "trayhelper/MenuSource.h"

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QTimerEvent>

namespace nevo::trayhelper {

namespace {

constexpr const char* interface = "com.canonical.dbusmenu";
constexpr int answerMilliseconds = 3000;
constexpr int eventMilliseconds = 1000;
/// Programs tell of each row by itself, and some of all of them whenever they are asked for one.
constexpr int pauseMilliseconds = 50;

/// Whether there is no use in asking for more. A program that doesn't know one call may well know
/// the next.
bool isSilence(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ErrorMessage) return false;
    switch (QDBusError(answer).type()) {
        case QDBusError::NoReply:
        case QDBusError::Timeout:
        case QDBusError::TimedOut:
        case QDBusError::ServiceUnknown:
        case QDBusError::Disconnected:
            return true;
        default:
            return false;
    }
}

template <class Receive>
void whenAnswered(const QDBusPendingCall& pending, QObject* receiver, Receive receive) {
    auto* watcher = new QDBusPendingCallWatcher(pending, receiver);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, receiver,
                     [watcher, receive = std::move(receive)] {
                         watcher->deleteLater();
                         receive(watcher->reply());
                     });
}

}  // namespace

MenuSource::MenuSource(const QDBusConnection& sessionBus, const QString& serviceName,
                       const QString& objectPath)
    : bus(sessionBus), service(serviceName), path(objectPath) {
    for (const char* signal : {"LayoutUpdated", "ItemsPropertiesUpdated"}) {
        bus.connect(service, path, interface, signal, this, SLOT(noteChange(QDBusMessage)));
    }
    auto* watcher =
        new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { Q_EMIT gone(); });
}

QDBusMessage MenuSource::call(const char* method) const {
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    // A program that has ended stays so.
    message.setAutoStartService(false);
    return message;
}

void MenuSource::load(int id, bool isNew, QObject* receiver, const Done& done) {
    if (!isNew) {
        askForRows(id, receiver, done);
        return;
    }
    QDBusMessage question = call("AboutToShow");
    question << id;
    whenAnswered(bus.asyncCall(question, answerMilliseconds), receiver,
                 [this, id, receiver, done](const QDBusMessage& answer) {
                     if (isSilence(answer)) {
                         done(std::nullopt);
                     } else {
                         askForRows(id, receiver, done);
                     }
                 });
}

void MenuSource::askForRows(int id, QObject* receiver, const Done& done) {
    constexpr int oneLevel = 1;
    QDBusMessage question = call("GetLayout");
    question << id << oneLevel << QStringList();
    whenAnswered(bus.asyncCall(question, answerMilliseconds), receiver,
                 [done](const QDBusMessage& answer) { done(readLayout(answer)); });
}

void MenuSource::tell(int id, const QString& event) {
    QDBusMessage message = call("Event");
    message << id << event << QVariant::fromValue(QDBusVariant(0)) << inputTime;
    ++untold;
    whenAnswered(bus.asyncCall(message, eventMilliseconds), this,
                 [this](const QDBusMessage&) { noteTold(); });
}

void MenuSource::noteTold() {
    if (--untold == 0 && allTold) allTold();
}

void MenuSource::whenAllIsTold(const std::function<void()>& done) {
    allTold = done;
    if (untold == 0) allTold();
}

void MenuSource::noteChange(const QDBusMessage&) {
    if (!pause.isActive()) pause.start(pauseMilliseconds, this);
}

void MenuSource::timerEvent(QTimerEvent* event) {
    if (event->timerId() != pause.timerId()) return;
    pause.stop();
    Q_EMIT changed();
}

}  // namespace nevo::trayhelper
