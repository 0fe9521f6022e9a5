// How the cost of finding each item's rule grows with the number of rules.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "core/RuleStore.h"
#include "discovery/ItemIdentity.h"
#include "fillDesktop.h"

namespace nevo {
namespace {

constexpr std::int64_t items = 30;

/// Item and rule of each number, in turns: the rule stands under the item's id, under its program's
/// alone, under a name that the item no longer has, and the item has none.
constexpr std::int64_t kinds = 4;
constexpr std::int64_t noRule = 3;

std::string keyOfRule(std::int64_t number) {
    switch (number % kinds) {
        case 0:
            return idOfItem(number);
        case 1:
            return bundleOf(number);
        case 2:
            return makePersistedID("Old name", bundleOf(number));
        default:
            // Of a program that isn't there.
            return makePersistedID("Item-0", bundleOf(number) + "x");
    }
}

IconRules makeRules(std::int64_t count) {
    IconRules rules;
    for (std::int64_t i = 0; i < count; ++i) {
        rules[keyOfRule(i)] = i % 2 == 0 ? IconRule::alwaysShow : IconRule::alwaysHide;
    }
    return rules;
}

ScannedBarItems makeItems() {
    ScannedBarItems made(items);
    for (std::int64_t i = 0; i < items; ++i) {
        ScannedBarItem& item = made[static_cast<std::size_t>(i)];
        item.bundleID = bundleOf(i);
        item.persistedID = idOfItem(i);
        item.label = "Program";
    }
    return made;
}

std::int64_t matches(const ScannedBarItems& all, const IconRules& rules) {
    std::int64_t found = 0;
    for (const ScannedBarItem& item : all) found += matchIconRule(item, rules, all) ? 1 : 0;
    return found;
}

std::int64_t expectedMatches(std::int64_t rules) {
    std::int64_t expected = 0;
    for (std::int64_t i = 0; i < std::min(items, rules); ++i) expected += i % kinds != noRule;
    return expected;
}

void matchRules(benchmark::State& state) {
    ScannedBarItems all = makeItems();
    IconRules rules = makeRules(state.range(0));
    std::int64_t found = 0;
    for (auto _ : state) benchmark::DoNotOptimize(found = matches(all, rules));
    if (found != expectedMatches(state.range(0))) state.SkipWithError("other rules were found");
    state.counters["perItem"] = benchmark::Counter(
        static_cast<double>(items),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// The peer: a pass reads the stored rules before it asks for any.
void loadRules(benchmark::State& state) {
    SimDesktop desktop;
    Signal changes;
    RuleStore store(desktop.defaults.standard(), desktop.notifications, changes);
    store.saveIconRules(makeRules(state.range(0)));
    std::size_t found = 0;
    for (auto _ : state) benchmark::DoNotOptimize(found = store.loadIconRules().size());
    if (found != static_cast<std::size_t>(state.range(0))) state.SkipWithError("rules are missing");
}

BENCHMARK(matchRules)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(loadRules)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace nevo
