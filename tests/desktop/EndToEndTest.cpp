// What Nevo is for, as a person at a real display sees it.

#include <algorithm>
#include <csignal>
#include <fstream>

#include "desktop/NevoSession.h"
#include "desktop/TestClients.h"

namespace nevo::desktoptest {
namespace {

class EndToEnd : public NevoSession {
protected:
    void quitFromMenu() {
        rightClick(toggleItem());
        waitFor("the menu is open", [this] { return !windowsBelowBar().empty(); });
        Rect menu = windowsBelowBar().back();
        hand->click({menu.midX(), menu.maxY() - lastRow});
    }

    /// From the menu's lower edge to the middle of its last row.
    static constexpr double lastRow = 12;
};

TEST_F(EndToEnd, aClickHidesWhatIsLeftOfTheToggleAndAnotherBringsItBack) {
    startAll();
    keepVisible(2);
    Names all = names();
    Names kept = namesRightOfToggle();
    auto before = programItems();
    Picture pictureBefore = screenshot();
    double left = before.front().place.x;
    Item toggleBefore = toggleItem();

    toggle(kept);
    EXPECT_EQ(names(), all);
    EXPECT_EQ(toggleItem().place, toggleBefore.place);
    auto during = programItems();
    for (std::size_t i = before.size() - kept.size(); i < before.size(); ++i) {
        EXPECT_EQ(during[i].place, before[i].place) << nameOf(before[i]);
    }
    waitFor("the picture shows the kept items alone", [&] {
        Picture now = screenshot();
        bool same = std::all_of(before.end() - 2, before.end(), [&](const Item& item) {
            return now.pixels(item.place) == pictureBefore.pixels(item.place);
        });
        return same && now.isEmptyBar({left, 0, toggleBefore.place.x - left, 24});
    });

    toggle(all);
    waitForPlaces(before);
    Rect row{left, 0, barView->systemAreaLeft() - left, 24};
    waitFor("the picture is as before",
            [&] { return screenshot().pixels(row) == pictureBefore.pixels(row); });
    EXPECT_FALSE(screenshot().isEmptyBar(before[0].place));
}

TEST_F(EndToEnd, aClickOnTheBlankBarShowsTheItemsAndOneOnTheClockDoesNot) {
    startAll(R"(, "nevo_trigger_mode": "clickBlank")");
    Names all = names();
    EXPECT_EQ(namesRightOfToggle(), Names{});
    hand->click({barView->systemAreaLeft() + 10, 12});
    toggle(all);
    toggle({});
    hand->click({200, 0});
    waitForOnScreen(all);
}

TEST_F(EndToEnd, quittingFromTheMenuLeavesNothingHidden) {
    startAll();
    keepVisible(2);
    auto before = programItems();
    Item toggleBefore = toggleItem();
    toggle(namesRightOfToggle());
    quitFromMenu();
    EXPECT_EQ(nevo().waitForEnd(), 0);
    waitFor("Nevo's own items have gone", [&] { return items().size() == before.size(); });
    waitForItems(before.size());
    EXPECT_TRUE(becomesDense());

    startNevo();
    waitFor("the items left of the toggle are hidden again",
            [&] { return namesOnScreen() == namesRightOfToggle(); });
    EXPECT_EQ(namesRightOfToggle().size(), 2U);
    EXPECT_EQ(toggleItem().place, toggleBefore.place);
}

TEST_F(EndToEnd, aKilledManagerLeavesNothingHidden) {
    startAll();
    keepVisible(2);
    auto before = programItems();
    toggle(namesRightOfToggle());
    kill(nevo(), SIGKILL);
    waitFor("Nevo's own items have gone", [&] { return items().size() == before.size(); });
    waitForItems(before.size());
    auto now = programItems();
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(nameOf(now[i]), nameOf(before[i]));
        EXPECT_EQ(now[i].opacity, 1);
    }
    EXPECT_TRUE(becomesDense());
}

TEST_F(EndToEnd, aKilledBarIsReplacedAndCostsNoProgramItsItem) {
    startDesktop("--height 32");
    startUsing({});
    keepVisible(2);
    Names all = names();
    Names kept = namesRightOfToggle();
    toggle(kept);
    kill(bar(), SIGKILL);
    waitForOnScreen(kept);
    waitFor("the hidden items are back too", [&] { return names() == all; });
    EXPECT_EQ(barView->frame().height, 32);
    toggle(all);
    EXPECT_EQ(namesRightOfToggle(), kept);
    toggle(kept);
    EXPECT_EQ(names(), all);
}

TEST_F(EndToEnd, theRowFollowsTheMonitorAndGoesOnWorking) {
    startAll();
    keepVisible(2);
    Names all = names();
    Names kept = namesRightOfToggle();
    double gap = barView->frame().maxX() - programItems().back().place.maxX();
    setMonitor("640/200x600/200+0+0");
    waitFor("the items stand at the new right end", [&] {
        return barView->frame().width == 640 && programItems().back().place.maxX() == 640 - gap &&
               namesOnScreen() == all;
    });
    EXPECT_TRUE(becomesDense());
    toggle(kept);
    setMonitor("1600/400x600/200+0+0");
    waitFor("what is hidden stays hidden", [&] {
        return barView->frame().width == 1600 && programItems().back().place.maxX() == 1600 - gap &&
               namesOnScreen() == kept;
    });
    toggle(all);
}

TEST_F(EndToEnd, worksBesideAMonitorThatIsLeftOfAndAboveTheMainOne) {
    setMonitor("1000/250x400/100+600+200");
    addSecondMonitor("600/150x300/75+0+0");
    startAll();
    EXPECT_EQ(barView->frame(), (Rect{600, 200, 1000, 24}));
    keepVisible(2);
    Names all = names();
    auto before = programItems();
    toggle(namesRightOfToggle());
    for (const Item& item : programItems()) EXPECT_TRUE(item.onScreen || item.place.maxX() < 0);
    toggle(all);
    waitForPlaces(before);
    quitFromMenu();
    EXPECT_EQ(nevo().waitForEnd(), 0);
}

TEST_F(EndToEnd, coversTheBarOfEachOtherMonitor) {
    setMonitor("900/250x600/150+700+0");
    addSecondMonitor("600/150x400/100+0+100");
    startAll(R"(, "hideSecondaryMenuBar": true)");
    const Rect secondBar{0, 100, 600, 24};
    auto showsBar = [&] {
        Picture now = screenshot();
        return now.pixels({10, 110, 1, 1}) == now.pixels({710, 10, 1, 1});
    };
    auto isCovered = [&] {
        auto windows = topWindows();
        auto top = std::find_if(windows.rbegin(), windows.rend(), [&](const TopWindow& window) {
            return window.place.intersects(secondBar);
        });
        return top != windows.rend() && top->name == "Nevo" && top->place == secondBar &&
               !showsBar();
    };
    waitFor("the other monitor's bar is covered", isCovered);
    toggle(names());

    removeSecondMonitor();
    waitFor("the cover has gone", [&] { return !isCovered(); });
    addSecondMonitor("600/150x400/100+0+100");
    waitFor("it comes back with the monitor", isCovered);
    // A bar that is started again is covered, too.
    Names all = names();
    kill(bar(), SIGKILL);
    waitFor("the items are back", [&] { return names() == all; });
    waitFor("the new bar is covered", isCovered);
    kill(nevo(), SIGTERM);
    waitFor("the bar can be seen", showsBar);
}

TEST_F(EndToEnd, refusesInPlainWordsWhatItCannotDo) {
    startAll();
    Names all = names();
    for (const char* program : {NEVO_BAR_PROGRAM, NEVO_PROGRAM}) {
        EXPECT_TRUE(refuses(program));
        EXPECT_TRUE(refuses(program, {{"DISPLAY", ""}}));
        EXPECT_TRUE(refuses(program, {{"DISPLAY", ":9999"}}));
    }
    EXPECT_EQ(names(), all);
    toggle(all);
    kill(nevo(), SIGTERM);
    kill(bar(), SIGTERM);
    ForeignTray foreign;
    EXPECT_TRUE(refuses(NEVO_BAR_PROGRAM));
    EXPECT_TRUE(refuses(NEVO_PROGRAM));
}

TEST_F(EndToEnd, aBarThatNevoHadToStartOutlivesItAndIsReplacedUnlessItWasEnded) {
    startNevo();
    startProgram("qlipper");
    auto rowStands = [this] { return names() == Names{"qlipper"} && items().size() > 1; };
    waitFor("a program has docked", rowStands);
    // The second time sooner than Nevo starts bars.
    for (int i = 0; i < 2; ++i) {
        auto killed = barView->pid();
        ::kill(killed, SIGKILL);
        waitFor("another bar has the row", [&] { return barView->pid() != killed && rowStands(); });
    }
    auto barPid = barView->pid();
    kill(nevo(), SIGKILL);
    waitFor("Nevo's own items have gone", [this] { return items().size() == 1; });
    waitForItems(1);
    EXPECT_EQ(barView->pid(), barPid);
    startNevo();
    EXPECT_EQ(barView->pid(), barPid);
    ::kill(barPid, SIGTERM);
    waitFor("the bar has ended", [this] { return barView->control() == 0; });

    // Nevo leaves it at that; whoever starts Nevo again has a bar.
    Process second({NEVO_PROGRAM}, environment(), folder / "log/second");
    EXPECT_EQ(second.waitForEnd(), 0) << second.output();
    EXPECT_NE(second.output().find("is already running"), std::string::npos) << second.output();
    waitFor("the row is back", rowStands);
}

TEST_F(EndToEnd, restingOnTheToggleShowsWhatIsHidden) {
    startAll(R"(, "showOnHover": true, "hoverDelay": 0.2)");
    Names all = names();
    hand->moveTo({10, 300});
    hand->moveTo(toggleItem().place.center());
    waitFor("all items are shown", [&] { return namesOnScreen() == all; });
}

TEST_F(EndToEnd, unreadableSettingsAreSetAsideAndTold) {
    startBar();
    auto file = defaultsFile("com.nevoapp.Nevo");
    std::filesystem::create_directories(file.parent_path());
    const std::string broken = R"({"nevo_onboarding_completed": tr)";
    std::ofstream(file) << broken;
    startNevo();
    bool kept = false;
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
        kept = kept || (entry.path() != file && readFile(entry.path()) == broken);
    }
    EXPECT_TRUE(kept);
    EXPECT_NE(nevo().output().find(file.filename()), std::string::npos) << nevo().output();
}

}  // namespace
}  // namespace nevo::desktoptest
