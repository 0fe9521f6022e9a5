#include "placement/RowSlots.h"

#include <algorithm>
#include <limits>

namespace nevo {

bool isRowReadable(const WindowServer& windows) {
    auto count = windows.windowCount();
    auto list = count && *count >= 1 ? windows.menuBarWindowList(*count) : std::nullopt;
    return list && std::all_of(list->begin(), list->end(), [&](WindowNumber window) {
               // What isn't the bar's has a frame, and no slot.
               return windows.slotFrame(window) || windows.windowFrame(window);
           });
}

std::vector<RowSlot> rowSlots(const WindowServer& windows) {
    std::vector<RowSlot> slots;
    auto count = windows.windowCount();
    if (!count || *count < 1) return slots;
    for (WindowNumber window :
         windows.menuBarWindowList(*count).value_or(std::vector<WindowNumber>{})) {
        auto frame = windows.slotFrame(window);
        if (frame && !frame->isEmpty()) slots.push_back({window, *frame});
    }
    double standingX = std::numeric_limits<double>::infinity();
    for (auto slot = slots.rbegin(); slot != slots.rend(); ++slot) {
        slot->hasGivenWay = slot->frame.x > standingX;
        if (!slot->hasGivenWay) standingX = slot->frame.x;
    }
    return slots;
}

}  // namespace nevo
