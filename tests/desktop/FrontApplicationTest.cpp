// Which application is in front, as a window manager tells it.

#include "desktop/ContractSessions.h"
#include "desktop/TestClients.h"
#include "platform/x11/FrontApplication.h"
#include "platform/xcb/Properties.h"

namespace nevo::desktoptest {
namespace {

class Front : public X11Session {
protected:
    using Announced = std::vector<std::pair<std::string, std::string>>;

    static Registration listen(NotificationCenter& center, Announced& to) {
        return center.addObserver("NSWorkspaceDidActivateApplicationNotification",
                                  [&to](const Notification& note) {
                                      to.emplace_back(note.userInfo.at("NSWorkspaceApplicationKey"),
                                                      note.userInfo.at("bundleIdentifier"));
                                  });
    }

    void SetUp() override {
        X11Session::SetUp();
        registration = listen(platform().workspaceNotifications, announced);
    }

    /// How many windows a property of the root names.
    std::size_t count(const char* property) {
        xcb::Atoms atoms(server->get(), {});
        xcb::PropertyRead read(server->get(), server->root(), atoms[property]);
        return read.numbers().value_or(std::vector<std::uint32_t>{}).size();
    }
    std::size_t windows() { return count("_NET_CLIENT_LIST"); }

    /// A program whose window comes to the front.
    Process& startInFront(const std::string& command) {
        Process& process = startProgram(command);
        becomesFront(process.pid(), process.name());
        return process;
    }

    void becomesFront(ProcessId pid, const std::string& id) {
        expected.emplace_back(std::to_string(pid), id);
        EXPECT_TRUE(soon([&] { return announced.size() >= expected.size(); })) << id;
        EXPECT_EQ(announced, expected);
    }

    Announced announced;
    Announced expected;
    Registration registration;
};

TEST_F(Front, eachChangeOfTheApplicationIsToldOnce) {
    startWindowManager();
    // The bar has one, which keeps its place free.
    waitFor("the window manager has the bar's window", [this] { return windows() == 1; });
    Process& first = startInFront("xev");
    Process& second = startInFront("xmessage one");
    platform().workspace.activate(first.pid());
    becomesFront(first.pid(), "xev");

    // The next one comes to the front by itself.
    kill(first, SIGKILL);
    becomesFront(second.pid(), "xmessage");
    kill(second, SIGKILL);
    waitFor("no window is left", [this] { return windows() == 1; });

    platform().application.orderFrontStandardAboutPanel("About Nevo", "");
    becomesFront(platform().application.processIdentifier(),
                 platform().application.bundleIdentifier());
    hand->press(returnKey);
    EXPECT_TRUE(soon([this] { return windows() == 1; }));
    // Another instance is another application.
    startInFront("xev");
}

TEST_F(Front, theOneThatIsThereAtTheStartIsTold) {
    startWindowManager();
    Process& there = startInFront("xmessage one");

    XServer x(connect());
    EventPump pump(x, [] {});
    xcb::DesktopEntries entries;
    xcb::OwnerIdentities identities(entries);
    NotificationCenter center;
    FrontApplication newcomer(x, pump, identities, center, platform().log);
    Announced toldAtStart;
    auto listening = listen(center, toldAtStart);
    EXPECT_TRUE(soon([&] { return !toldAtStart.empty(); }));
    Announced only{{std::to_string(there.pid()), "xmessage"}};
    EXPECT_EQ(toldAtStart, only);
}

TEST_F(Front, withoutAWindowManagerThatIsSaidOnceAndALaterOneIsHeard) {
    auto log = [this] { return readFile(folder / "home/nevo_debug.log"); };
    const std::string line = "no window manager tells which window is active";
    EXPECT_TRUE(soon([&] { return log().find(line) != std::string::npos; }));
    startWindowManager();
    startInFront("xev");
    auto text = log();
    EXPECT_EQ(text.find(line), text.rfind(line));
}

}  // namespace
}  // namespace nevo::desktoptest
