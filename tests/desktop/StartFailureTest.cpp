// What a user is told who has started Nevo from the desktop's menu, where it can't run.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <filesystem>

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

    Names shown{""};

private:
    static constexpr const char* connectionName = "fake-notifications";
    QDBusConnection bus;
};

class StartFailure : public BusSession {
protected:
    /// The sentence, which it writes as well as has it shown.
    std::string sentence(const FakeNotifications& desktop) {
        Process process({NEVO_PROGRAM}, environment(), folder / "log" / "refused");
        await("it has ended", [&] { return !process.isRunning(); });
        EXPECT_EQ(process.exitStatus(), 1);
        std::string written = process.output();
        std::filesystem::remove(folder / "log" / "refused");
        EXPECT_EQ(written, "nevo: " + desktop.shown.back() + "\n");
        return desktop.shown.back();
    }
};

TEST_F(StartFailure, isShownByTheDesktop) {
    FakeNotifications desktop(busAddress());
    {
        ForeignTray foreign;
        EXPECT_TRUE(sentence(desktop).starts_with("The system tray belongs to "));
    }
    startBar();
    startNevo();
    EXPECT_EQ(sentence(desktop), "Nevo is already running on this display (process " +
                                     std::to_string(nevo().pid()) + ").");
}

}  // namespace
}  // namespace nevo::desktoptest
