#pragma once

#include <set>

#include "menubar/Display.h"

namespace nevo::menubar {

/// Windows whose end ends what their owners asked for.
class Leases {
public:
    explicit Leases(const Display& x) : display(x) {}

    /// Watches `window` from now on. `alreadyWatched`: we hear of its end anyway, and asking again
    /// would end what else we hear of it. False when it doesn't exist.
    bool accept(xcb_window_t window, bool alreadyWatched);
    bool contains(xcb_window_t window) const { return watched.contains(window); }
    /// To be called when a window was destroyed; true when it was a lease.
    bool end(xcb_window_t window) { return watched.erase(window) != 0; }

private:
    const Display& display;
    std::set<xcb_window_t> watched;
};

}  // namespace nevo::menubar
