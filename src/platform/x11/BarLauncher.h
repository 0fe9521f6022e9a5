#pragma once

#include <string>

#include "platform/x11/XServer.h"

namespace nevo {

/// Sees to it that a menu bar runs on the display: starts the one that is installed beside this
/// program where there is none, and waits for it. Empty on success, else one sentence for people.
std::string ensureBar(const XServer& server);

}  // namespace nevo
