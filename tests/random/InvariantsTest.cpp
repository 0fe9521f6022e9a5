// Each invariant of the random run finds what it is there for.

#include <gtest/gtest.h>

#include "entry/NevoApp.h"
#include "randomrun/RandomRun.h"
#include "scenario/commandSupport.h"

namespace nevo {
namespace {

/// A desktop with an item, on which Nevo has hidden it.
class InvariantsTest : public testing::Test {
protected:
    explicit InvariantsTest(const char* displayMode = "push") {
        desktop.defaults.write("com.nevoapp.Nevo", "displayMode", std::string(displayMode));
        SimOtherProgram program;
        program.handle = "mail";
        program.application.bundleIdentifier = "com.example.mail";
        SimItemPlan item;
        item.label = "letters";
        program.items = {item};
        desktop.applications.add(program);
        desktop.applications.launch("mail");
        desktop.trace.listener = [this](const std::string& line) { invariants.noteTrace(line); };
        run.startNevo();
        run.pass(5);
        EXPECT_FALSE(invariants.afterLine());
        EXPECT_FALSE(invariants.atRest());
    }
    ~InvariantsTest() override { desktop.trace.listener = nullptr; }

    WindowNumber letters() { return desktop.applications.findItem("letters")->window; }
    AppState& state() { return run.nevo()->delegate().state(); }
    void open() {
        run.toggle();
        run.pass(2);
    }
    void quit() {
        desktop.loop.post([this] { desktop.application.terminate(); });
        run.pass(2);
        desktop.reap();
    }

    std::string afterLine() { return named(invariants.afterLine()); }
    std::string atRest() { return named(invariants.atRest()); }
    static std::string named(const std::optional<Broken>& broken) {
        return broken ? broken->invariant : "";
    }

