// Programs that offer their items over the session bus, beside those that dock windows: one row,
// one order, one set of rules, and no item is lost.

#include <algorithm>
#include <csignal>
#include <set>

#include "desktop/NevoSession.h"

namespace nevo::desktoptest {
namespace {

using namespace std::string_literals;

const Names notifierCommands{"qlipper", "qasmixer --tray --no-single", "copyq", "diodon"};
const Names windowCommands{"volumeicon", "parcellite", "xfce4-clipman", "pnmixer"};

class Notifiers : public NevoSession {
protected:
    void startBothKinds() {
        startBar();
        for (const Names& commands : {notifierCommands, windowCommands}) {
            for (const std::string& command : commands) {
                startProgram(command);
                waitForItems(programItems().size() + 1);
            }
        }
    }

    bool isNotifier(const std::string& name) const { return item(name).client == 0; }

    /// Kills the bar, starts another, and waits until the row is as it was. GTK's tray icons write
    /// to the bar's windows without expecting their death, and now and then one ends of it: started
    /// anew, it has its old place.
    void restartBar(const Names& order) {
        kill(bar(), SIGKILL);
        startBar();
        waitFor("the row is as it was", [&] {
            for (const std::string& command : {"diodon"s, "volumeicon"s, "parcellite"s, "pnmixer"s})
                startAnewIfItDiedOfTheBar(command);
            return namesOnScreen() == order;
        });
    }

    void startAnewIfItDiedOfTheBar(const std::string& command) {
        Process& process = program(command);
        if (process.isRunning()) return;
        EXPECT_NE(process.output().find("X Window System error"), std::string::npos) << command;
        kill(process, SIGKILL);
        startProgram(command);
    }

