// What the item monitor's pass costs, in the whole program on the simulated desktop.
//
// Once the start is over, the monitor's timer is all that is pending on either side of the desktop;
// this is asserted before and after. The clock jumps from one due moment to the next, so two
// seconds of virtual time are one pass and nothing else.
#include <benchmark/benchmark.h>

#include "core/RuleStore.h"
#include "entry/NevoApp.h"
#include "fillDesktop.h"

namespace nevo {
namespace {

constexpr double monitorInterval = 2.0;
/// Start, first collapse, the replay of the rules and their drags.
constexpr double startTime = 60.0;
constexpr int rulesOfAKind = 5;

/// The program in shelf mode with everything hidden but what five rules show; five others hide.
class Running {
public:
    explicit Running(std::int64_t items) {
        desktop.trace.keepsLines = false;
        fillDesktop(desktop, items);
        DefaultsDomain& store = desktop.defaults.standard();
        store.set("nevo_onboarding_completed", true);
        store.set("displayMode", std::string("shelf"));
        Signal changes;
        IconRules rules;
        for (int i = 0; i < rulesOfAKind; ++i) {
            rules[idOfItem(2 * i)] = IconRule::alwaysShow;
            rules[idOfItem(2 * i + 1)] = IconRule::alwaysHide;
        }
        RuleStore(store, desktop.notifications, changes).saveIconRules(rules);
        desktop.start([this](Platform platform) {
            auto made = std::make_shared<NevoApp>(platform);
            app = made;
            return made;
        });
        desktop.loop.runFor(startTime);
    }

    ~Running() {
        desktop.application.die();
        desktop.reap();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    void pass() { desktop.loop.runFor(monitorInterval); }

    /// Whether the monitor's timer is the only thing that is pending.
    bool isQuiet() { return desktop.loop.programTimerCount() == 1 && desktop.loop.runUntilIdle(0); }

    /// Whether all but the items of the showing rules are out of sight.
    bool hides(std::int64_t items) const {
        return static_cast<std::int64_t>(desktop.hiddenItems().size()) == items - rulesOfAKind;
    }

    /// Whether a pass takes back what somebody else did to an item that a rule hides.
    bool corrects() {
        const SimBar::Item* item = desktop.bar.findLabel("Program1");
        SimWindow* window = desktop.windows.find(item->window);
        if (window->alpha != 0) return false;
        window->alpha = 1;
        pass();
        return window->alpha == 0;
    }

    SimDesktop desktop;

private:
    std::weak_ptr<NevoApp> app;
};

void monitorPass(benchmark::State& state) {
    Running running(state.range(0));
    if (!running.isQuiet()) return state.SkipWithError("something else is pending");
    if (!running.hides(state.range(0))) return state.SkipWithError("other items are hidden");
    for (auto _ : state) running.pass();
    if (!running.isQuiet()) state.SkipWithError("something else was pending at the end");
    if (!running.corrects()) state.SkipWithError("the passes did nothing");
}

/// The peer: what no pass can do without.
void readFrames(benchmark::State& state) {
    Running running(state.range(0));
    const SimWindowServer& windows = running.desktop.windowServer;
    double sum = 0;
    for (auto _ : state) {
        for (WindowNumber window : windows.menuBarWindowList(*windows.windowCount()).value())
            sum += windows.windowFrame(window)->x;
    }
    benchmark::DoNotOptimize(sum);
}

BENCHMARK(monitorPass)->Arg(30)->Arg(300)->Arg(3000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readFrames)->Arg(30)->Arg(300)->Arg(3000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace nevo
