#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Result.h"

namespace nevo {

/// Child processes (`NSTask`).
class ChildProcesses {
public:
    virtual ~ChildProcesses() = default;
    /// Starts a program that outlives this one (`launchAndReturnError:`). Nothing on success, or
    /// what went wrong, for people.
    virtual std::optional<std::string> launch(const std::string& executable,
                                              const std::vector<std::string>& arguments) = 0;
    /// Runs a short program to its end and gives its exit status (`waitUntilExit`,
    /// `terminationStatus`), or why it can't be started.
    virtual Result<int> run(const std::string& executable,
                            const std::vector<std::string>& arguments) = 0;
};

}  // namespace nevo
