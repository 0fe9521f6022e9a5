#include <algorithm>
#include <cstdlib>

#include "menubar/Bar.h"

namespace nevo::menubar {

using namespace std::chrono_literals;

namespace {
/// An item that is put this near to its slot is put back into it.
constexpr int slotReach = 50;
/// How often is looked whether the pointer still rests.
constexpr auto closeInterval = 100ms;
}  // namespace

/// A native status item has its place in the row alone; another program's may float beside the one
/// that is kept in sight, at whatever x it was asked for.
void Bar::moveItem(BarItem& item, int x, int y, xcb_window_t lease) {
    if (item.isStatusItem()) return;
    const PixelRect monitorBar = windows.front()->rect();
    const PixelRect monitor{monitorBar.x, monitorBar.y, monitorBar.width, monitorHeight};
    // Clients may send any number: first what an addition would carry over the largest.
    bool isOutside =
        x >= monitor.x + monitor.width || !monitor.contains(x + item.slot.width / 2, y);
    if (isOutside || std::abs(x - item.slot.x) <= slotReach) return endFloat(item);
    auto former = floatRoom.item();
    if (!floatRoom.begin(keeper.row(), item.key, room(), pointerRestsOnKept(), seenItems())) return;
    if (former) items.withKey(*former)->floats = false;
    item.floats = true;
    item.floatLease = lease;
    item.frame->raise();
    needsLayout = true;
    needsPaint = true;
}

void Bar::endFloat(BarItem& item) {
    if (!item.floats) return;
    item.floats = false;
    item.floatLease = XCB_WINDOW_NONE;
    floatRoom.end();
    needsLayout = true;
    needsPaint = true;
}

/// The row's room with that for a float.
MenuBarRow::Room Bar::openRoom() { return floatRoom.update(keeper.row(), room(), seenItems()); }

/// A room that nothing is in any more closes, but not while a hand may drop something into it, nor
/// by moving the item that is kept in sight away from under the pointer.
void Bar::closeRoom() {
    if (drag && drag->usesPointer) return;
    if (pointerRestsOnKept()) {
        roomDue = Clock::now() + closeInterval;
    } else {
        floatRoom.close();
    }
}

bool Bar::pointerRestsOnKept() const {
    const auto& row = keeper.row().items();
    auto kept = std::find_if(row.begin(), row.end(), [](const MenuBarRow::Item& item) {
        return item.role == MenuBarRow::Role::keptInSight;
    });
    if (kept == row.end()) return false;
    xcb::Reply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
        display.get(), xcb_query_pointer(display.get(), windows.front()->window()), nullptr));
    if (!pointer || pointer->same_screen == 0) return false;
    return items.withKey(kept->key)->frame->rect().contains(pointer->win_x, pointer->win_y);
}

FloatRoom::IsSeen Bar::seenItems() const {
    return [this](MenuBarRow::Key key) { return items.withKey(key)->opacity > 0; };
}

}  // namespace nevo::menubar
