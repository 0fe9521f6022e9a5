#include "core/debugLog.h"

#include <string>

namespace nevo {

namespace {
LogOutput* currentOutput = nullptr;
}

void debugLog(std::string_view message) {
    if (!currentOutput) return;
    std::string line(message);
    line += '\n';
    currentOutput->writeStandardError(line);
    currentOutput->appendToLogFile(line);
}

DebugLogScope::DebugLogScope(LogOutput& output) : previous(currentOutput) {
    currentOutput = &output;
}
DebugLogScope::~DebugLogScope() { currentOutput = previous; }

}  // namespace nevo
