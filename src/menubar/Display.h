#pragma once

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <string>

#include "platform/xcb/Atoms.h"
#include "platform/xcb/Connection.h"

namespace nevo::menubar {

/// A rectangle in pixels, top-left origin.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const PixelRect&) const = default;
    bool contains(int px, int py) const {
        return px >= x && px < x + width && py >= y && py < y + height;
    }
};

/// The X server as the bar needs it: connection, atoms, extensions and picture formats.
class Display {
public:
    /// Opens `$DISPLAY` and announces the extension versions. Nullptr on failure, with one plain
    /// sentence for people in `failure`.
    static std::unique_ptr<Display> open(std::string& failure);

    xcb_connection_t* get() const { return connection->get(); }
    const xcb::Connection& server() const { return *connection; }
    xcb_window_t root() const { return connection->root(); }
    xcb_atom_t atom(std::string_view name) const { return (*atoms)[name]; }

    /// The visual that tray icons are asked to use: 32 bits deep, with an alpha channel.
    xcb_visualid_t alphaVisual() const { return argbVisual; }
    xcb_render_pictformat_t alphaFormat() const { return argbFormat; }
    /// The picture format of windows with this visual; 0 for a visual that can't be painted.
    xcb_render_pictformat_t formatOfVisual(xcb_visualid_t visual) const;

    /// First event numbers of the extensions.
    std::uint8_t damageEvents() const { return damageBase; }
    std::uint8_t randrEvents() const { return randrBase; }
    /// The extension's opcode in generic events; 0 where XInput 2.2 is missing.
    std::uint8_t inputOpcode() const { return xinputOpcode; }

private:
    explicit Display(std::unique_ptr<xcb::Connection> opened);
    bool setUpExtensions(std::string& failure);
    bool findAlphaVisual();

    std::unique_ptr<xcb::Connection> connection;
    std::unique_ptr<xcb::Atoms> atoms;
    xcb_visualid_t argbVisual = 0;
    xcb_render_pictformat_t argbFormat = 0;
    std::uint8_t damageBase = 0;
    std::uint8_t randrBase = 0;
    std::uint8_t xinputOpcode = 0;
};

}  // namespace nevo::menubar
