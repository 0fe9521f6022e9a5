// How long the bar is in motion after a user has chosen "always hide", on the virtual clock.
#include <benchmark/benchmark.h>

#include "core/RuleStore.h"
#include "entry/NevoApp.h"
#include "fillDesktop.h"

namespace nevo {
namespace {

constexpr int items = 16;
constexpr double startTime = 60.0;
constexpr double watchTime = 10.0;
constexpr double step = 0.005;

/// What a user sees of the bar.
std::string seen(SimDesktop& desktop) {
    std::string text;
    for (WindowNumber window : desktop.bar.order()) {
        const SimWindow* held = desktop.windows.find(window);
        bool isSeen = held->alpha > 0 && desktop.bar.isOnScreen(window);
        if (isSeen) text += std::to_string(window) + "@" + std::to_string(held->frame.x) + " ";
    }
    return text;
}

/// Puts the item at the right end of the row, as a hand would.
void dragToRightEnd(SimDesktop& desktop, WindowNumber window) {
    Rect frame = desktop.windows.find(window)->frame;
    Point end{desktop.screens.displays().front().frame.maxX() - 1, frame.midY()};
    desktop.bar.beginDrag(window, frame.center(), true);
    desktop.bar.dragTo(end);
    desktop.bar.endDrag(end);
    desktop.loop.runFor(1);
}

enum class Item { shown, hidden, inOpenSection };

/// Seconds from the choice to the last change of the bar.
void alwaysHide(benchmark::State& state, Item kind) {
    double last = 0;
    for (auto _ : state) {
        SimDesktop desktop;
        desktop.trace.keepsLines = false;
        fillDesktop(desktop, items);
        desktop.defaults.standard().set("nevo_onboarding_completed", true);
        std::weak_ptr<NevoApp> app;
        desktop.start([&](Platform platform) {
            auto made = std::make_shared<NevoApp>(platform);
            app = made;
            return made;
        });
        desktop.loop.runFor(startTime);
        auto toggle = [&] {
            app.lock()->delegate().controller()->toggle();
            desktop.loop.runFor(1);
        };
        WindowNumber window = desktop.bar.findLabel("Program" + std::to_string(items / 2))->window;
        if (kind != Item::hidden) toggle();
        if (kind == Item::shown) {
            dragToRightEnd(desktop, window);
            toggle();
        }
        desktop.loop.runFor(startTime);
        Signal changes;
        RuleStore(desktop.defaults.standard(), desktop.notifications, changes)
            .setIconRule(IconRule::alwaysHide, idOfItem(items / 2));
        std::string before = seen(desktop);
        last = 0;
        double chosen = desktop.loop.now();
        while (desktop.loop.now() < chosen + watchTime) {
            desktop.loop.runFor(step);
            std::string now = seen(desktop);
            if (now != std::exchange(before, now)) last = desktop.loop.now() - chosen;
        }
        desktop.application.die();
        desktop.reap();
    }
    state.counters["seconds"] = last;
}

void alwaysHideShownItem(benchmark::State& state) { alwaysHide(state, Item::shown); }
void alwaysHideHiddenItem(benchmark::State& state) { alwaysHide(state, Item::hidden); }
void alwaysHideInOpenSection(benchmark::State& state) { alwaysHide(state, Item::inOpenSection); }

BENCHMARK(alwaysHideShownItem)->Unit(benchmark::kMillisecond);
BENCHMARK(alwaysHideHiddenItem)->Unit(benchmark::kMillisecond);
BENCHMARK(alwaysHideInOpenSection)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace nevo
