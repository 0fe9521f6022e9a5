#pragma once

#include <memory>

#include "platform/Geometry.h"
#include "platform/xcb/Atoms.h"
#include "platform/xcb/Connection.h"

namespace nevo::desktoptest {

/// A well-behaved tray icon inside the test: docks, and counts the clicks that it gets.
class Probe {
public:
    Probe();
    xcb_window_t window() const { return icon; }
    int clicks();

private:
    std::unique_ptr<xcb::Connection> connection;
    xcb_window_t icon = 0;
    int clickCount = 0;
};

/// Somebody else's tray host: owns the selection, for as long as it lives.
class ForeignTray {
public:
    ForeignTray();

private:
    std::unique_ptr<xcb::Connection> connection;
};

}  // namespace nevo::desktoptest
