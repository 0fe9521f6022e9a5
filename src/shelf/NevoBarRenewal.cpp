#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/debugLog.h"
#include "shelf/NevoBar.h"

namespace nevo {

void NevoBar::renew(const std::vector<BarItem>& latest, bool addsNew) {
    auto screen = isOpen() && !draggingWindowID ? panel->screen() : std::nullopt;
    auto focused = focusedWindowID ? indexOf(*focusedWindowID) : std::nullopt;
    if (!screen || !takeOver(latest, addsNew)) return;
    if (std::all_of(items.begin(), items.end(), isEmptySlot)) {
        if (onCancelled) onCancelled();
        if (isOpen()) dismiss();
        return;
    }
    debugLog(fmt::format("[NevoBar] slots renewed count={}", items.size()));
    layout = layoutOn(*screen);
    auto former = std::exchange(itemSlotViews, {});
    for (std::size_t i = 0; i < items.size(); ++i) {
        auto isItems = [&](const auto& slot) { return slot->view.key == slotKey(items[i]); };
        auto kept = std::find_if(former.begin(), former.end(), isItems);
        if (kept == former.end() || isEmptySlot(items[i])) {
            addSlot(items[i], layout.slots[i]);
        } else {
            (*kept)->view.frame = layout.slots[i];
            itemSlotViews.push_back(*kept);
        }
    }
    std::erase_if(itemImageViews, [&](const auto& entry) { return !indexOf(entry.first); });
    std::erase_if(itemTextFields, [&](const auto& field) {
        return std::find(itemSlotViews.begin(), itemSlotViews.end(), field) == itemSlotViews.end();
    });
    if (focusedWindowID && !indexOf(*focusedWindowID)) focusedWindowID.reset();
    panel->setFrame(frameFor(layout.size, *screen));
    fillPanel();
    watchPictures();
    if (hasKeys && !focusedWindowID) focusSlot(nearestFullSlot(focused.value_or(0)));
}

/// True when that has changed something. Only a window that is gone empties a slot: an item that
/// stands elsewhere for a moment can be clicked all the same.
bool NevoBar::takeOver(const std::vector<BarItem>& latest, bool addsNew) {
    auto count = platform.windows.windowCount();
    auto windows = count ? platform.windows.menuBarWindowList(*count) : std::nullopt;
    if (!windows) return false;
    std::set<WindowNumber> present(windows->begin(), windows->end());
    bool hasChanged = false;
    for (BarItem& item : items) {
        if (isEmptySlot(item) || present.contains(item.windowID)) continue;
        item.windowID = 0;
        hasChanged = true;
    }
    for (const BarItem& item : latest) {
        // A list may be older than the row.
        if (indexOf(item.windowID) || !present.contains(item.windowID)) continue;
        auto own = std::find_if(items.begin(), items.end(), [&](const BarItem& each) {
            return isEmptySlot(each) && each.persistedID == item.persistedID;
        });
        if (own != items.end()) {
            *own = item;
        } else if (addsNew) {
            items.push_back(item);
        } else {
            continue;
        }
        hasChanged = true;
    }
    return hasChanged;
}

}  // namespace nevo
