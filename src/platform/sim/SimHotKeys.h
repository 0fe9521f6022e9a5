#pragma once

#include <map>
#include <memory>

#include "platform/Events.h"
#include "platform/HotKeys.h"
#include "platform/sim/SimFaults.h"
#include "platform/sim/SimRunLoop.h"

namespace nevo {

/// The program's hot keys, and the hand that presses them.
class SimHotKeys : public HotKeys {
public:
    /// What a claim gets that another program has already (`eventHotKeyExistsErr`).
    static constexpr int alreadyTaken = -9878;
    /// What the handler's installation gets when it fails (`eventInternalErr`).
    static constexpr int internalError = -9870;

    SimHotKeys(SimRunLoop& runLoop, SimFaults& scripted);

    HotKeyResult installPressedHandler(std::function<int()> handler) override;
    HotKeyResult registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                HotKeyIdentity identity) override;

    /// Presses a combination. False when the program hasn't claimed it: then another program gets
    /// the key.
    bool press(std::uint32_t keyCode, std::uint32_t modifiers);
    std::size_t count() const { return held->keys.size(); }

private:
    struct Held {
        struct Key {
            std::uint32_t code;
            std::uint32_t modifiers;
            /// Whether no other program has it any more.
            bool isClaimed;
        };
        std::map<std::size_t, Key> keys;
        std::map<std::size_t, std::function<int()>> handlers;
        std::size_t nextId = 1;
    };

    SimRunLoop& loop;
    SimFaults& faults;
    std::shared_ptr<Held> held;
};

}  // namespace nevo
