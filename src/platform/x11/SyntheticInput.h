#pragma once

#include <optional>

#include "platform/x11/BarClient.h"
#include "platform/x11/Keyboard.h"

namespace nevo {

/// Posts mouse events as if a hand had made them (XTEST). Root coordinates.
class SyntheticInput {
public:
    SyntheticInput(XServer& x, BarClient& client, Keyboard& keys);
    /// Lets go of what it holds.
    ~SyntheticInput();
    SyntheticInput(const SyntheticInput&) = delete;
    SyntheticInput& operator=(const SyntheticInput&) = delete;

    bool isAvailable() const { return hasXTest; }

    /// `frame`, if not 0, is the item that a Command press is meant for, whatever lies under the
    /// pointer. `isOnScreen` tells whether the place can be reached by the pointer.
    void post(EventType type, Point root, ModifierFlags flags, xcb_window_t frame, bool isOnScreen);
    /// A click there with each of these buttons, made when this returns; the pointer is where it
    /// was. For when no button is held.
    void click(Point root, const std::vector<std::uint8_t>& buttons);

private:
    void press(Point root, ModifierFlags flags, xcb_window_t frame);
    void release(Point root);
    void pressKeys(ModifierFlags flags);
    void releaseKeys();
    void fakeMotion(Point root);
    void fake(std::uint8_t type, std::uint8_t detail);
    void sendDrag(std::uint32_t phase, xcb_window_t frame, Point root);

    XServer& server;
    BarClient& bar;
    Keyboard& keyboard;
    bool hasXTest = false;
    bool holdsButton = false;
    std::vector<xcb_keycode_t> heldKeys;
    /// The item of a drag that goes on without the pointer.
    xcb_window_t messageDrag = 0;
};

}  // namespace nevo
