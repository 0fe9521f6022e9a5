#include "platform/sim/SimHotKeys.h"

#include <algorithm>

namespace nevo {

SimHotKeys::SimHotKeys(SimRunLoop& runLoop, SimFaults& scripted)
    : loop(runLoop), faults(scripted), held(std::make_shared<Held>()) {}

HotKeyResult SimHotKeys::installPressedHandler(std::function<int()> handler) {
    if (faults.strikes(SimOperation::hotKeyHandler)) return {internalError, {}};
    std::size_t id = held->nextId++;
    held->handlers.emplace(id, std::move(handler));
    return {0, Registration([weak = std::weak_ptr(held), id] {
                if (auto all = weak.lock()) all->handlers.erase(id);
            })};
}

HotKeyResult SimHotKeys::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                        HotKeyIdentity) {
    if (faults.strikes(SimOperation::hotKey)) return {alreadyTaken, {}};
    std::size_t id = held->nextId++;
    held->keys.emplace(id, Held::Key{keyCode, modifiers});
    return {0, Registration([weak = std::weak_ptr(held), id] {
                if (auto all = weak.lock()) all->keys.erase(id);
            })};
}

bool SimHotKeys::press(std::uint32_t keyCode, std::uint32_t modifiers) {
    bool claimed = std::any_of(held->keys.begin(), held->keys.end(), [&](const auto& entry) {
        return entry.second.code == keyCode && entry.second.modifiers == modifiers;
    });
    if (!claimed) return false;
    loop.post([weak = std::weak_ptr(held)] {
        auto all = weak.lock();
        if (!all) return;
        // The newest handler is asked first.
        for (auto each = all->handlers.rbegin(); each != all->handlers.rend(); ++each) {
            auto handler = each->second;
            if (handler() == 0) return;
        }
    });
    return true;
}

}  // namespace nevo
