#pragma once

#include <memory>

#include "platform/HotKeys.h"
#include "platform/LogOutput.h"
#include "platform/x11/Keyboard.h"

namespace nevo {

/// Hot keys as passive grabs of the root window's. They follow the keyboard's map, and reach the
/// program whatever Caps Lock and Num Lock are; while another program holds the whole keyboard (a
/// menu, a locked screen) they don't.
class X11HotKeys : public HotKeys {
public:
    /// Another program has grabbed the combination (`eventHotKeyExistsErr`).
    static constexpr int alreadyTaken = -9878;
    /// The keyboard lacks the key or a modifier (`eventHotKeyInvalidErr`).
    static constexpr int noSuchKey = -9879;

    X11HotKeys(XServer& x, EventPump& pump, Keyboard& keys, LogOutput& output);
    ~X11HotKeys() override;

    HotKeyResult installPressedHandler(std::function<int()> handler) override;
    HotKeyResult registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                HotKeyIdentity identity) override;

private:
    struct Held;
    /// A registration finds it gone when the desktop is.
    std::shared_ptr<Held> held;
};

}  // namespace nevo
