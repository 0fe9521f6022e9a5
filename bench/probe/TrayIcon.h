#pragma once

#include <optional>
#include <string>

#include "Server.h"

namespace nevo::bench {

/// Docks a well-behaved icon in the tray, and gives its window. Waits until it is there.
xcb_window_t dockIcon(const Server& server, const std::string& name, std::uint32_t events);

/// The middle of a window on the screen; nothing when it isn't viewable.
std::optional<Point> middleOf(const Server& server, xcb_window_t window);

bool isViewable(const Server& server, xcb_window_t window);

}  // namespace nevo::bench
