#include <cstdlib>

#include "menubar/Bar.h"
#include "platform/menubar/BarProtocol.h"

namespace nevo::menubar {

namespace {
/// A press that moves less is a press, not a drag.
constexpr int dragThreshold = 3;
/// A press that didn't come by then was swallowed, by another program's grab or a hand's own press:
/// somebody else's next one isn't it.
constexpr auto announcementLife = std::chrono::seconds(1);
}  // namespace

void Bar::onDragMessage(xcb_window_t frame, std::uint32_t phase, int x, xcb_window_t lease) {
    if (phase == barprotocol::dragAnnounced) {
        // Also of an item that has gone: the press that follows is meant for no other.
        announcement = {frame, lease, Clock::now() + announcementLife};
        return;
    }
    BarItem* item = items.withFrame(frame);
    if (item == nullptr || !item->isInRow) return;
    if (phase == barprotocol::dragBegan) {
        // A hand that holds an item has it; a program whose own drag hung begins again.
        if (drag && drag->lease == XCB_WINDOW_NONE) return;
        if (drag) cancelDrag();
        return beginDrag(*item, x, false, lease);
    }
    bool isOngoing = drag && !drag->usesPointer && drag->item == item->key && drag->lease == lease;
    if (!isOngoing) return;
    if (phase == barprotocol::dragMoved || phase == barprotocol::dragEnded) moveDrag(x);
    if (phase == barprotocol::dragEnded) endDrag();
}

/// A press of the grabbed button. One that a program announced drags the announced item, wherever
/// the pointer is; any other what it points at.
void Bar::onPress(const xcb_button_press_event_t& event) {
    if (event.detail != XCB_BUTTON_INDEX_1 || (drag && drag->usesPointer)) return;
    BarItem* item = nullptr;
    xcb_window_t lease = XCB_WINDOW_NONE;
    if (announcement && Clock::now() > announcement->expires) announcement.reset();
    if (announcement && syntheticInput.lastPressWasSynthetic()) {
        item = items.withFrame(announcement->frame);
        lease = announcement->lease;
        announcement.reset();
    } else {
        item = itemAt(event.root_x);
    }
    if (item == nullptr || !item->isInRow) return;
    if (drag) cancelDrag();
    beginDrag(*item, event.root_x, true, lease);
}

/// By place, not by window: an item at opacity 0 has none under the pointer.
BarItem* Bar::itemAt(int rootX) const {
    BarItem* hit = nullptr;
    for (const auto& entry : keeper.row().items()) {
        BarItem* item = items.withKey(entry.key);
        PixelRect rect = item->frame->rect();
        rect.x += windows.front()->rect().x;
        if (item->slot.width <= 0 || !rect.contains(rootX, 0)) continue;
        if (hit == nullptr || item->floats) hit = item;
    }
    return hit;
}

void Bar::beginDrag(BarItem& item, int pointerX, bool usesPointer, xcb_window_t lease) {
    endToolTip();
    endVisit();
    PixelRect rect = item.frame->rect();
    rect.x += windows.front()->rect().x;
    // Held by its middle where the press is elsewhere than the item.
    int offset = rect.contains(pointerX, 0) ? pointerX - rect.x : rect.width / 2;
    drag = Drag{.item = item.key,
                .grabOffset = offset,
                .startX = pointerX,
                .pointerX = pointerX,
                .lease = lease,
                .usesPointer = usesPointer,
                .hasMoved = false};
    item.frame->raise();
}

void Bar::moveDrag(int pointerX) {
    drag->pointerX = pointerX;
    if (std::abs(pointerX - drag->startX) >= dragThreshold) drag->hasMoved = true;
    needsLayout = true;
}

void Bar::endDrag() {
    Drag ended = *drag;
    needsLayout = true;
    needsPaint = true;
    BarItem* item = items.withKey(ended.item);
    if (item != nullptr && ended.hasMoved) {
        double left = ended.pointerX - ended.grabOffset;
        endFloat(*item);
        keeper.drop(item->key, left + item->frame->rect().width * 0.5, openRoom());
    }
    drag.reset();
}

void Bar::cancelDrag() {
    if (drag->usesPointer) xcb_ungrab_pointer(display.get(), XCB_CURRENT_TIME);
    drag.reset();
    needsLayout = true;
    needsPaint = true;
}

}  // namespace nevo::menubar
