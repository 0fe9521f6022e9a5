// Moves of other programs' items by synthetic events, with each step failing in turn.
#include "LogicTest.h"
#include "placement/ItemMover.h"

namespace nevo {
namespace {

class ItemMoverTest : public LogicTest {
protected:
    /// Rows of items left to right: Moved, Neighbour; dragging Moved past Neighbour moves it by
    /// Neighbour's width.
    WindowNumber row(double neighbourWidth) {
        launch("Neighbour", "org.neighbour", neighbourWidth);
        WindowNumber moved = launch("Moved", "org.moved", 30);
        frame = *platform.windows.windowFrame(moved);
        target = {frame.midX() + neighbourWidth + 5, frame.midY()};
        return moved;
    }
    bool move(WindowNumber window) {
        startedAt = desktop.loop.now();
        auto task = mover.moveItem(window, target);
        auto result = std::make_shared<std::optional<bool>>();
        spawn(desktop.loop, note(std::move(task), result, this));
        desktop.loop.runFor(5);
        return result->value();
    }
    static Task<> note(Task<bool> task, std::shared_ptr<std::optional<bool>> result,
                       ItemMoverTest* test) {
        bool moved = co_await task;
        result->emplace(moved);
        test->took = test->desktop.loop.now() - test->startedAt;
        test->countAtEnd = test->mover.programmaticMoveCount();
    }
    void expectPutBack(Point cursor) {
        EXPECT_EQ(platform.events.mouseLocation(), cursor);
        EXPECT_EQ(desktop.events.state().hideCount, 0);
        EXPECT_EQ(mover.programmaticMoveCount(), 0);
        EXPECT_EQ(desktop.loop.tasks().liveCount(), 0U);
    }

    ItemMover mover{platform};
    Rect frame;
    Point target;
    double startedAt = 0;
    double took = 0;
    int countAtEnd = 0;
};

TEST_F(ItemMoverTest, ADragHasArrivedWhenTheOrderIsRightHoweverShortItWas) {
    WindowNumber window = row(40);
    Point cursor = platform.events.mouseLocation();
    EXPECT_TRUE(move(window));
    EXPECT_EQ(logCount("[SBC] moveItem attempt="), 1);
    EXPECT_NEAR(took, 0.165, 1e-6) << "5 + 20 + 15 + 15 + 100 ms, and 10 ms for the cursor";
    EXPECT_EQ(countAtEnd, 1) << "late events of the drag may still come";
    expectPutBack(cursor);
    EXPECT_TRUE(move(window)) << "it stands there";
    EXPECT_EQ(took, 0.0);
}

TEST_F(ItemMoverTest, AfterFourFailedDragsWhatOnlyFloatsThereIsPutBack) {
    WindowNumber window = row(200);
    Point cursor = platform.events.mouseLocation();
    desktop.faults.add(SimOperation::drag, std::nullopt, std::nullopt);
    EXPECT_FALSE(move(window));
    EXPECT_EQ(logCount("[SBC] moveItem attempt="), 4);
    EXPECT_EQ(logCount("[SBC] moveItem SLSMoveWindow fallback wid="), 1);
    EXPECT_NEAR(took, 4 * 0.155 + 0.010, 1e-6);
    expectPutBack(cursor);
    EXPECT_FALSE(desktop.bar.find(window)->floating);
    EXPECT_EQ(platform.windows.windowFrame(window), frame);
}

TEST_F(ItemMoverTest, ThePointerIsBackWhereItWasOnADisplayBelowTheMainOne) {
    desktop.putDisplay({7, {200, -600, 800, 600}, 0, 1});
    WindowNumber window = row(200);
    platform.events.warpCursor({400, 1200});
    Point cursor = platform.events.mouseLocation();
    EXPECT_TRUE(move(window));
    expectPutBack(cursor);
}

TEST_F(ItemMoverTest, AFailureAtAnyStepPutsTheCursorBack) {
    WindowNumber window = row(200);
    Point cursor = platform.events.mouseLocation();
    // The press comes after 5 ms, the drags after 25 and 40, the release after 55. A drag that
    // can't be made is left out; without press or release the move ends.
    struct Case {
        double failAt;
        int attempts;
    };
    for (Case c : {Case{0.004, 0}, Case{0.024, 1}, Case{0.039, 1}, Case{0.054, 0}}) {
        auto attempts = logCount("[SBC] moveItem attempt=");
        desktop.loop.desktopAfter(
            c.failAt, [this] { desktop.faults.add(SimOperation::mouseEvent, std::nullopt, 1); });
        bool moved = move(window);
        EXPECT_EQ(moved, c.attempts > 0) << c.failAt;
        EXPECT_EQ(logCount("[SBC] moveItem attempt=") - attempts, c.attempts) << c.failAt;
        expectPutBack(cursor);
        desktop.events.release(false);
        desktop.loop.runFor(1);
        if (moved) target.x += target.x > frame.midX() ? -410 : 410;
    }
    desktop.faults.add(SimOperation::eventSource, std::nullopt, 1);
    EXPECT_FALSE(move(window));
    expectPutBack(cursor);
}

TEST_F(ItemMoverTest, AWindowThatHasGoneIsNotTouched) {
    WindowNumber window = row(200);
    desktop.applications.kill("Moved");
    desktop.loop.runFor(1);
    EXPECT_FALSE(move(window));
    EXPECT_EQ(took, 0.0);
    EXPECT_EQ(logCount("[SBC]"), 0);
}

TEST_F(ItemMoverTest, TheCountStaysAboveZeroForAWhileAndNeverGoesBelow) {
    mover.beginProgrammaticMove();
    mover.endProgrammaticMove();
    mover.endProgrammaticMove();
    desktop.loop.runFor(0.29);
    EXPECT_EQ(mover.programmaticMoveCount(), 1);
    desktop.loop.runFor(0.02);
    EXPECT_EQ(mover.programmaticMoveCount(), 0);
}

TEST_F(ItemMoverTest, TheShelfsMoveNeverChangesTheOrder) {
    ScannedBarItem scanned;
    scanned.windowID = row(400);
    auto order = desktop.bar.order();
    EXPECT_TRUE(finish(mover.moveForShelf(BarItem(scanned), target))) << "it stands in sight";
    EXPECT_FALSE(mover.isFloating(scanned.windowID));
    // Without a toggle in the bar there is nothing to come out beside.
    launch("Last", "org.last", 30);
    desktop.bar.setLength(order.front(), 1500);
    desktop.bar.setLength(order.back(), 1500);
    desktop.loop.runFor(1);
    WindowNumber last = scanned.windowID = desktop.bar.order().front();
    EXPECT_FALSE(finish(mover.moveForShelf(BarItem(scanned), target)));
    EXPECT_EQ(desktop.bar.order().front(), last);
}

TEST_F(ItemMoverTest, AReorderInPlaceLeavesThePointerAlone) {
    WindowNumber window = row(24);
    Point cursor = platform.events.mouseLocation();
    EXPECT_TRUE(finish(mover.reorderInPlace(window, target)));
    EXPECT_EQ(desktop.bar.order().back(), window);
    expectPutBack(cursor);
    EXPECT_TRUE(finish(mover.reorderInPlace(window, target))) << "it stands there";
    EXPECT_EQ(logCount("fromOffscreen=(20000,20000) dest=("), 1);
}

}  // namespace
}  // namespace nevo
