#include <fmt/format.h>

#include <fstream>
#include <iostream>

#include "scenario/ScenarioRun.h"

namespace {

using namespace nevo;

constexpr int expectationFailed = 1;
constexpr int unreadable = 2;

constexpr const char* usage =
    "usage: nevo-sim [--quiet] SCENARIO...\n"
    "\n"
    "Runs scenarios, each on a simulated desktop of its own, and prints what happened there and\n"
    "every log line, with virtual times.\n"
    "\n"
    "  --quiet          print failures only\n"
    "  --help           print this\n"
    "  --help-language  print the commands that a scenario is written in\n"
    "\n"
    "Exit status: 0 when every expectation was met, 1 when one wasn't, 2 when a file or a line of\n"
    "it couldn't be read.\n";

void printLanguage() {
    for (const Command& command : commands()) {
        fmt::print("{}{}{}\n    {}\n", command.name, command.arguments.empty() ? "" : " ",
                   command.arguments, command.help);
    }
    fmt::print("\nOperations that can fail: {}.\n", listed(SimFaults::names()));
}

int runFile(const std::string& name, bool quiet) {
    std::ifstream file(name);
    if (!file) {
        fmt::print(stderr, "{}: the file can't be read\n", name);
        return unreadable;
    }
    Scenario scenario = readScenario(name, file);
    for (const std::string& error : scenario.errors) fmt::print(stderr, "{}\n", error);
    if (!scenario.errors.empty()) return unreadable;

    ScenarioRun run(scenario);
    if (!quiet) {
        run.desktop().trace.listener = [](const std::string& line) { fmt::print("{}\n", line); };
    }
    Outcome outcome = run.run();
    run.desktop().trace.listener = nullptr;
    std::fflush(stdout);
    if (!outcome) fmt::print(stderr, "{}\n", outcome.message);
    if (outcome.kind == Outcome::Kind::unreadable) return unreadable;
    return outcome ? 0 : expectationFailed;
}

}  // namespace

int main(int count, char** words) {
    bool quiet = false;
    std::vector<std::string> files;
    for (int i = 1; i < count; ++i) {
        std::string word = words[i];
        if (word == "--help") {
            fmt::print("{}", usage);
            return 0;
        }
        if (word == "--help-language") {
            printLanguage();
            return 0;
        }
        if (word == "--quiet") {
            quiet = true;
        } else if (word.size() > 1 && word.front() == '-') {
            fmt::print(stderr, "there is no option {}\n\n{}", word, usage);
            return unreadable;
        } else {
            files.push_back(word);
        }
    }
    if (files.empty()) {
        fmt::print(stderr, "{}", usage);
        return unreadable;
    }
    int status = 0;
    for (const std::string& file : files) status = std::max(status, runFile(file, quiet));
    return status;
}
