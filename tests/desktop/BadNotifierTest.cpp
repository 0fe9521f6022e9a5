// Programs that offer items over the bus and behave badly: whatever they do, the row is right, and
// a program beside them gets its clicks.

#include <csignal>

#include "desktop/ProbeSession.h"

namespace nevo::desktoptest {
namespace {

class BadNotifiers : public ProbeSession {
protected:
    Process& startBad(const std::string& kind) {
        return ProbeSession::startBad(std::string(NEVO_BAD_NOTIFIER) + " " + kind, "registered");
    }

    /// Each click arrives, and once.
    void expectProbeAnswers() {
        for (int i = 0; i < 3; ++i) {
            int before = probe->clicks();
            click(probeItem());
            waitFor("the probe gets a click", [&] { return probe->clicks() > before; });
            EXPECT_EQ(probe->clicks(), before + 1);
        }
    }

    /// A program that behaves, started after the bad one: the bar still takes items in and shows
    /// them.
    void expectOthersCome(std::size_t count) {
        Process& good = startProgram("qasmixer --tray --no-single");
        waitFor("a good item comes", [&] { return items().size() == count + 1; });
        kill(good, SIGKILL);
        waitFor("the good item goes", [&] { return items().size() == count; });
    }
};

TEST_F(BadNotifiers, thatShowNothingTakeNoRoom) {
    for (const char* kind : {"nopath", "silent"}) {
        Process& bad = startBad(kind);
        expectOthersCome(1);
        expectProbeAnswers();
        EXPECT_EQ(items().size(), 1U) << kind;
        expectGoneWith(bad);
    }
}

TEST_F(BadNotifiers, thatAnswerLateAreShownThen) {
    Process& late = startBad("late");
    expectProbeAnswers();
    EXPECT_EQ(items().size(), 1U);
    EXPECT_TRUE(holdsWithin(std::chrono::minutes(2), [this] { return items().size() == 2; }));
    expectProbeAnswers();
    expectGoneWith(late);
}

TEST_F(BadNotifiers, thatLieAboutThemselvesGetASlotAtMost) {
    for (const char* kind : {"lying", "large", "tricky-title"}) {
        Process& bad = startBad(kind);
        waitFor("it has a slot", [&] { return items().size() == 2; });
        EXPECT_EQ(items().front().slot.width, barView->frame().height) << kind;
        expectProbeAnswers();
        expectGoneWith(bad);
    }
    // What is too large to be taken in costs that alone.
    for (const char* kind : {"huge", "long-title"}) {
        Process& bad = startBad(kind);
        expectOthersCome(1);
        expectProbeAnswers();
        waitFor("it has a slot", [&] { return items().size() == 2; });
        expectGoneWith(bad);
    }
}

TEST_F(BadNotifiers, thatFloodHoldNobodyUp) {
    Process& flood = startBad("flood");
    waitFor("it has a slot", [&] { return items().size() == 2; });
    expectOthersCome(2);
    expectProbeAnswers();
    expectGoneWith(flood);

    Process& crowd = startBad("thousand");
    waitFor("a few of the crowd have come", [&] { return items().size() == 33; });
    expectProbeAnswers();
    expectOthersCome(33);
    EXPECT_TRUE(becomesDense());
    expectGoneWith(crowd);
}

TEST_F(BadNotifiers, thatForgeTheBussWordsMakeNobodyLeave) {
    startProgram("qasmixer --tray --no-single");
    waitForItems(2);
    Process& forger = startBad("forger");
    // Its item comes after its lies.
    waitFor("it has a slot", [&] { return items().size() == 3; });
    EXPECT_EQ(item("qasmixer").slot.width, barView->frame().height);
    kill(forger, SIGKILL);
    waitFor("only its own item goes", [&] { return items().size() == 2; });
}

TEST_F(BadNotifiers, thatComeAndGoFindTheirPlace) {
    Process& shy = startBad("plain");
    waitForItems(2);
    startProgram("qasmixer --tray --no-single");
    waitForItems(3);
    Names order = namesOnScreen();
    ASSERT_EQ(order[1], "bad-notifier");
    for (int i = 0; i < 5; ++i) {
        shy.signal(SIGUSR1);
        waitFor("one that has nothing to show takes no room",
                [&] { return namesOnScreen().size() == 2; });
        EXPECT_TRUE(becomesDense());
        shy.signal(SIGUSR1);
        waitForOnScreen(order);
    }
}

TEST_F(BadNotifiers, thatRegisterOnceAreFoundByTheNextBar) {
    startBad("plain");
    startBad("oddpath");
    waitFor("both have a slot", [&] { return items().size() == 3; });
    kill(bar(), SIGKILL);
    startBar();
    waitFor("all are there again", [&] { return items().size() == 3; });
    EXPECT_TRUE(becomesDense());
    expectProbeAnswers();
}

TEST_F(BadNotifiers, thatLeaveOrHangWhileTheirMenuOpensTakeItAlong) {
    Process& leaver = startBad("leaver");
    waitFor("it has a slot", [&] { return items().size() == 2; });
    rightClick(item("bad-notifier"));
    EXPECT_EQ(leaver.waitForEnd(), 0);
    kill(leaver, SIGKILL);
    waitFor("its item is gone", [&] { return items().size() == 1; });
    expectProbeAnswers();

    // It has said that its picture is new, and says nothing more.
    Process& hanging = startBad("animated");
    waitFor("it has a slot", [&] { return items().size() == 2; });
    Rect place = item("bad-notifier").place;
    auto first = screenshot().pixels(place);
    waitFor("its picture changes", [&] { return screenshot().pixels(place) != first; });
    hanging.signal(SIGSTOP);
    expectProbeAnswers();
    Picture before = screenshot();
    rightClick(item("bad-notifier"));
    expectOthersCome(2);
    expectProbeAnswers();
    // The last picture stays.
    EXPECT_EQ(screenshot().pixels(place), before.pixels(place));
    expectGoneWith(hanging);
}

}  // namespace
}  // namespace nevo::desktoptest
