#pragma once

#include <memory>
#include <string>
#include <vector>

#include "menubar/Display.h"

namespace nevo::menubar {

/// The part of "system tray manager" on this screen: owner of the selection `_NET_SYSTEM_TRAY_Sn`
/// and of the control window that programs and the manager send their messages to.
class TrayHost {
public:
    /// Takes the selection if nobody has it. Nullptr when another program has, with one plain
    /// sentence in `failure` that names it. `command` is this program's command line, published for
    /// whoever has to start another bar in its place.
    static std::unique_ptr<TrayHost> claim(const Display& display,
                                           const std::vector<std::string>& command,
                                           std::string& failure);
    ~TrayHost();
    TrayHost(const TrayHost&) = delete;
    TrayHost& operator=(const TrayHost&) = delete;

    xcb_window_t controlWindow() const { return window; }
    xcb_atom_t selection() const { return selectionAtom; }
    /// Tells waiting programs that a tray is there. To be called when all is ready for them.
    void announce();
    /// Publishes that the bar ends in order, so that nobody takes it for crashed and starts
    /// another. Waits until the server has taken it in.
    void announceEnd();

private:
    TrayHost(const Display& x, xcb_atom_t trayAtom) : display(x), selectionAtom(trayAtom) {}
    void createControlWindow(const std::vector<std::string>& command);
    bool takeSelection();
    xcb_timestamp_t serverTime() const;

    const Display& display;
    xcb_atom_t selectionAtom;
    xcb_window_t window = 0;
    xcb_timestamp_t since = 0;
};

}  // namespace nevo::menubar
