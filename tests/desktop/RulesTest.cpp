// What a user pins stays pinned, on a real display.

#include <algorithm>
#include <csignal>

#include "desktop/NevoSession.h"

namespace nevo::desktoptest {
namespace {

constexpr const char* iconRules =
    R"({"Parcellite >>> parcellite":"alwaysShow","Clipboard Manager >>> xfce4-clipman":"alwaysHide"})";
constexpr const char* appRules =
    R"({"xev":{"visibleIcons":[],"hiddenIcons":["Parcellite >>> parcellite"]}})";

class Rules : public NevoSession {
protected:
    void startPinned(const std::string& mode = "push") {
        isShelfMode = mode == "shelf";
        startAll(bytesValue("nevo_icon_rules", iconRules) + bytesValue("nevo_app_rules", appRules) +
                 R"(, "displayMode": ")" + mode + "\"");
        waitForLog("[Rules] replayAllRulesOnStartup: done");
        waitUntilPinned();
    }
    std::string nevoLog() const { return readFile(folder / "home/nevo_debug.log"); }
    bool hasLogged(const std::string& line) const {
        return nevoLog().find(line) != std::string::npos;
    }
    void waitForLog(const std::string& line) const {
        waitFor("the log has " + line, [&] { return hasLogged(line); });
    }
    void waitUntilPinned() const {
        waitFor("the pinned item is shown and the others aren't", [this] {
            return namesOnScreen() == Names{"parcellite"} &&
                   namesRightOfToggle() == Names{"parcellite"};
        });
    }
    void waitForOpacity(double opacity) const {
        waitFor("the item's opacity is " + std::to_string(opacity),
                [&] { return item("parcellite").opacity == opacity; });
    }
    /// The programs of the pinned items, then Nevo, well and badly.
    void restartEverything();
    void waitForSection(bool isOpen) const {
        waitFor(isOpen ? "the section is open" : "the section is closed", [&] {
            Names seen = namesOnScreen();
            std::sort(seen.begin(), seen.end());
            return seen == (isOpen ? Names{"parcellite", "qasmixer", "qlipper", "volumeicon"}
                                   : Names{"parcellite"});
        });
    }
    /// The section is open while the bar settles on the other screens.
    void waitForScreenChange() const {
        waitForSection(true);
        waitUntilPinned();
    }
    /// Opens or closes the hidden section, where one of the items stays hidden; or the shelf, which
    /// brings no item out.
    void toggleAroundHidden(bool opens) {
        auto windows = windowsBelowBar().size();
        click(toggleItem());
        if (isShelfMode) {
            waitFor(opens ? "the shelf is open" : "the shelf is closed", [&] {
                return windowsBelowBar().size() == (opens ? windows + 1 : windows - 1);
            });
            return waitUntilPinned();
        }
        waitForSection(opens);
    }

    bool isShelfMode = false;
};

void Rules::restartEverything() {
    kill(program("parcellite"), SIGKILL);
    kill(program("xfce4-clipman"), SIGTERM);
    waitForItems(0);
    startProgram("parcellite");
    startProgram("xfce4-clipman");
    waitFor("both are back", [this] { return names().size() == 5; });
    EXPECT_TRUE(becomesDense());
    waitUntilPinned();
    toggleAroundHidden(true);
    toggleAroundHidden(false);

    for (int signal : {SIGTERM, SIGKILL}) {
        kill(nevo(), signal);
        waitForItems(5);
        std::filesystem::remove(folder / "home/nevo_debug.log");
        startNevo();
        waitForLog("[Rules] replayAllRulesOnStartup: done");
        waitUntilPinned();
    }
    // What Nevo dragged itself wasn't taken for a drag of the user's.
    EXPECT_TRUE(hasLogged("[Rules] moveAlwaysShowItems: "));
    EXPECT_FALSE(hasLogged("[CmdDrag] started"));
}

TEST_F(Rules, holdThroughRestartsInPushMode) {
    startPinned();
    restartEverything();
}

TEST_F(Rules, holdThroughRestartsInShelfMode) {
    startPinned("shelf");
    restartEverything();
}

TEST_F(Rules, aMonitorThatComesAndGoesLeavesTheOrderAsItWas) {
    startPinned();
    setMonitor("1200/300x600/150+0+0");
    waitForScreenChange();
    Names before = names();
    addSecondMonitor("400/100x600/150+1200+0");
    waitForScreenChange();
    removeSecondMonitor();
    waitForScreenChange();
    EXPECT_EQ(names(), before);
}

TEST_F(Rules, ofTheProgramInFrontHideItemsWhileItIsThere) {
    startProgram("openbox");
    startPinned();
    waitForOpacity(1);
    Process& inFront = startProgram("xev");
    waitForOpacity(0);
    Process& another = startProgram("xmessage hello");
    waitForOpacity(1);
    kill(another, SIGKILL);
    waitForOpacity(0);
    // The program is gone, and another one is in front now.
    Process& third = startProgram("xmessage hello");
    waitForOpacity(1);
    kill(inFront, SIGKILL);
    Process& last = startProgram("xev");
    waitForOpacity(0);
    // Nothing follows the last one.
    kill(third, SIGKILL);
    kill(last, SIGKILL);
    waitForOpacity(1);
    startProgram("xev");
    waitForOpacity(0);
    kill(nevo(), SIGTERM);
    waitForItems(5);
}

// Only in shelf mode are drags watched.
TEST_F(Rules, aHandThatDragsAnItemAcrossTheToggleUnpinsIt) {
    startPinned("shelf");
    EXPECT_FALSE(hasLogged("[CmdDrag] started"));
    Point from = item("parcellite").place.center();
    hand->superDrag(from, {toggleItem().place.x - 60, from.y},
                    [this] { waitForLog("[CmdDrag] started"); });
    waitForLog("[CmdDrag] reconcile: clear alwaysShow rule for Parcellite >>> parcellite");
    waitForLog("[CmdDrag] reconciled and divider re-collapsed");
    waitForOnScreen({});
    waitFor("the rule is gone from the stored values", [this] {
        std::string stored = readFile(defaultsFile("com.nevoapp.Nevo"));
        auto left = bytesValue("nevo_icon_rules",
                               R"({"Clipboard Manager >>> xfce4-clipman":"alwaysHide"})");
        std::string bytes = left.substr(left.rfind(' ') + 1);
        return stored.find(bytes.substr(0, bytes.size() - 1)) != std::string::npos;
    });
}

}  // namespace
}  // namespace nevo::desktoptest
