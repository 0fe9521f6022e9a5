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
    bool isClaimed = !faults.strikes(SimOperation::hotKey);
    std::size_t id = held->nextId++;
    held->keys.emplace(id, Held::Key{keyCode, modifiers, isClaimed});
    return {isClaimed ? 0 : alreadyTaken, Registration([weak = std::weak_ptr(held), id] {
                if (auto all = weak.lock()) all->keys.erase(id);
            })};
}

bool SimHotKeys::press(std::uint32_t keyCode, std::uint32_t modifiers) {
    bool claimed = std::any_of(held->keys.begin(), held->keys.end(), [&](auto& entry) {
        Held::Key& key = entry.second;
        if (key.code != keyCode || key.modifiers != modifiers) return false;
        // It has been tried again since.
        key.isClaimed = key.isClaimed || !faults.strikes(SimOperation::hotKey);
        return key.isClaimed;
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
