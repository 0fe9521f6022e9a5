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

    static Registration listen(NotificationCenter& center, const char* change, Announced& to) {
        return center.addObserver(
            std::string("NSWorkspaceDid") + change + "ApplicationNotification",
            [&to](const Notification& note) {
                to.emplace_back(note.userInfo.at("NSWorkspaceApplicationKey"),
                                note.userInfo.at("bundleIdentifier"));
            });
    }

    void SetUp() override {
        X11Session::SetUp();
        registration = listen(platform().workspaceNotifications, "Activate", announced);
        leaving = listen(platform().workspaceNotifications, "Deactivate", left);
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

    /// The one in front has gone from there, and nothing has come instead.
    void leavesNothing() {
        expectedLeft.push_back(expected.back());
        EXPECT_TRUE(soon([&] { return left.size() >= expectedLeft.size(); }));
        EXPECT_EQ(left, expectedLeft);
        EXPECT_FALSE(platform().workspace.frontmostApplication());
    }

    Announced announced;
    Announced expected;
    Announced left;
    Announced expectedLeft;
    Registration registration;
    Registration leaving;
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
    leavesNothing();

    platform().application.orderFrontStandardAboutPanel("About Nevo", "");
    becomesFront(platform().application.processIdentifier(),
                 platform().application.bundleIdentifier());
    hand->press(returnKey);
    EXPECT_TRUE(soon([this] { return windows() == 1; }));
    // Another instance is another application.
    startInFront("xev");
    // A click on the bar changes nothing, one on the bare desktop leaves nothing in front.
    expectedLeft = left;
    hand->click(barView->frame().center());
    hand->click({1590, 590});
    leavesNothing();
}

TEST_F(Front, theOneThatIsThereAtTheStartIsTold) {
    startWindowManager();
    Process& there = startInFront("xmessage one");

    XServer x(connect());
    EventPump pump(x, [] {});
    xcb::DesktopEntries entries;
    xcb::OwnerIdentities identities(entries);
    NotificationCenter center;
    WindowNumbers numbers;
    BarClient client(x, pump, numbers);
    FrontApplication newcomer(x, pump, client, identities, center, platform().log);
    Announced toldAtStart;
    auto listening = listen(center, "Activate", toldAtStart);
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
