#include "platform/x11/DesktopNotice.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>
#include <array>

namespace nevo {

namespace {
constexpr const char* service = "org.freedesktop.Notifications";
constexpr const char* path = "/org/freedesktop/Notifications";
constexpr const char* icon = "com.nevoapp.Nevo";
constexpr int answerMilliseconds = 1000;
constexpr int timeAsTheDesktopHasIt = -1;
}  // namespace

void showDesktopNotice(const std::string& sentence) {
    // Else the bus's library would start a bus of its own.
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) return;
    std::string name = "nevo";
    std::array<char*, 2> words{name.data(), nullptr};
    int count = 1;
    QCoreApplication application(count, words.data());
    auto message = QDBusMessage::createMethodCall(service, path, service, "Notify");
    message << "Nevo" << 0U << icon << "Nevo" << QString::fromStdString(sentence).toHtmlEscaped()
            << QStringList() << QVariantMap() << timeAsTheDesktopHasIt;
    QDBusConnection::sessionBus().call(message, QDBus::Block, answerMilliseconds);
}

}  // namespace nevo
