#pragma once

#include <optional>

#include "platform/x11/XServer.h"

namespace nevo {

/// Makes this process the manager of the display, by owning a selection with its lease window.
/// Nothing on success, else the process id of the one that is it already (0 when it can't be told).
std::optional<ProcessId> claimManagerSelection(XServer& server);

}  // namespace nevo
