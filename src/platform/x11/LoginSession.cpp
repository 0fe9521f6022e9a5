#include "platform/x11/LoginSession.h"

#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace nevo {

namespace {
// A connection of its own, so that it ends with this object.
constexpr const char* connectionName = "nevo-logind";
constexpr const char* service = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char* missing =
    "no logind on the system bus; wake and session changes go unnoticed";
constexpr const char* sessionless =
    "logind knows no session of this program; session changes go unnoticed";

/// Of this program's environment; a program that the user's service manager has started has none
/// there, and logind then takes the user's graphical one.
QString sessionId() {
    QString id = qEnvironmentVariable("XDG_SESSION_ID");
    return id.isEmpty() ? QString("auto") : id;
}
}  // namespace

LoginSession::LoginSession(NotificationCenter& center, LogOutput& output)
    : notifications(center), log(output), bus(connectionName) {
    // When the loop runs: the status items come first.
    QMetaObject::invokeMethod(
        this, [this] { begin(); }, Qt::QueuedConnection);
}

LoginSession::~LoginSession() {
    bus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(connectionName);
}

void LoginSession::begin() {
    bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, connectionName);
    if (!bus.isConnected()) return say(missing);
    bus.connect(service, managerPath, managerInterface, "PrepareForSleep", this,
                SLOT(onPrepareForSleep(bool)));
    findSession();
}

/// Signals come from the session's own path, which "auto" isn't.
void LoginSession::findSession() {
    auto question =
        QDBusMessage::createMethodCall(service, managerPath, managerInterface, "GetSession");
    question << sessionId();
    // Where logind doesn't run, waiting for the bus to start it is of no use.
    question.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        if (!reply.isError()) return watchSession(reply.value().path());
        bool isThere = reply.error().name().startsWith(service);
        say(isThere ? sessionless : missing);
    });
}

void LoginSession::watchSession(const QString& path) {
    bus.connect(service, path, propertiesInterface, "PropertiesChanged", this,
                SLOT(onPropertiesChanged(QString, QVariantMap)));
    bus.connect(service, path, sessionInterface, "Unlock", this, SLOT(onUnlock()));
}

void LoginSession::onPrepareForSleep(bool begins) {
    if (begins) return;
    notifications.post("NSWorkspaceDidWakeNotification");
    notifications.post("NSWorkspaceScreensDidWakeNotification");
}

void LoginSession::onPropertiesChanged(const QString& interface, const QVariantMap& changed) {
    if (interface == sessionInterface && changed.value("Active").toBool()) {
        onUnlock();
    }
}

void LoginSession::onUnlock() {
    notifications.post("NSWorkspaceSessionDidBecomeActiveNotification");
}

void LoginSession::say(const std::string& text) {
    std::string line = "[Nevo] " + text + '\n';
    log.writeStandardError(line);
    log.appendToLogFile(line);
}

}  // namespace nevo
