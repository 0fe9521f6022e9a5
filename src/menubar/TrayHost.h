#pragma once

#include <memory>
#include <string>

#include "menubar/Display.h"

namespace nevo::menubar {

/// The part of "system tray manager" on this screen: owner of the selection `_NET_SYSTEM_TRAY_Sn`
/// and of the control window that programs and the manager send their messages to.
class TrayHost {
public:
    /// Takes the selection if nobody has it. Nullptr when another program has, with one plain
    /// sentence in `failure` that names it.
    static std::unique_ptr<TrayHost> claim(const Display& display, std::string& failure);
    ~TrayHost();
    TrayHost(const TrayHost&) = delete;
    TrayHost& operator=(const TrayHost&) = delete;

    xcb_window_t controlWindow() const { return window; }
    xcb_atom_t selection() const { return selectionAtom; }
    /// Tells waiting programs that a tray is there. To be called when all is ready for them.
    void announce();

private:
    TrayHost(const Display& x, xcb_atom_t trayAtom) : display(x), selectionAtom(trayAtom) {}
    void createControlWindow();
    bool takeSelection();
    xcb_timestamp_t serverTime() const;

    const Display& display;
    xcb_atom_t selectionAtom;
    xcb_window_t window = 0;
    xcb_timestamp_t since = 0;
};

}  // namespace nevo::menubar