    /// A menu, or whatever window comes in answer to a click.
    void waitForWindow(std::size_t before) {
        waitFor("a window comes", [&] { return windowsBelowBar().size() > before; });
    }
};

TEST_F(Notifiers, standInOneRowWithWindowsAndAnswerClicks) {
    startBothKinds();
    ASSERT_EQ(programItems().size(), 8U);
    for (const char* name : {"qlipper", "qasmixer", "copyq", "diodon"}) {
        EXPECT_TRUE(isNotifier(name)) << name;
    }
    for (const char* name : {"volumeicon", "parcellite", "xfce4-clipman", "pnmixer"}) {
        EXPECT_FALSE(isNotifier(name)) << name;
    }
    EXPECT_EQ(item("copyq").appId, "com.github.hluk.copyq");
    EXPECT_EQ(item("copyq").ownerName, "CopyQ");
    EXPECT_EQ(item("diodon").appId, "diodon");
    EXPECT_EQ(item("qasmixer").name, "Item-0");
    EXPECT_TRUE(becomesDense());
    // Each shows a picture, which has more colours than the dot in the place of one.
    for (const Item& each : programItems()) {
        waitFor("it shows a picture", [&] {
            auto pixels = screenshot().pixels(each.place);
            return std::set(pixels.begin(), pixels.end()).size() > 8;
        });
    }

    // One that knows of no clicks shows its menu instead, which Escape closes.
    std::size_t before = windowsBelowBar().size();
    click(item("diodon"));
    waitForWindow(before);
    // Keys reach a menu a moment after it can be seen.
    waitFor("the menu is closed", [&] {
        hand->press(escapeKey);
        return windowsBelowBar().size() == before;
    });
    // No click where the button is let go over another item.
    hand->drag(item("copyq").place.center(), item("qasmixer").place.center(), [] {});
    // A click is the program's own: qasmixer shows its window.
    click(item("qasmixer"));
    waitForWindow(before);
    EXPECT_EQ(windowsBelowBar().size(), before + 1);
}

TEST_F(Notifiers, tellWhatTheyAreWhereThePointerRests) {
    startBar();
    startProgram("qasmixer --tray --no-single");
    waitForItems(1);
    std::size_t before = windowsBelowBar().size();
    hand->moveTo(item("qasmixer").place.center());
    waitForWindow(before);
    hand->moveTo({10, 300});
    waitFor("the text is gone", [&] { return windowsBelowBar().size() == before; });
    hand->moveTo(item("qasmixer").place.center());
    waitForWindow(before);
    kill(program("qasmixer"), SIGKILL);
    waitFor("the text goes with its item", [&] { return windowsBelowBar().size() == before; });
}

TEST_F(Notifiers, aRowOfAMenuReachesItsProgram) {
    startBar();
    startProgram("copyq");
    startProgram("qasmixer --tray --no-single");
    waitForItems(2);
    std::size_t before = windowsBelowBar().size();
    rightClick(item("qasmixer"));
    waitForWindow(before);
    // The last row of its menu ends the program.
    Rect menu = windowsBelowBar().back();
    hand->click({menu.midX(), menu.maxY() - 12});
    Process& mixer = program("qasmixer");
    EXPECT_EQ(mixer.waitForEnd(), 0);
    kill(mixer, SIGKILL);
    waitForOnScreen({"copyq"});
    EXPECT_TRUE(becomesDense());
}

TEST_F(Notifiers, areHiddenRuledAndReorderedLikeWindows) {
    startBothKinds();
    Names before = namesOnScreen();
    superDrag(item("qasmixer"), item("parcellite").place.x - 2);
    waitFor("an item has changed its place among those of the other kind", [&] {
        return namesOnScreen() != before &&
               item("qasmixer").slot.maxX() == item("parcellite").slot.x;
    });
    Names order = namesOnScreen();

    // What stands left of the toggle is hidden, but for what a rule keeps.
    startUsing(
        bytesValue("nevo_icon_rules", R"({"CopyQ >>> com.github.hluk.copyq":"alwaysShow"})"));
    waitForOnScreen({"copyq"});
    kill(nevo(), SIGTERM);
    waitFor("all are shown", [&] { return namesOnScreen().size() == order.size(); });
    order = namesOnScreen();

    kill(program("qasmixer"), SIGKILL);
    Names without = order;
    std::erase(without, "qasmixer");
    waitForOnScreen(without);
    startProgram("qasmixer --tray --no-single");
    waitForOnScreen(order);
}

TEST_F(Notifiers, areNeverLostHoweverOftenTheBarIsKilled) {
    startBothKinds();
    Names order = namesOnScreen();
    for (int i = 0; i < 50; ++i) restartBar(order);
    EXPECT_TRUE(becomesDense());
    setMonitor("1000/300x600/200+0+0");
    waitFor("the bar is as wide as the monitor", [&] { return barView->frame().width == 1000; });
    waitForOnScreen(order);
    restartBar(order);
    setMonitor("1600/400x600/200+0+0");
    waitFor("the bar is wide again", [&] { return barView->frame().width == 1600; });
    waitForOnScreen(order);
    EXPECT_TRUE(becomesDense());
}

TEST_F(Notifiers, standWhereTheyWereAtTheNextLogin) {
    startBothKinds();
    Names order = namesOnScreen();
    Names commands = notifierCommands;
    commands.insert(commands.end(), windowCommands.begin(), windowCommands.end());
    auto endAll = [&] {
        for (const std::string& name : order) kill(program(name), SIGTERM);
        waitForOnScreen({});
    };
    endAll();
    kill(bar(), SIGTERM);
    // All at once, and the bar last: who finds no tray for the bus docks a window.
    for (const std::string& command : commands) startProgram(command);
    startBar();
    waitForOnScreen(order);
    endAll();
    for (const std::string& command : commands) startProgram(command);
    waitForOnScreen(order);
}

/// A tray on a display of its own, on the same bus.
class TrayElsewhere {
public:
    TrayElsewhere(Environment environment, const std::filesystem::path& logs)
        : settings(std::move(environment)), list(logs.string() + "-items") {
        std::string number;
        std::tie(server, number) = startAndReadLine(
            {"Xvfb", "-displayfd", "{}", "-screen", "0", "800x200x24", "-nolisten", "tcp"},
            settings, logs.string() + "-Xvfb");
        settings["DISPLAY"] = ":" + number;
        bar = std::make_unique<Process>(std::vector<std::string>{NEVO_BAR_PROGRAM}, settings,
                                        logs.string() + "-bar");
    }
    bool says(const char* text) const { return bar->output().find(text) != std::string::npos; }
    /// How many items it knows, by its own report.
    std::ptrdiff_t count() const {
        std::filesystem::remove(list);
        Process lister({NEVO_BAR_PROGRAM, "--items"}, settings, list);
        lister.waitForEnd();
        std::string text = lister.output();
        return std::count(text.begin(), text.end(), '\n') - 1;
    }
    int end() {
        bar->signal(SIGTERM);
        return bar->waitForEnd();
    }

private:
    Environment settings;
    std::filesystem::path list;
    std::unique_ptr<Process> server;
    std::unique_ptr<Process> bar;
};

TEST_F(Notifiers, areShownBesideOtherTraysAndTakenOverFromThem) {
    startBothKinds();
    Names order = namesOnScreen();
    TrayElsewhere second(environment(), folder / "log/second");
    waitFor("another tray shows what this one knows", [&] { return second.count() == 4; });
    TrayElsewhere third(environment(), folder / "log/third");
    waitFor("so does a third", [&] { return third.count() == 4; });
    EXPECT_TRUE(second.says("another tray keeps the items"));

    kill(bar(), SIGKILL);
    constexpr const char* takeover = "is gone; its items are kept here now";
    waitFor("the second says that it has taken over", [&] { return second.says(takeover); });
    EXPECT_FALSE(third.says(takeover));
    startBar();
    waitForOnScreen(order);

    // What comes now registers with the second, whom all others follow.
    startProgram(std::string(NEVO_BAD_NOTIFIER) + " plain");
    waitForItems(order.size() + 1);
    waitFor("the third has heard of it", [&] { return third.count() == 5; });
    EXPECT_EQ(second.end(), 0);
    waitFor("the third takes over", [&] { return third.says(takeover); });
    startProgram(std::string(NEVO_BAD_NOTIFIER) + " plain");
    waitForItems(order.size() + 2);
    EXPECT_EQ(third.end(), 0);
    startProgram(std::string(NEVO_BAD_NOTIFIER) + " plain");
    waitForItems(order.size() + 3);
    Names now = namesOnScreen();
    EXPECT_EQ(std::erase(now, "bad-notifier"), 3U);
    EXPECT_EQ(now, order);
}

}  // namespace
}  // namespace nevo::desktoptest
