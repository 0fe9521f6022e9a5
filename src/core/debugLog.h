#pragma once

#include <string_view>

#include "platform/LogOutput.h"

namespace nevo {

/// Writes one line of the program's log, to standard error and to the log file in the user's home
/// directory. Process-wide, as a log is; without an output in force the line is dropped.
void debugLog(std::string_view message);

/// While it lives, `debugLog` writes to that output; afterwards to the one before.
class DebugLogScope {
public:
    explicit DebugLogScope(LogOutput& output);
    ~DebugLogScope();
    DebugLogScope(const DebugLogScope&) = delete;
    DebugLogScope& operator=(const DebugLogScope&) = delete;

private:
    LogOutput* previous;
};

}  // namespace nevo
