#pragma once

#include <optional>

#include "menubar/Display.h"

namespace nevo::menubar {

/// The `_XEMBED_INFO` of a client. A client without it is taken to want to be shown.
struct XembedInfo {
    bool present = false;
    std::uint32_t version = 0;
    bool wantsMapped = true;
};

/// What a frame must match.
struct ClientForm {
    std::uint8_t depth = 0;
    xcb_visualid_t visual = 0;
};

XembedInfo readXembedInfo(const Display& display, xcb_window_t client);

/// First step of embedding: asks for the client's events, and only then what it is, so that a
/// client which is destroyed at any later moment is heard of. Nothing when it is gone.
std::optional<ClientForm> watchClient(const Display& display, xcb_window_t client);

/// Second step: puts the client into the frame, and into the save-set first, so that it outlives
/// us. False when the client died on the way (fallback icons of some toolkits live that short).
bool putIntoFrame(const Display& display, xcb_window_t client, xcb_window_t frame, int size);

/// Third step: tells the client that it is embedded.
void announceEmbedded(const Display& display, xcb_window_t client, xcb_window_t frame,
                      std::uint32_t version);

/// Gives the client back to the root window, unmapped, at a place in root coordinates. `watched`
/// keeps us informed of its end.
void handBack(const Display& display, xcb_window_t client, int x, int y, bool watched);

/// Tells the client where it stands, as a real move inside the bar doesn't.
void tellPlace(const Display& display, xcb_window_t client, const PixelRect& onRoot);

/// Windows that a tray host's end left on the root window (or in a window manager's hands) and that
/// still want to be embedded.
std::vector<xcb_window_t> strandedClients(const Display& display);

}  // namespace nevo::menubar
