#pragma once

#include <optional>
#include <vector>

#include "platform/Events.h"
#include "platform/x11/EventPump.h"

namespace nevo {

/// The keyboard as it is mapped now: which key gives a symbol, and which keys are modifiers.
class Keyboard {
public:
    Keyboard(XServer& x, EventPump& pump);

    /// The keys to press for `flags`, one for each modifier that the keyboard has.
    std::vector<xcb_keycode_t> keysFor(ModifierFlags flags);
    /// The key that gives `symbol`, if possible without Shift; nothing when there is none.
    std::optional<xcb_keycode_t> keyFor(xcb_keysym_t symbol);
    /// What the key gives without any modifier; 0 for nothing.
    xcb_keysym_t symbolOf(xcb_keycode_t key);
    /// The bits that `flags` set in the state of an event; nothing when a modifier is missing.
    std::optional<std::uint16_t> stateFor(ModifierFlags flags);
    /// The bit of Num Lock in the state of an event; 0 when there is none.
    std::uint16_t numLockState();

private:
    void refresh();
    /// The bit of the modifier that a key with `symbol` belongs to, or 0.
    std::uint16_t stateOf(xcb_keysym_t symbol) const;
    bool gives(xcb_keycode_t key, xcb_keysym_t symbol) const;

    XServer& server;
    bool isStale = true;
    xcb_keycode_t firstKey = 0;
    /// For each key the symbols of its levels, `levels` of them.
    std::vector<xcb_keysym_t> symbols;
    std::size_t levels = 0;
    /// For each of the eight modifiers its keys, the same number for each, filled up with 0.
    std::vector<xcb_keycode_t> modifierKeys;
};

/// Pointer, buttons and modifiers as they are now.
struct PointerState {
    Point root;
    std::uint32_t mask = 0;
};
std::optional<PointerState> queryPointer(const XServer& server);

}  // namespace nevo
