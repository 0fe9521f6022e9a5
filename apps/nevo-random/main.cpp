#include <fmt/format.h>
#include <fmt/ranges.h>

#include <charconv>
#include <cstring>

#include "randomrun/RandomRun.h"

namespace {

using namespace nevo;

constexpr int invariantBroken = 1;
constexpr int wrongUsage = 2;

constexpr const char* usage =
    "usage: nevo-random [--seed N] [--steps N] [--scenario] [--shrink]\n"
    "\n"
    "Lets random events happen to Nevo on a simulated desktop and checks after each what has to\n"
    "hold. The same seed gives the same run.\n"
    "\n"
    "  --seed N    1 if not given\n"
    "  --steps N   how many events; 10000 if not given\n"
    "  --scenario  print the lines that were played, for nevo-sim\n"
    "  --shrink    if something broke, print the fewest lines found that break it\n"
    "  --help      print this\n"
    "\n"
    "Exit status: 0 when everything held, 1 when something broke, 2 for words that can't be "
    "read.\n";

struct Options {
    std::uint64_t seed = 1;
    int steps = 10000;
    bool scenario = false;
    bool shrink = false;
};

template <typename Number>
bool readNumber(const char* word, Number& number) {
    const char* end = word + std::strlen(word);
    auto [stop, failure] = std::from_chars(word, end, number);
    return failure == std::errc() && stop == end;
}

bool readOptions(int count, char** words, Options& options) {
    for (int i = 1; i < count; ++i) {
        std::string word = words[i];
        bool hasValue = i + 1 < count;
        if (word == "--scenario") {
            options.scenario = true;
        } else if (word == "--shrink") {
            options.shrink = true;
        } else if (word == "--seed" && hasValue) {
            if (!readNumber(words[++i], options.seed)) return false;
        } else if (word == "--steps" && hasValue) {
            if (!readNumber(words[++i], options.steps) || options.steps < 0) return false;
        } else {
            return false;
        }
    }
    return true;
}

void printLines(const std::vector<PlayedLine>& lines) {
    for (const PlayedLine& line : lines) fmt::print("{}\n", line.text);
}

void printSummary(const Options& options, const RandomResult& result) {
    std::vector<std::string> counts;
    for (const auto& [name, count] : result.eventCounts) {
        counts.push_back(fmt::format("{} {}", name, count));
    }
    std::vector<std::string> missed = result.probes.neverReached();
    fmt::print(
        "seed {}: {} steps, {} of them in shelf mode, {} lines, {:.0f} s of virtual time, trace "
        "{:016x}; events: {}; never reached: {}\n",
        options.seed, result.steps, result.stepsInShelfMode, result.played.size(), result.time,
        result.traceHash, fmt::join(counts, ", "),
        missed.empty() ? "nothing" : fmt::format("{}", fmt::join(missed, ", ")));
}

}  // namespace

int main(int count, char** words) {
    if (count == 2 && std::string(words[1]) == "--help") {
        fmt::print("{}", usage);
        return 0;
    }
    Options options;
    if (!readOptions(count, words, options)) {
        fmt::print(stderr, "{}", usage);
        return wrongUsage;
    }
    RandomResult result = runRandom(options.seed, options.steps);
    if (options.scenario) printLines(result.played);
    if (!result.broken) {
        printSummary(options, result);
        return 0;
    }
    fmt::print(stderr, "{}", failureReport(options.seed, result));
    if (options.shrink) {
        RandomResult again = replay(shrunk(result.played, *result.broken));
        printLines(again.played);
        if (again.broken) fmt::print("# {}\n", again.broken->message);
    }
    return invariantBroken;
}
