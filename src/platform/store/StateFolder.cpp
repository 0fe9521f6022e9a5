#include "platform/store/StateFolder.h"

#include <cstdlib>

namespace nevo {

std::filesystem::path stateFolder() {
    const char* state = std::getenv("XDG_STATE_HOME");
    // The base directory rules have relative paths ignored.
    if (state != nullptr && *state == '/') return std::filesystem::path(state) / "nevo";
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home != nullptr ? home : "/") / ".local/state/nevo";
}

}  // namespace nevo
