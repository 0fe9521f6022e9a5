#pragma once

#include "platform/LogOutput.h"
#include "platform/store/RepeatedLines.h"

namespace nevo {

/// Counts lines that come again within a minute, for standard error and the file each; writes every
/// line where the environment has NEVO_LOG_ALL.
class X11LogOutput : public LogOutput {
public:
    X11LogOutput();
    /// Writes what is still counted.
    ~X11LogOutput() override;

    void writeStandardError(std::string_view text) override;
    void writeStandardOutput(std::string_view text) override;
    void writeSystemLog(std::string_view text) override;
    void appendToLogFile(std::string_view text) override;

private:
    bool writesAll;
    RepeatedLines standardError;
    RepeatedLines logFile;
};

}  // namespace nevo
