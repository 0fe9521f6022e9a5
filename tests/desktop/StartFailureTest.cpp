// What a user is told who has started Nevo from the desktop's menu, where it can't run.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <csignal>

#include "desktop/BusSession.h"
#include "desktop/TestClients.h"

namespace nevo::desktoptest {
namespace {

/// The part of a desktop that shows notifications; this one keeps them.
class FakeNotifications : public QDBusVirtualObject {
public:
    explicit FakeNotifications(const std::string& address)
        : bus(QDBusConnection::connectToBus(QString::fromStdString(address), connectionName)) {
        if (!bus.registerService("org.freedesktop.Notifications"))
            throw Failed("the test can't show notifications");
        bus.registerVirtualObject("/org/freedesktop/Notifications", this);
    }
    ~FakeNotifications() override {
        bus = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(connectionName);
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& to) override {
        shown.push_back(message.arguments().value(4).toString().toStdString());
        return to.send(message.createReply(1U));
    }

    Names shown;

private:
    static constexpr const char* connectionName = "fake-notifications";
    QDBusConnection bus;
};

using StartFailure = BusSession;

TEST_F(StartFailure, isShownByTheDesktop) {
    FakeNotifications desktop(busAddress());
    {
        ForeignTray foreign;
        EXPECT_TRUE(refuses(NEVO_PROGRAM));
        await("it is shown", [&] { return desktop.shown.size() == 1; });
        EXPECT_NE(desktop.shown[0].find("tray"), std::string::npos) << desktop.shown[0];
    }
    startBar();
    startNevo();
    EXPECT_TRUE(refuses(NEVO_PROGRAM));
    await("it is shown", [&] { return desktop.shown.size() == 2; });
    EXPECT_EQ(desktop.shown[1], "Nevo is already running on this display (process " +
                                    std::to_string(nevo().pid()) + ").");
}

}  // namespace
}  // namespace nevo::desktoptest
