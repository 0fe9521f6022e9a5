#pragma once

#include "platform/LogOutput.h"

namespace nevo {

class X11LogOutput : public LogOutput {
public:
    void writeStandardError(std::string_view text) override;
    void writeStandardOutput(std::string_view text) override;
    void writeSystemLog(std::string_view text) override;
    void appendToLogFile(std::string_view text) override;
};

}  // namespace nevo
