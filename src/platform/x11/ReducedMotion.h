#pragma once

#include <functional>

#include "platform/x11/EventPump.h"

namespace nevo {

/// Whether the user wants less motion. Desktops say so in the settings that they hand to all
/// programs (XSETTINGS, "Gtk/EnableAnimations"), some also by a style without animations.
class ReducedMotion {
public:
    ReducedMotion(XServer& x, EventPump& pump);
    ReducedMotion(const ReducedMotion&) = delete;
    ReducedMotion& operator=(const ReducedMotion&) = delete;

    bool isWanted() const;
    /// Told when that has changed; one listener.
    std::function<void()> changed;

private:
    void hear(const xcb_generic_event_t& event);
    /// Finds who hands out the settings, and reads what they say.
    void reload();

    XServer& server;
    xcb_window_t owner = XCB_WINDOW_NONE;
    bool isWithoutAnimations = false;
};

}  // namespace nevo
