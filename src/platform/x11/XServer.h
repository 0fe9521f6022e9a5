#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/Geometry.h"
#include "platform/xcb/Atoms.h"
#include "platform/xcb/Connection.h"

namespace nevo {

/// Between the server's coordinates (origin at the corner of the whole desktop) and the logic's
/// (points, origin at the primary monitor's corner, top or bottom left).
struct Coordinates {
    /// The primary monitor in root coordinates.
    int originX = 0;
    int originY = 0;
    int primaryHeight = 0;
    /// Pixels to a point, everywhere: follows the bar's height.
    double scale = 1;

    Rect fromRoot(Rect r) const {
        return {(r.x - originX) / scale, (r.y - originY) / scale, r.width / scale,
                r.height / scale};
    }
    Point fromRoot(Point p) const { return {(p.x - originX) / scale, (p.y - originY) / scale}; }
    Point toRoot(Point p) const { return {p.x * scale + originX, p.y * scale + originY}; }
    Rect toRoot(Rect r) const {
        return {r.x * scale + originX, r.y * scale + originY, r.width * scale, r.height * scale};
    }
    /// Turns top-left into bottom-left, and back.
    Rect flipped(Rect r) const {
        return {r.x, primaryHeight / scale - r.y - r.height, r.width, r.height};
    }
    Point flipped(Point p) const { return {p.x, primaryHeight / scale - p.y}; }
};

/// The manager's own connection to the X server, with what every part of the desktop needs of it.
class XServer {
public:
    explicit XServer(std::unique_ptr<xcb::Connection> opened);
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    xcb_connection_t* get() const { return link->get(); }
    const xcb::Connection& connection() const { return *link; }
    xcb_window_t root() const { return link->root(); }
    xcb_atom_t atom(std::string_view name) const { return atoms[name]; }
    /// The selection `name` of this screen ("_NET_SYSTEM_TRAY" gives that of
    /// "_NET_SYSTEM_TRAY_S0").
    xcb_atom_t screenAtom(std::string_view name) const;
    void flush() const { link->flush(); }

    /// An invisible window that lives as long as this process: what it asked of the bar ends with
    /// it.
    xcb_window_t lease() const { return leaseWindow; }
    /// The window that owns a selection; 0 for none. Waits for the answer.
    xcb_window_t selectionOwner(xcb_atom_t selection) const;
    /// A client message of format 32, not yet flushed.
    void sendMessage(xcb_window_t to, xcb_window_t about, std::string_view type,
                     const std::array<std::uint32_t, 5>& data, std::uint32_t eventMask = 0) const;

    Coordinates coordinates;

private:
    std::unique_ptr<xcb::Connection> link;
    xcb::Atoms atoms;
    xcb_window_t leaseWindow;
};

}  // namespace nevo
