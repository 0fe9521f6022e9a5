#pragma once

#include <functional>
#include <string>
#include <vector>

#include "scenario/LineReader.h"

namespace nevo {

class ScenarioRun;

/// How a step of a scenario ended.
struct Outcome {
    enum class Kind {
        ok,
        /// The line makes no sense here: it names something that doesn't exist.
        unreadable,
        /// An expectation isn't met.
        failed,
    };
    Kind kind = Kind::ok;
    std::string message;

    static Outcome unreadable(std::string text) { return {Kind::unreadable, std::move(text)}; }
    static Outcome failed(std::string text) { return {Kind::failed, std::move(text)}; }
    /// `failed` unless both are the same.
    static Outcome compare(const std::string& what, const std::string& expected,
                           const std::string& actual) {
        if (expected == actual) return {};
        return failed(what + ": expected " + expected + ", actual " + actual);
    }
    explicit operator bool() const { return kind == Kind::ok; }
};

/// A command with its arguments, ready to be run any number of times.
using Step = std::function<Outcome(ScenarioRun&)>;

/// One word of the language, as the parser, `--help-language` and the documentation's test read it.
struct Command {
    /// One word, or two for those that begin with "expect".
    std::string name;
    std::string arguments;
    std::string help;
    /// Reads the arguments; what can't be read is the reader's error, and the step is dropped then.
    std::function<Step(LineReader&)> read;
    /// A command that lets time pass can't itself be put off with `after`.
    bool takesTime = false;
};

/// All commands, in the order in which they are explained.
const std::vector<Command>& commands();

/// A line's words as a step; with nothing the reader tells why not. `delayed` is for a command
/// behind `after`.
Step readCommand(LineReader& reader, bool delayed);

// The groups that make up the table.
std::vector<Command> displayCommands();
std::vector<Command> programCommands();
std::vector<Command> nevoCommands();
std::vector<Command> inputCommands();
std::vector<Command> storeCommands();
std::vector<Command> timeCommands();
std::vector<Command> barExpectations();
std::vector<Command> nevoExpectations();
std::vector<Command> panelCommands();
std::vector<Command> controlCommands();
std::vector<Command> installationCommands();

}  // namespace nevo
