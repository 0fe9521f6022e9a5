#include "placement/RowSlots.h"

#include <algorithm>

namespace nevo {

std::vector<RowSlot> rowSlots(const WindowServer& windows) {
    std::vector<RowSlot> slots;
    auto count = windows.windowCount();
    if (!count || *count < 1) return slots;
    for (WindowNumber window :
         windows.menuBarWindowList(*count).value_or(std::vector<WindowNumber>{})) {
        auto frame = windows.slotFrame(window);
        if (frame && !frame->isEmpty()) slots.push_back({window, *frame});
    }
    std::stable_sort(slots.begin(), slots.end(), [](const RowSlot& a, const RowSlot& b) {
        return a.frame.midX() < b.frame.midX();
    });
    return slots;
}

}  // namespace nevo
