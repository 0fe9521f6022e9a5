#pragma once

#include <memory>
#include <vector>

#include "desktop/BarView.h"
#include "platform/Geometry.h"
#include "platform/xcb/Atoms.h"
#include "platform/xcb/Connection.h"

namespace nevo::desktoptest {

/// A connection of its own to the display of the test; ends the test when there is none.
std::unique_ptr<xcb::Connection> connect();

/// A well-behaved tray icon inside the test: docks, and counts the clicks that it gets.
class Probe {
public:
    /// With `isShownFirst` it is shown before it asks for a place.
    explicit Probe(bool isShownFirst = false);
    xcb_window_t window() const { return iconWindow; }
    int clicks();
    /// The button of each, those of the wheel too.
    const std::vector<int>& buttons();
    /// Withdraws its icon, or shows it again.
    void setShown(bool shown);

    /// The side of its icon in a bar of the usual height.
    static constexpr int size = 24;
    /// Shows an icon whose left and right halves are of these colours, 0xRRGGBB.
    void paint(std::uint32_t left, std::uint32_t right);
    /// Such an icon's pixels, row by row.
    static std::vector<std::uint32_t> icon(std::uint32_t left, std::uint32_t right);

private:
    std::unique_ptr<xcb::Connection> connection;
    xcb_window_t iconWindow = 0;
    std::vector<int> pressed;
};

/// Another program that asks the bar for something: its requests hold until it goes.
class LeaseHolder {
public:
    LeaseHolder();
    xcb_window_t window() const { return lease; }
    BarView& bar() { return *view; }

private:
    std::unique_ptr<xcb::Connection> connection;
    std::unique_ptr<BarView> view;
    xcb_window_t lease = 0;
};

/// A program that owns a selection, for as long as it lives.
class SelectionHolder {
public:
    explicit SelectionHolder(const char* selection);

private:
    std::unique_ptr<xcb::Connection> connection;
};

/// Somebody else's tray host.
class ForeignTray : public SelectionHolder {
public:
    ForeignTray() : SelectionHolder("_NET_SYSTEM_TRAY_S0") {}
};

/// Says that it composes the screen, and leaves it as it is.
class IdleCompositor : public SelectionHolder {
public:
    IdleCompositor() : SelectionHolder("_NET_WM_CM_S0") {}
};

}  // namespace nevo::desktoptest
