#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/x11/EventPump.h"
#include "platform/x11/WindowNumbers.h"
#include "platform/xcb/OwnerIdentity.h"

namespace nevo {

/// An ordinary window of a program. Root coordinates, pixels.
struct ClientWindowInfo {
    xcb_window_t window = 0;
    WindowNumber number = 0;
    ProcessId pid = 0;
    xcb::OwnerIdentity owner;
    std::string title;
    Rect frame;
};

/// The ordinary windows, as the window manager lists them; none where there is no window manager.
class ClientWindows {
public:
    ClientWindows(XServer& x, EventPump& pump, WindowNumbers& windowNumbers,
                  xcb::OwnerIdentities& ownerIdentities);
    ClientWindows(const ClientWindows&) = delete;
    ClientWindows& operator=(const ClientWindows&) = delete;

    /// Up to date, oldest first.
    const std::vector<ClientWindowInfo>& windows();
    const ClientWindowInfo* find(WindowNumber number);
    /// Asks the window manager to bring the program's newest window to the front. False when it has
    /// none.
    bool activate(ProcessId pid);

private:
    void readList();
    void readFrames();
    /// Panels and the desktop itself are no windows of a program.
    bool isDesktopElement(xcb_window_t window) const;
    ClientWindowInfo describe(xcb_window_t window);

    XServer& server;
    EventPump& events;
    WindowNumbers& numbers;
    xcb::OwnerIdentities& identities;
    std::vector<ClientWindowInfo> list;
    bool listIsStale = true;
};

}  // namespace nevo
