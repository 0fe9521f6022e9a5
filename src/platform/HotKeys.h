#pragma once

#include <cstdint>
#include <functional>

#include "platform/Registration.h"

namespace nevo {

/// Tells a program's hot keys apart (`EventHotKeyID`).
struct HotKeyIdentity {
    /// A four-character code.
    std::uint32_t signature = 0;
    std::uint32_t id = 0;
};

/// Modifier keys of a hot key, as bits to be added (Carbon's `cmdKey` and its kin).
inline constexpr std::uint32_t commandHotKeyModifier = 256;
inline constexpr std::uint32_t shiftHotKeyModifier = 512;
inline constexpr std::uint32_t optionHotKeyModifier = 2048;
inline constexpr std::uint32_t controlHotKeyModifier = 4096;

/// What a call gave: a status, 0 for success, and what to keep.
struct HotKeyResult {
    int status = 0;
    Registration registration;
};

/// Key combinations that reach the program whichever program is in front (the Carbon event
/// manager's hot keys).
class HotKeys {
public:
    virtual ~HotKeys() = default;

    /// Has `handler` run at each press of any of this program's hot keys, on the main thread
    /// (`InstallEventHandler` on `GetApplicationEventTarget`, class "keyb", kind 5; the end of the
    /// registration is `RemoveEventHandler`; on failure it is empty). The handler's result 0 means
    /// that it took the event.
    virtual HotKeyResult installPressedHandler(std::function<int()> handler) = 0;

    /// Claims a combination until the registration ends (`RegisterEventHotKey`,
    /// `UnregisterEventHotKey`). `keyCode` names a key by its place on an ANSI keyboard, as the
    /// virtual key codes do: the key with that letter, or the one in its place where no key has it.
    /// The status isn't 0 when another program holds the combination, or the keyboard lacks it; the
    /// desktop then goes on trying until it has it or the registration ends.
    virtual HotKeyResult registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                        HotKeyIdentity identity) = 0;
};

}  // namespace nevo
