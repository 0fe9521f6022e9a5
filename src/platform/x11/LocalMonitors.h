#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "platform/Events.h"

namespace nevo {

/// The monitors of events for this program's own windows, and the modifiers of the event that is
/// being handled.
class LocalMonitors {
public:
    Registration add(EventMask mask, std::function<bool(const Event&)> handler) {
        std::size_t id = ++entries->last;
        entries->byId.emplace(id, Entry{mask, std::move(handler)});
        return Registration([weak = std::weak_ptr(entries), id] {
            if (auto held = weak.lock()) held->byId.erase(id);
        });
    }

    /// True when a monitor has swallowed the event.
    bool offer(const Event& event) const {
        auto held = entries;
        // Handlers come and go meanwhile: each is looked up again.
        for (std::size_t id = 1, end = held->last; id <= end; ++id) {
            auto found = held->byId.find(id);
            if (found == held->byId.end() || !(found->second.mask & maskOf(event.type))) continue;
            auto handler = found->second.handler;
            if (handler(event)) return true;
        }
        return false;
    }

    /// The keys that were down at the click that is being handled: by now the hand may have let go.
    std::optional<ModifierFlags> modifiersOfEvent;

private:
    struct Entry {
        EventMask mask;
        std::function<bool(const Event&)> handler;
    };
    struct Entries {
        std::map<std::size_t, Entry> byId;
        std::size_t last = 0;
    };
    std::shared_ptr<Entries> entries = std::make_shared<Entries>();
};

/// The modifiers in the state of an X event.
inline ModifierFlags modifiersFromState(std::uint32_t state) {
    constexpr std::uint32_t shift = 1, control = 4, mod1 = 8, mod4 = 64;
    return (state & shift ? shiftModifier : 0) | (state & control ? controlModifier : 0) |
           (state & mod1 ? optionModifier : 0) | (state & mod4 ? commandModifier : 0);
}

}  // namespace nevo