    ScenarioRun run{"test", [] { return std::nullopt; }};
    SimDesktop& desktop = run.desktop();
    Invariants invariants{run};
};

TEST_F(InvariantsTest, AfterEachLine) {
    desktop.events.hideCursor();
    EXPECT_EQ(afterLine(), "cursor");
    desktop.events.showCursor();
    EXPECT_EQ(afterLine(), "");

    state().rules.setIconRule(IconRule::alwaysShow, "letters >>> com.example.mail");
    EXPECT_EQ(afterLine(), "");
    state().rules.saveIconRules({});
    EXPECT_EQ(afterLine(), "rules");
    state().rules.setIconRule(IconRule::automatic, "letters >>> com.example.mail");
    EXPECT_EQ(afterLine(), "");

    desktop.bar.setShown(letters(), false);
    EXPECT_EQ(afterLine(), "row");
}

TEST_F(InvariantsTest, AtRest) {
    state().setIsExpanded(true);
    EXPECT_EQ(atRest(), "state");
    state().setIsExpanded(false);
    desktop.windowServer.setWindowAlpha(letters(), 0);
    EXPECT_EQ(atRest(), "transparency");
    desktop.windowServer.setWindowAlpha(letters(), 1);
    run.ownItem("toggle")->setLength(5000);
    run.pass(1);
    EXPECT_EQ(atRest(), "");
    run.ownItem("toggle")->shownButton().setHidden(true);
    EXPECT_EQ(atRest(), "toggle");
    run.ownItem("toggle")->shownButton().setHidden(false);
    std::vector<Registration> hoard;
    for (int i = 0; i < 60; ++i)
        hoard.push_back(desktop.notifications.addObserver("x", [](const Notification&) {}));
    EXPECT_EQ(atRest(), "growth");
}

TEST_F(InvariantsTest, InAnOpenSectionAnItemIsHiddenForAReasonOnly) {
    open();
    EXPECT_EQ(atRest(), "");
    SectionManager& sections = run.nevo()->delegate().controller()->sections();
    sections.opacity.add(ItemOpacity::Reason::stray, letters());
    EXPECT_EQ(atRest(), "unexplained");
    state().rules.setIconRule(IconRule::alwaysHide, "letters >>> com.example.mail");
    EXPECT_EQ(atRest(), "");
}

TEST_F(InvariantsTest, TheOrderChangesByAHandOrForARuleOnly) {
    SimItemPlan plan;
    plan.label = "more";
    plan.name = "More";
    desktop.applications.addItem("mail", plan);
    run.pass(3);
    open();
    EXPECT_EQ(afterLine(), "");
    auto dragBeyondLetters = [&](double x) {
        desktop.bar.beginDrag(desktop.applications.findItem("more")->window, {1, 12}, false);
        desktop.bar.endDrag({x, 12});
        run.pass(3);
    };
    dragBeyondLetters(1279);
    EXPECT_EQ(afterLine(), "order");
    EXPECT_EQ(afterLine(), "");
    // Also while the other one is away.
    desktop.applications.kill("mail");
    EXPECT_EQ(afterLine(), "");
    desktop.applications.launch("mail");
    run.pass(3);
    EXPECT_EQ(afterLine(), "");
    dragBeyondLetters(1);
    EXPECT_EQ(afterLine(), "order");
    state().rules.setIconRule(IconRule::alwaysShow, "More >>> com.example.mail");
    dragBeyondLetters(1279);
    EXPECT_EQ(afterLine(), "");
}

TEST_F(InvariantsTest, WhatFindsRoomIsInTheBar) {
    open();
    EXPECT_EQ(atRest(), "");
    SimStatusItem* divider = run.ownItem("always-hidden-divider");
    divider->setVisible(true);
    divider->setLength(10000);
    run.pass(0.05);
    EXPECT_EQ(atRest(), "");
    desktop.bar.beginDrag(divider->window(), {2000, 12}, false);
    desktop.bar.endDrag({1281, 12});
    run.pass(0.05);
    EXPECT_EQ(atRest(), "room");
}

TEST_F(InvariantsTest, WhatIsAlwaysHiddenIsOutOfSight) {
    std::string id = state().snapshotItems().front().id;
    state().rules.setIconRule(IconRule::alwaysHide, id);
    run.pass(5);
    open();
    EXPECT_EQ(afterLine(), "");
    EXPECT_EQ(atRest(), "");
    run.ownItem("always-hidden-divider")->setLength(0);
    desktop.windowServer.setWindowAlpha(letters(), 1);
    run.pass(0.05);
    EXPECT_EQ(atRest(), "pinned");
}

TEST_F(InvariantsTest, AClickOpensAndCloses) {
    EXPECT_TRUE(invariants.beforeClick());
    EXPECT_EQ(named(invariants.afterClick()), "click");
    open();
    EXPECT_EQ(named(invariants.afterClick()), "");
    EXPECT_TRUE(invariants.beforeClick());
    desktop.permissions.accessibility = false;
    EXPECT_FALSE(invariants.beforeClick());
}

TEST_F(InvariantsTest, AfterTheEndNothingIsLeft) {
    quit();
    EXPECT_EQ(afterLine(), "");
    Registration left = desktop.notifications.addObserver("x", [](const Notification&) {});
    EXPECT_EQ(afterLine(), "left-over");
    left.reset();
    left = desktop.events.addGlobalMonitor(1, [](const Event&) {});
    EXPECT_EQ(afterLine(), "left-over");
    left.reset();
    left = desktop.loop.timer(1, true, [] {});
    EXPECT_EQ(afterLine(), "left-over");
    left.reset();
    EXPECT_EQ(afterLine(), "");
    auto panel = desktop.panels.create({});
    EXPECT_EQ(afterLine(), "left-over");
    panel.reset();
    auto window = desktop.controlWindows.create({});
    EXPECT_EQ(afterLine(), "left-over");
}

TEST_F(InvariantsTest, AfterTheEndNothingIsHidden) {
    desktop.windowServer.setWindowAlpha(letters(), 0);
    quit();
    EXPECT_EQ(afterLine(), "");
    run.pass(2);
    EXPECT_EQ(afterLine(), "still-hidden");
}

/// The same with the shelf in force.
class ShelfInvariantsTest : public InvariantsTest {
protected:
    ShelfInvariantsTest() : InvariantsTest("shelf") { desktop.bar.layoutDelay = 0; }

