#pragma once

#include "menubar/Display.h"

namespace nevo::menubar {

/// Puts the bar back above the programs' windows that cover it, but below what stands above all on
/// purpose: menus, tool tips, screen lockers, a window that is full-screen. So it never fights
/// another window that raises itself.
void raiseAbovePrograms(const Display& display, xcb_window_t bar);

}  // namespace nevo::menubar
