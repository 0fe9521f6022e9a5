#pragma once

#include <string>
#include <vector>

#include "platform/x11/XServer.h"

namespace nevo {

/// Whether a menu bar or another program's tray is there.
bool trayIsTaken(const XServer& server);

/// Sees to it that a menu bar runs on the display: starts the one that is installed beside this
/// program where there is none, and waits for it. Empty on success, else one sentence for people.
std::string ensureBar(const XServer& server);

/// Starts the bar that is installed beside this program, and doesn't wait for it. It goes on when
/// this program ends. Empty on success, else one sentence for people.
std::string launchBar(const std::vector<std::string>& options);

}  // namespace nevo
