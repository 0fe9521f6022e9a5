#include "randomrun/EventKind.h"

namespace nevo {

const std::vector<EventKind>& eventKinds() {
    static const std::vector<EventKind> table = [] {
        std::vector<EventKind> all;
        for (auto group : {handEvents, shelfEvents, programEvents, nevoEvents, desktopEvents,
                           storeEvents, faultEvents}) {
            std::vector<EventKind> kinds = group();
            all.insert(all.end(), kinds.begin(), kinds.end());
        }
        return all;
    }();
    return table;
}

}  // namespace nevo
