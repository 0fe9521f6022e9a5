#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <string>

#include "platform/Geometry.h"

namespace nevo::xcb {

/// WM_CLASS of a window; empty where it has none.
struct WindowClass {
    std::string instance;
    std::string name;
};

/// The process whose client made `window`: the server's own knowledge (XRes), which no client can
/// get wrong, and where it has none (a client of another machine) `_NET_WM_PID`. Nothing when
/// neither tells, or the window is gone.
std::optional<ProcessId> processOfWindow(xcb_connection_t* connection, xcb_window_t window,
                                         xcb_atom_t netWmPid);

WindowClass classOfWindow(xcb_connection_t* connection, xcb_window_t window);

}  // namespace nevo::xcb