    SimPanel* slots() { return panelWith(run, "slot:"); }
    void clickSlot() {
        auto place = pictureOf(run, "slot", letters());
        ASSERT_TRUE(place);
        desktop.events.move(place->center());
        desktop.events.press(false);
        desktop.events.release(false);
        run.pass(1);
    }
};

TEST_F(ShelfInvariantsTest, TheShelfIsWhatItsStateSays) {
    open();
    ASSERT_NE(slots(), nullptr);
    EXPECT_EQ(atRest(), "");
    slots()->orderOut();
    EXPECT_EQ(atRest(), "shelf");
    invariants.noteTrace("     1.000  log      [AppRule] Restoring overrides for com.example.mail");
    EXPECT_EQ(atRest(), "");
}

TEST_F(ShelfInvariantsTest, AClickOpensAndClosesIt) {
    EXPECT_TRUE(invariants.beforeClick());
    EXPECT_EQ(named(invariants.afterClick()), "click");
    open();
    EXPECT_EQ(named(invariants.afterClick()), "");
    EXPECT_TRUE(invariants.beforeClick());
    EXPECT_EQ(named(invariants.afterClick()), "click");
    open();
    EXPECT_EQ(named(invariants.afterClick()), "");
    desktop.permissions.screenRecording = false;
    EXPECT_FALSE(invariants.beforeClick());
}

TEST_F(ShelfInvariantsTest, DecoysStandForWhatCanBeSeenNowhereElse) {
    EXPECT_EQ(panelWith(run, "decoy:"), nullptr);
    auto panel = desktop.panels.create({});
    PanelView view;
    view.key = "decoy:" + std::to_string(letters());
    panel->setViews({view});
    panel->orderFront();
    EXPECT_EQ(atRest(), "") << "it may go in a moment";
    run.pass(6);
    EXPECT_EQ(atRest(), "decoys") << "of an item that isn't marked";
    panel.reset();
    state().rules.setDecoyItem(true, state().snapshotItems().at(0).id);
    run.pass(1);
    EXPECT_NE(panelWith(run, "decoy:"), nullptr);
    EXPECT_EQ(atRest(), "");
    open();
    EXPECT_EQ(atRest(), "");
    panel = desktop.panels.create({});
    panel->setViews({view});
    panel->orderFront();
    EXPECT_EQ(atRest(), "decoys") << "beside the shelf";
}

TEST_F(ShelfInvariantsTest, WhatWasBroughtOutGoesBack) {
    open();
    clickSlot();
    EXPECT_TRUE(desktop.bar.find(letters())->floating);
    EXPECT_EQ(atRest(), "");
    run.pass(62);
    EXPECT_FALSE(desktop.bar.find(letters())->floating);
    desktop.bar.moveDirectly(letters(), {600, 0});
    run.pass(1);
    EXPECT_EQ(atRest(), "brought-out");
    desktop.bar.rejoinAll();
    run.pass(1);
    EXPECT_EQ(atRest(), "");
}

TEST_F(ShelfInvariantsTest, PanelsDontPileUp) {
    std::vector<std::unique_ptr<Panel>> hoard;
    for (int i = 0; i < 3; ++i) hoard.push_back(desktop.panels.create({}));
    EXPECT_EQ(atRest(), "growth");
}

TEST(Replay, BreaksWhereTheRunBrokeAndShrinksToTheLinesThatMatter) {
    // A line that isn't of the language stands for what breaks.
    std::vector<PlayedLine> lines{{"app a com.example.a"},
                                  {"item i a"},
                                  {"wait 1"},
                                  {"start"},
                                  {"wait 3"},
                                  {"click toggle"},
                                  {"wait 12", false, PlayedLine::Then::lookAtRest}};
    EXPECT_FALSE(replay(lines).broken);
    lines.push_back({"no such command"});
    RandomResult result = replay(lines);
    ASSERT_TRUE(result.broken);
    EXPECT_EQ(result.broken->invariant, "language");
    std::vector<PlayedLine> fewest = shrunk(lines, *result.broken);
    ASSERT_EQ(fewest.size(), 1U);
    EXPECT_EQ(fewest.front().text, "no such command");
}

}  // namespace
}  // namespace nevo
