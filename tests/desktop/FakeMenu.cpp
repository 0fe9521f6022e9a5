#include "desktop/FakeMenu.h"

#include <fmt/format.h>

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <utility>

#include "desktop/Process.h"

namespace nevo::desktoptest {

namespace {

constexpr const char* connectionName = "fake-menu";
constexpr const char* interface = "com.canonical.dbusmenu";

struct LayoutItem {
    int id = 0;
    QVariantMap properties;
    QList<QDBusVariant> children;
};

QDBusArgument& operator<<(QDBusArgument& argument, const LayoutItem& item) {
    argument.beginStructure();
    argument << item.id << item.properties << item.children;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, LayoutItem& item) {
    argument.beginStructure();
    argument >> item.id >> item.properties >> item.children;
    argument.endStructure();
    return argument;
}

}  // namespace

}  // namespace nevo::desktoptest

Q_DECLARE_METATYPE(nevo::desktoptest::LayoutItem)

namespace nevo::desktoptest {

FakeMenu::FakeMenu(const std::string& busAddress)
    : bus(QDBusConnection::connectToBus(QString::fromStdString(busAddress), connectionName)),
      ownName(bus.baseService().toStdString()) {
    qDBusRegisterMetaType<LayoutItem>();
    qDBusRegisterMetaType<QList<QStringList>>();
    if (!bus.registerVirtualObject(path, this)) throw Failed("the test can't offer a menu");
}

void FakeMenu::leave() {
    bus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(connectionName);
}

bool FakeMenu::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    int id = message.arguments().value(0).toInt();
    if (message.member() == "AboutToShow") {
        announced = id;
        bus.send(message.createReply(false));
    } else if (message.member() == "Event") {
        events.push_back(
            fmt::format("{} {}", message.arguments().at(1).toString().toStdString(), id));
        if (events.back().starts_with("clicked")) clickTime = message.arguments().at(3).toUInt();
        bus.send(message.createReply());
    } else if (message.member() == "GetLayout") {
        ++asked;
        if (std::exchange(announced, -1) == id) ++shown[id];
        message.setDelayedReply(true);
        if (held == id) {
            waiting.push_back(message);
        } else {
            sendRows(message);
        }
    }
    return true;
}

void FakeMenu::release() {
    held = -1;
    for (const QDBusMessage& question : std::exchange(waiting, {})) sendRows(question);
}

void FakeMenu::sendRows(const QDBusMessage& question) {
    LayoutItem level{question.arguments().at(0).toInt(), {}, {}};
    for (const Row& row : levels[level.id]) {
        LayoutItem item{row.id, row.properties, {}};
        level.children << QDBusVariant(QVariant::fromValue(item));
    }
    bus.send(question.createReply({QVariant::fromValue(1U), QVariant::fromValue(level)}));
}

void FakeMenu::sayThatRowsChanged() {
    auto signal = QDBusMessage::createSignal(path, interface, "LayoutUpdated");
    signal << 2U << 0;
    bus.send(signal);
}

}  // namespace nevo::desktoptest
