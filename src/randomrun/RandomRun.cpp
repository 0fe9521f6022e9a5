#include "randomrun/RandomRun.h"

#include <fmt/format.h>

#include <algorithm>

#include "randomrun/EventKind.h"

namespace nevo {

namespace {

constexpr std::size_t traceTail = 40;
/// Events between two looks at the desktop at rest.
constexpr int stepsToRest = 20;
/// Longer than everything that Nevo does by itself after an event, its time-outs too.
constexpr const char* restLine = "wait 12";
constexpr const char* restMore = "wait 0.7";
constexpr int mostRestLines = 60;
constexpr const char* restInvariant = "rest";

using Then = PlayedLine::Then;

/// Plays lines, whoever makes them up, and looks after each of them.
class Player {
public:
    using NextLine = std::function<std::optional<PlayedLine>()>;

    explicit Player(NextLine from)
        : next(std::move(from)), run("random", [this] { return take(); }), invariants(run) {
        run.passesOverNonsense = true;
        run.desktop().trace.keepsLines = false;
        run.desktop().trace.listener = [this](const std::string& line) { note(line); };
    }

    RandomResult play() {
        run.run();
        result.time = run.desktop().loop.now();
        for (const std::string& name : SimFaults::names()) {
            result.faultCounts[name] =
                run.desktop().faults.struckCount(*SimFaults::operation(name));
        }
        run.desktop().trace.listener = nullptr;
        return std::move(result);
    }

    ScenarioRun& scenario() { return run; }
    Invariants& rules() { return invariants; }
    RandomResult& outcome() { return result; }

private:
    std::optional<Scenario::Line> take() {
        look();
        if (result.broken) return std::nullopt;
        auto line = next();
        if (!line) return std::nullopt;
        if (line->isTrial) invariants.beforeClick();
        result.played.push_back(*line);
        int number = static_cast<int>(result.played.size());
        LineReader reader(splitLine(line->text).value_or(std::vector<Word>{}));
        Step step = readCommand(reader, false);
        if (!reader.error().empty()) {
            result.broken = Broken{"language", line->text + ": " + reader.error()};
            return std::nullopt;
        }
        return Scenario::Line{number, line->text, std::move(step)};
    }

    void look() {
        if (result.played.empty() || result.broken) return;
        result.broken = invariants.afterLine();
        Then then = result.played.back().then;
        if (result.broken || then == Then::nothing) return;
        if (then == Then::lookAtClick) {
            result.broken = invariants.afterClick();
        } else if (invariants.isAtRest()) {
            result.broken = invariants.atRest();
        } else if (then == Then::demandRest && invariants.mustComeToRest()) {
            result.broken = Broken{restInvariant, "Nevo doesn't come to rest"};
        }
    }

    void note(const std::string& line) {
        for (char c : line) {
            result.traceHash = (result.traceHash ^ static_cast<unsigned char>(c)) * 1099511628211U;
        }
        result.lastTrace.push_back(line);
        if (result.lastTrace.size() > traceTail) result.lastTrace.pop_front();
        result.probes.noteTrace(line);
        invariants.noteTrace(line);
    }

    NextLine next;
    RandomResult result;
    ScenarioRun run;
    Invariants invariants;
};

/// Makes up the lines of a random run.
class Author {
public:
    Author(std::uint64_t seed, int count)
        : random(seed),
          steps(count),
          player([this] { return next(); }),
          stage(player.scenario(), random) {
        append(openingLines(stage));
    }

    RandomResult run() { return player.play(); }

private:
    std::optional<PlayedLine> next() {
        if (lines.empty()) makeUp();
        if (lines.empty()) return std::nullopt;
        PlayedLine line = std::move(lines.front());
        lines.pop_front();
        return line;
    }

