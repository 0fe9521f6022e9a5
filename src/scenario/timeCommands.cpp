#include "scenario/commandSupport.h"

namespace nevo {

namespace {

Step readWait(LineReader& reader) {
    double seconds = reader.amount("SECONDS");
    return [seconds](ScenarioRun& run) {
        run.pass(seconds);
        return Outcome{};
    };
}

Step readSettle(LineReader& reader) {
    double limit = reader.atEnd() ? 60 : reader.amount("SECONDS");
    return [limit](ScenarioRun& run) {
        if (run.desktop().loop.runUntilIdle(limit)) return Outcome{};
        return Outcome::failed("the desktop hasn't come to rest within the limit");
    };
}

Step readAfter(LineReader& reader) {
    double seconds = reader.amount("SECONDS");
    LineReader inner(reader.remaining());
    Step step = readCommand(inner, true);
    if (!inner.error().empty()) reader.fail(inner.error());
    return [seconds, step](ScenarioRun& run) {
        run.later(seconds, step);
        return Outcome{};
    };
}

Step readSay(LineReader& reader) {
    std::vector<std::string> words = reader.rest("TEXT", 1);
    return [](ScenarioRun&) { return Outcome{}; };
}

Step readForgetLog(LineReader&) {
    return [](ScenarioRun& run) {
        run.logStart = run.desktop().log.lines().size();
        return Outcome{};
    };
}

}  // namespace

std::vector<Command> timeCommands() {
    return {
        {"wait", "SECONDS", "Lets time pass.", readWait, true},
        {"settle", "[SECONDS]",
         "Lets time pass until nothing but repeating timers is pending; fails after 60 s or "
         "SECONDS.",
         readSettle, true},
        {"after", "SECONDS COMMAND...",
         "Does a command later, while other lines are at work; also while the program blocks.",
         readAfter},
        {"say", "TEXT...", "Does nothing; stands in the trace.", readSay},
        {"forget-log", "", "Log lines so far don't count for expectations any more.",
         readForgetLog},
    };
}

}  // namespace nevo
