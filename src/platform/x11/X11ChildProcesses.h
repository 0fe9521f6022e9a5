#pragma once

#include "platform/ChildProcesses.h"

namespace nevo {

class X11ChildProcesses : public ChildProcesses {
public:
    std::optional<std::string> launch(const std::string& executable,
                                      const std::vector<std::string>& arguments) override;
    /// At most half a minute.
    Result<int> run(const std::string& executable,
                    const std::vector<std::string>& arguments) override;
};

}  // namespace nevo
