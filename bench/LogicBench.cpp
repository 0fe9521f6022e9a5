// How the cost of looking at the bar grows with the number of items, on the simulated desktop.
#include <benchmark/benchmark.h>

#include "discovery/MenuBarScanner.h"
#include "fillDesktop.h"
#include "placement/SectionManager.h"

namespace nevo {
namespace {

Task<> scanOnce(MenuBarScanner* scanner, std::set<WindowNumber> own, ScannedBarItems* result) {
    *result = co_await scanner->scan(own, false);
}

void scan(benchmark::State& state) {
    SimDesktop desktop;
    fillDesktop(desktop, state.range(0));
    Platform platform = desktop.platform();
    ScreenCaptureService capture(platform);
    MenuBarScanner scanner(platform, capture);
    ScannedBarItems items;
    for (auto _ : state) {
        spawn(desktop.loop, scanOnce(&scanner, {}, &items));
        desktop.loop.runReady();
    }
    if (items.size() != static_cast<std::size_t>(state.range(0)))
        state.SkipWithError("not all items were found");
    state.SetComplexityN(state.range(0));
}

void classify(benchmark::State& state) {
    SimDesktop desktop;
    Platform platform = desktop.platform();
    SectionManager sections(platform);
    desktop.loop.runFor(1);
    ScannedBarItems items(static_cast<std::size_t>(state.range(0)));
    for (std::size_t i = 0; i < items.size(); ++i) {
        items[i].persistedID = "Item >>> org.example.program" + std::to_string(i);
        items[i].centerX = static_cast<double>(i % 2000);
    }
    for (auto _ : state) benchmark::DoNotOptimize(sections.classify(items));
    state.SetComplexityN(state.range(0));
}

BENCHMARK(scan)->Arg(30)->Arg(300)->Arg(3000)->Complexity()->Unit(benchmark::kMicrosecond);
BENCHMARK(classify)->Arg(30)->Arg(300)->Arg(3000)->Complexity()->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace nevo
