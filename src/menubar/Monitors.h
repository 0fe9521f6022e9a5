#pragma once

#include <vector>

#include "menubar/Display.h"

namespace nevo::menubar {

/// The active monitors (RandR 1.5), the primary one first; the whole root window where the server
/// tells of none.
std::vector<PixelRect> activeMonitors(const Display& display);

/// Asks for the events that tell of monitors changing. A monitor that is only set by software
/// changes with nothing but a ConfigureNotify of the root window, so both are needed.
void selectMonitorEvents(const Display& display);

}  // namespace nevo::menubar
