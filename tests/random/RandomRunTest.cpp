// Random events and faults on the simulated desktop: whatever happens, the invariants hold, the
// same seed does the same, and the rare turns of the program are reached.

#include <gtest/gtest.h>

#include "platform/sim/SimFaults.h"
#include "randomrun/RandomRun.h"

namespace nevo {
namespace {

TEST(RandomRun, WhateverHappensTheInvariantsHold) {
    Probes probes;
    std::map<std::string, int> struck;
    int steps = 0;
    int stepsInShelfMode = 0;
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        RandomResult result = runRandom(seed, NEVO_RANDOM_STEPS);
        EXPECT_FALSE(result.broken) << failureReport(seed, result);
        probes.add(result.probes);
        steps += result.steps;
        stepsInShelfMode += result.stepsInShelfMode;
        for (const auto& [operation, count] : result.faultCounts) struck[operation] += count;
    }
    if (HasFailure() || NEVO_RANDOM_STEPS < 2500) return;
    // A run that doesn't get about proves little.
    EXPECT_LE(probes.neverReached().size(), Probes::texts().size() / 10)
        << testing::PrintToString(probes.neverReached());
    // Where the program is installed belongs to a start, not to what happens to it later.
    struck.erase("trashFile");
    struck.erase("moveFile");
    auto operations = struck.size();
    std::erase_if(struck, [](const auto& each) { return each.second > 0; });
    EXPECT_LE(struck.size(), operations / 20) << testing::PrintToString(struck);
    // Both modes get their share.
    EXPECT_GT(stepsInShelfMode, steps / 4);
    EXPECT_LT(stepsInShelfMode, steps * 3 / 4);
}

TEST(RandomRun, TheSameSeedGivesTheSameTraceAndSoDoItsLines) {
    RandomResult first = runRandom(77, 1000);
    ASSERT_FALSE(first.broken) << failureReport(77, first);
    EXPECT_GT(first.time, 100);
    EXPECT_EQ(runRandom(77, 1000).traceHash, first.traceHash);
    EXPECT_EQ(replay(first.played).traceHash, first.traceHash);
    EXPECT_NE(runRandom(78, 1000).traceHash, first.traceHash);
}

}  // namespace
}  // namespace nevo
