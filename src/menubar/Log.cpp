#include "menubar/Log.h"

#include <unistd.h>

#include <string>

namespace nevo::menubar {

void logLine(std::string_view text) {
    std::string line = "nevo-menubar: " + std::string(text) + "\n";
    // One write, so that lines of several programs don't mix; nothing to be done where it fails.
    [[maybe_unused]] auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace nevo::menubar
