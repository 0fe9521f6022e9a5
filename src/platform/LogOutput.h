#pragma once

#include <string_view>

namespace nevo {

/// Where log lines go. All calls ignore their failures: a full disk must not stop the program. An
/// implementation may count a line that comes again instead of writing it each time.
class LogOutput {
public:
    virtual ~LogOutput() = default;
    virtual void writeStandardError(std::string_view text) = 0;
    /// Standard output, for what is said outside the log.
    virtual void writeStandardOutput(std::string_view text) = 0;
    /// The system's own log, at its default level (`os_log`).
    virtual void writeSystemLog(std::string_view text) = 0;
    /// Appends a line to `nevo_debug.log` in the user's home directory, or makes it.
    virtual void appendToLogFile(std::string_view text) = 0;
};

}  // namespace nevo
