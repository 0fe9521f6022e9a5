// The machine wakes, and the login session comes back, as logind tells it on the system bus.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>

#include "desktop/BusSession.h"

namespace nevo::desktoptest {
namespace {

constexpr const char* service = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* sessionPath = "/org/freedesktop/login1/session/_37";
constexpr const char* connectionName = "fake-logind";

/// Knows one session, and says what it is told to say.
class FakeLogind : public QDBusVirtualObject {
public:
    explicit FakeLogind(const std::string& address)
        : bus(QDBusConnection::connectToBus(QString::fromStdString(address), connectionName)) {
        if (!bus.registerService(service)) throw Failed("the test can't play logind");
        bus.registerVirtualObject(managerPath, this);
    }
    ~FakeLogind() override {
        bus = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(connectionName);
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& to) override {
        if (message.member() != "GetSession") return false;
        to.send(message.createReply(QVariant::fromValue(QDBusObjectPath(sessionPath))));
        wasAsked = true;
        return true;
    }

    void prepareForSleep(bool begins) {
        say(managerPath, "org.freedesktop.login1.Manager", "PrepareForSleep", {begins});
    }
    void setActive(bool active) {
        say(sessionPath, "org.freedesktop.DBus.Properties", "PropertiesChanged",
            {"org.freedesktop.login1.Session", QVariantMap{{"Active", active}}, QStringList()});
    }
    void unlock() { say(sessionPath, "org.freedesktop.login1.Session", "Unlock", {}); }

    bool wasAsked = false;

private:
    void say(const char* path, const char* interface, const char* name, const QVariantList& what) {
        auto message = QDBusMessage::createSignal(path, interface, name);
        message.setArguments(what);
        bus.send(message);
    }

    QDBusConnection bus;
};

class Session : public BusSession {
protected:
    void SetUp() override {
        BusSession::SetUp();
        startBar();
    }
    void TearDown() override {
        logind.reset();
        BusSession::TearDown();
    }

    std::size_t reacted(const std::string& reason) {
        return countIn(nevo().output(), "recompensatePositionAfterWake reason=" + reason);
    }

    std::unique_ptr<FakeLogind> logind;
};

TEST_F(Session, nevoReactsWhenTheMachineWakesAndTheSessionComesBack) {
    logind = std::make_unique<FakeLogind>(environment().at("DBUS_SYSTEM_BUS_ADDRESS"));
    startNevo();
    await("Nevo has asked for its session", [this] { return logind->wasAsked; });
    logind->prepareForSleep(true);
    logind->prepareForSleep(false);
    waitFor("Nevo has heard of the wake", [this] { return reacted("screensDidWake") > 0; });
    EXPECT_EQ(reacted("didWake"), 1U);
    EXPECT_EQ(reacted("screensDidWake"), 1U);

    // Nevo listens to the session some time after the answer.
    waitFor("Nevo has heard of the session", [this] {
        logind->setActive(true);
        return reacted("sessionDidBecomeActive") > 0;
    });
    logind->prepareForSleep(false);
    waitFor("Nevo has heard all", [this] { return reacted("didWake") == 2; });
    std::size_t before = reacted("sessionDidBecomeActive");
    logind->setActive(false);
    logind->unlock();
    waitFor("Nevo has heard of the unlocking",
            [&] { return reacted("sessionDidBecomeActive") > before; });
    logind->prepareForSleep(false);
    waitFor("Nevo has heard all", [this] { return reacted("didWake") == 3; });
    EXPECT_EQ(reacted("sessionDidBecomeActive"), before + 1);
    EXPECT_EQ(countIn(nevo().output(), "no logind"), 0U);
}

TEST_F(Session, withoutLogindOrABusThatIsSaidOnce) {
    for (const std::string& address :
         {environment().at("DBUS_SYSTEM_BUS_ADDRESS"), std::string("unix:path=/nowhere/bus")}) {
        auto changed = environment();
        changed["DBUS_SYSTEM_BUS_ADDRESS"] = address;
        Process process({NEVO_PROGRAM}, changed, folder / "log" / "without");
        const std::string line = "[Nevo] no logind on the system bus";
        waitFor("Nevo says so", [&] { return process.output().find(line) != std::string::npos; });
        waitFor("its items stand in the bar", [this] { return !items().empty(); });
        process.signal(SIGTERM);
        EXPECT_EQ(process.waitForEnd(), 0);
        EXPECT_EQ(countIn(process.output(), line), 1U) << process.output();
        waitFor("its items have gone", [this] { return items().empty(); });
        std::filesystem::remove(folder / "log" / "without");
    }
}

}  // namespace
}  // namespace nevo::desktoptest
