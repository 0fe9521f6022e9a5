// Programs that behave badly: whatever they do, a well-behaved one beside them is laid out and gets
// its clicks, and nothing of theirs is left when they end.

#include <algorithm>
#include <csignal>

#include "desktop/ProbeSession.h"

namespace nevo::desktoptest {
namespace {

class BadClients : public ProbeSession {
protected:
    void expectProbeAnswers() {
        for (int i = 0; i < 3; ++i) {
            int before = probe->clicks();
            // Neighbours that change all the time push it about, so a click may miss.
            waitFor("the probe gets a click", [&] {
                click(probeItem());
                return probe->clicks() > before;
            });
        }
    }

    Process& startBad(const std::string& kind) {
        return ProbeSession::startBad(std::string(NEVO_BAD_CLIENT) + " " + kind, "docked");
    }

    void expectGoneWith(Process& bad) {
        ProbeSession::expectGoneWith(bad);
        expectProbeAnswers();
    }

    bool allFit() const {
        auto all = items();
        return std::all_of(all.begin(), all.end(), [this](const Item& item) {
            return item.place.height == barView->frame().height &&
                   item.slot.width < barView->frame().width / 2;
        });
    }
};

TEST_F(BadClients, oneThatNeverMapsTakesNoRoom) {
    Process& bad = startBad("unmapped");
    expectProbeAnswers();
    waitFor("the other one takes no room", [&] {
        auto all = items();
        return std::all_of(all.begin(), all.end(), [&](const Item& item) {
            return item.client == probe->window() || item.slot.width == 0;
        });
    });
    EXPECT_TRUE(becomesDense());
    expectGoneWith(bad);
}

TEST_F(BadClients, oneThatAsksForTheWholeScreenGetsASlot) {
    Process& bad = startBad("giant");
    waitFor("both have a slot that fits", [&] { return items().size() == 2 && allFit(); });
    expectProbeAnswers();
    EXPECT_TRUE(allFit() && becomesDense()) << log();
    expectGoneWith(bad);
}

TEST_F(BadClients, oneThatResizesWithoutEndHoldsNobodyUp) {
    Process& bad = startBad("resizer 7");
    waitFor("both have a slot", [&] { return items().size() == 2; });
    expectProbeAnswers();
    expectGoneWith(bad);
}

TEST_F(BadClients, oneThatHangsHoldsNobodyUp) {
    Process& bad = startBad("plain");
    waitForItems(2);
    bad.signal(SIGSTOP);
    expectProbeAnswers();
    setMonitor("1000/300x600/200+0+0");
    waitFor("the bar is laid out anew",
            [&] { return barView->frame().width == 1000 && namesOnScreen().size() == 2; });
    EXPECT_TRUE(becomesDense());
    expectProbeAnswers();
    expectGoneWith(bad);
}

TEST_F(BadClients, aCrowdThatComesAndGoesLeavesNoGhosts) {
    for (const char* seed : {"1", "2", "3"}) {
        Process& bad = startBad(std::string("crowd ") + seed);
        expectProbeAnswers();
        waitFor("the crowd has come to rest", [&] { return namesOnScreen().size() == 13; });
        EXPECT_TRUE(becomesDense());
        expectGoneWith(bad);
    }
}

}  // namespace
}  // namespace nevo::desktoptest
