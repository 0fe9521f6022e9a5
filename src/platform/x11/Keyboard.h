#pragma once

#include <optional>
#include <vector>

#include "platform/Events.h"
#include "platform/x11/EventPump.h"

namespace nevo {

/// The keys of the keyboard that stand for modifiers.
class Keyboard {
public:
    Keyboard(XServer& x, EventPump& pump);

    /// The keys to press for `flags`, one for each modifier that the keyboard has.
    std::vector<xcb_keycode_t> keysFor(ModifierFlags flags);

private:
    void read();

    XServer& server;
    bool isStale = true;
    std::vector<std::pair<ModifierFlags, xcb_keycode_t>> keys;
};

/// Pointer, buttons and modifiers as they are now.
struct PointerState {
    Point root;
    std::uint32_t mask = 0;
};
std::optional<PointerState> queryPointer(const XServer& server);

}  // namespace nevo