    void makeUp() {
        if (restLines > 0 && goOnResting()) return;
        if (std::exchange(restLines, 0) > 0 && player.rules().beforeClick()) {
            lines.push_back({.text = "click toggle", .isTrial = true});
            lines.push_back({.text = "wait 0.3", .then = Then::lookAtClick});
            return;
        }
        bool nested = player.scenario().isNested();
        if (!nested && sinceRest >= stepsToRest) {
            sinceRest = 0;
            restLines = 1;
            lines.push_back({.text = restLine, .then = Then::lookAtRest});
        } else if (player.outcome().steps < steps) {
            makeUpEvent(nested);
        } else if (stage.isNevoRunning() && !ended) {
            ended = true;
            if (nested) append({"dismiss-menu"});
            append({"quit", "wait 2"});
        }
    }

    bool goOnResting() {
        bool isDone = player.rules().isAtRest() && !player.rules().hasDoubts();
        if (isDone || restLines == mostRestLines) return false;
        ++restLines;
        bool isLast = restLines == mostRestLines;
        lines.push_back({.text = restMore, .then = isLast ? Then::demandRest : Then::lookAtRest});
        return true;
    }

    void makeUpEvent(bool nested) {
        while (lines.empty()) {
            const EventKind& kind = drawn(nested);
            append(kind.make(stage));
            if (!lines.empty()) ++player.outcome().eventCounts[kind.name];
        }
        ++player.outcome().steps;
        player.outcome().stepsInShelfMode += stage.isShelfInForce() ? 1 : 0;
        ++sinceRest;
    }

    const EventKind& drawn(bool nested) {
        auto possible = [&](const EventKind& kind) {
            return kind.menu == EventKind::Menu::either ||
                   (kind.menu == EventKind::Menu::open) == nested;
        };
        int total = 0;
        for (const EventKind& kind : eventKinds()) total += possible(kind) ? kind.weight : 0;
        int left = random.between(1, total);
        for (const EventKind& kind : eventKinds()) {
            left -= possible(kind) ? kind.weight : 0;
            if (left <= 0) return kind;
        }
        return eventKinds().front();
    }

    void append(const Lines& texts) {
        for (const std::string& text : texts) lines.push_back({.text = text});
    }

    RandomSource random;
    int steps;
    Player player;
    Stage stage;
    std::deque<PlayedLine> lines;
    int sinceRest = 0;
    int restLines = 0;
    bool ended = false;
};

}  // namespace

RandomResult runRandom(std::uint64_t seed, int steps) { return Author(seed, steps).run(); }

std::string failureReport(std::uint64_t seed, const RandomResult& result) {
    if (!result.broken) return "";
    std::string text;
    for (const std::string& line : result.lastTrace) text += line + "\n";
    text += fmt::format("\nseed {}, step {}: {} ({})\n", seed, result.steps, result.broken->message,
                        result.broken->invariant);
    text += fmt::format("again: nevo-random --seed {} --steps {} --shrink\n", seed, result.steps);
    return text;
}

RandomResult replay(const std::vector<PlayedLine>& lines) {
    std::size_t at = 0;
    Player player([&]() -> std::optional<PlayedLine> {
        return at < lines.size() ? std::optional(lines[at++]) : std::nullopt;
    });
    return player.play();
}

std::vector<PlayedLine> shrunk(std::vector<PlayedLine> lines, const Broken& broken) {
    // Less time than it is given proves nothing of what doesn't come to rest.
    auto isEvent = [](const PlayedLine& line) { return line.then == Then::nothing; };
    auto end = std::find_if(lines.rbegin(), lines.rend(), isEvent);
    std::size_t kept =
        broken.invariant == restInvariant ? static_cast<std::size_t>(end - lines.rbegin()) : 0;
    for (std::size_t part = lines.size() / 2; part > 0; part /= 2) {
        for (std::size_t at = 0; at + kept < lines.size();) {
            std::vector<PlayedLine> fewer = lines;
            auto from = fewer.begin() + static_cast<std::ptrdiff_t>(at);
            std::size_t most = lines.size() - kept - at;
            fewer.erase(from, from + static_cast<std::ptrdiff_t>(std::min(part, most)));
            RandomResult result = replay(fewer);
            if (result.broken && result.broken->invariant == broken.invariant) {
                // What came after the break wasn't played.
                lines = std::move(result.played);
            } else {
                at += part;
            }
        }
    }
    return lines;
}

}  // namespace nevo
