#include "desktop/FakeNotifier.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>

#include "desktop/Process.h"

namespace nevo::desktoptest {

namespace {

constexpr const char* connectionName = "fake-notifier";
constexpr const char* interface = "org.kde.StatusNotifierItem";
constexpr const char* watcher = "org.kde.StatusNotifierWatcher";

struct Pixmap {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Pixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.pixels;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Pixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.pixels;
    argument.endStructure();
    return argument;
}

}  // namespace

}  // namespace nevo::desktoptest

Q_DECLARE_METATYPE(nevo::desktoptest::Pixmap)

namespace nevo::desktoptest {

FakeNotifier::FakeNotifier(const std::string& busAddress)
    : bus(QDBusConnection::connectToBus(QString::fromStdString(busAddress), connectionName)) {
    qDBusRegisterMetaType<Pixmap>();
    qDBusRegisterMetaType<QList<Pixmap>>();
    if (!bus.registerVirtualObject(path, this)) throw Failed("the test can't offer an item");
}

FakeNotifier::~FakeNotifier() {
    bus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(connectionName);
}

QVariant FakeNotifier::pixmap(std::uint32_t color) {
    constexpr int side = 22;
    Pixmap pixmap{side, side, {}};
    for (int i = 0; i < side * side; ++i) {
        for (unsigned shift : {24U, 16U, 8U, 0U})
            pixmap.pixels += static_cast<char>((color | 0xff000000U) >> shift & 0xffU);
    }
    return QVariant::fromValue(QList<Pixmap>{pixmap});
}

void FakeNotifier::enroll() {
    auto call = QDBusMessage::createMethodCall(watcher, "/StatusNotifierWatcher", watcher,
                                               "RegisterStatusNotifierItem");
    bus.send(call << QString(path));
}

void FakeNotifier::say(const char* signal) {
    auto message = QDBusMessage::createSignal(path, interface, signal);
    if (std::string(signal) == "NewStatus") message << properties["Status"];
    bus.send(message);
}

bool FakeNotifier::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    std::string member = message.member().toStdString();
    if (member == "GetAll") return bus.send(message.createReply(QVariant(properties)));
    if (member == "Get") {
        QVariant value = properties[message.arguments().at(1).toString()];
        return value.isValid() &&
               bus.send(message.createReply(QVariant::fromValue(QDBusVariant(value))));
    }
    if (unknown.contains(member)) return false;
    for (const QVariant& argument : message.arguments())
        member += ' ' + argument.toString().toStdString();
    calls.push_back(member);
    return bus.send(message.createReply());
}

}  // namespace nevo::desktoptest
