#pragma once

#include <filesystem>

namespace nevo {

/// Where the programs keep what they find out by themselves: `nevo` below $XDG_STATE_HOME, or below
/// `~/.local/state`. It may not exist yet.
std::filesystem::path stateFolder();

}  // namespace nevo
