#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "randomrun/Invariants.h"
#include "randomrun/Probes.h"

namespace nevo {

/// A line that was played, and what was looked at after it beside what is looked at each time.
struct PlayedLine {
    std::string text;
    /// A click of which something may be expected.
    bool isTrial = false;
    enum class Then {
        nothing,
        /// What has to hold at rest, if Nevo is at rest then.
        lookAtRest,
        /// The same; and it is at rest.
        demandRest,
        /// Whether the click of the line before did what it had to.
        lookAtClick,
    } then = Then::nothing;
};

struct RandomResult {
    /// Nothing when every invariant held.
    std::optional<Broken> broken;
    /// Events played, and how many of them while the shelf was in force.
    int steps = 0;
    int stepsInShelfMode = 0;
    /// Seconds on the virtual clock.
    double time = 0;
    /// Of the whole trace.
    std::uint64_t traceHash = 14695981039346656037U;
    std::map<std::string, int> eventCounts;
    /// How often each operation of the desktop failed.
    std::map<std::string, int> faultCounts;
    Probes probes;
    /// The end of the trace.
    std::deque<std::string> lastTrace;
    /// What was played, as a scenario.
    std::vector<PlayedLine> played;
};

/// Plays `steps` random events on a desktop of their own; the same seed gives the same events and
/// the same trace. Ends at the first broken invariant.
RandomResult runRandom(std::uint64_t seed, int steps);

/// For a person: what broke, where, the end of the trace, and how to see it again.
std::string failureReport(std::uint64_t seed, const RandomResult& result);

/// Plays these lines, passing over those that make no sense any more.
RandomResult replay(const std::vector<PlayedLine>& lines);

/// Leaves out lines as long as the same invariant breaks. Plays them many times.
std::vector<PlayedLine> shrunk(std::vector<PlayedLine> lines, const Broken& broken);

}  // namespace nevo
