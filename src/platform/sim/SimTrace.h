#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LogOutput.h"
#include "platform/sim/SimRunLoop.h"

namespace nevo {

/// What happened on the desktop, line by line, with virtual times. The same scenario gives the same
/// trace to the byte.
class SimTrace {
public:
    explicit SimTrace(const SimRunLoop& of) : loop(of) {}

    /// `kind` is the part of the desktop that speaks ("bar", "log"), one word.
    void note(std::string_view kind, std::string_view text);
    const std::vector<std::string>& lines() const { return all; }

    /// Sees each line as it is noted; may be empty.
    std::function<void(const std::string&)> listener;
    /// Whether lines are kept, here and in the log: a very long run has only its listener.
    bool keepsLines = true;

private:
    const SimRunLoop& loop;
    std::vector<std::string> all;
};

/// Keeps the program's log lines, and puts them into the trace.
class SimLog : public LogOutput {
public:
    explicit SimLog(SimTrace& to) : trace(to) {}

    void writeStandardError(std::string_view text) override;
    void writeStandardOutput(std::string_view text) override;
    /// Counts as printed.
    void writeSystemLog(std::string_view text) override {
        writeStandardOutput(std::string(text) + "\n");
    }
    void appendToLogFile(std::string_view text) override {
        if (trace.keepsLines) file += text;
    }

    /// Whole lines of standard error, without their line feeds.
    const std::vector<std::string>& lines() const { return all; }
    const std::string& fileText() const { return file; }
    /// Whole lines of standard output.
    const std::vector<std::string>& printed() const { return output; }

private:
    SimTrace& trace;
    std::vector<std::string> all;
    std::vector<std::string> output;
    std::string unfinished;
    std::string unfinishedOutput;
    std::string file;
};

}  // namespace nevo
