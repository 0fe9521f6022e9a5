#pragma once

#include <functional>
#include <string_view>

#include "core/AppState.h"
#include "platform/Platform.h"

namespace nevo {

/// A key combination as the event manager takes it.
struct Shortcut {
    /// Virtual key code.
    std::uint32_t keyCode = 0;
    /// Sum of hot key modifiers.
    std::uint32_t modifiers = 0;
    bool operator==(const Shortcut&) const = default;
};

/// Reads "⌘⇧B" and its like: modifier symbols and one key, in any order; the last key counts. No
/// modifier at all means Command and Shift, a key that isn't known means B.
Shortcut parseShortcut(std::string_view text);

/// The one combination that works in every program and does the same as a click on the toggle. A
/// failure is told on standard output and leaves it without a working key; a combination that
/// another program has works as soon as it can be had.
class HotKeyService {
public:
    HotKeyService(const Platform& platform, const AppState& appState);

    /// Claims the stored combination. Removes first what it had, so it can run again at any time.
    void registerHotKey();
    /// Gives the combination up.
    void unregister();

    /// What is run on a press; may be empty.
    std::function<void()> hotKeyHandler;

private:
    const Platform& platform;
    const AppState& appState;
    Registration hotKeyRef;
    Registration eventHandler;
};

}  // namespace nevo
