#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "menubar/Bar.h"
#include "platform/menubar/BarProtocol.h"
#include "platform/xcb/Properties.h"

namespace nevo::menubar {

namespace {
/// A longer slot, such as an opened divider's, has a small window at its right end: no pixels are
/// spent on what only pushes.
constexpr int largestRealWidth = 2000;
/// X keeps places in 16 bits; with room for the width of a frame.
constexpr int farthestX = 32000 - largestRealWidth;

int rounded(double value) { return static_cast<int>(std::lround(value)); }

void resizeClient(const Display& display, const BarItem& item) {
    const PixelRect& frame = item.frame->rect();
    std::array<std::uint32_t, 4> values{0, 0, static_cast<std::uint32_t>(frame.width),
                                        static_cast<std::uint32_t>(frame.height)};
    xcb_configure_window(display.get(), item.client,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
}
}  // namespace

void Bar::layout() {
    publishGeometry();
    bool dividerOpened = false;
    for (const BarItem* item : items.all()) {
        if (!item->isInRow) continue;
        bool wasCollapsed = keeper.row().find(item->key)->length >= MenuBarRow::collapsedLength;
        keeper.setLength(item->key, item->length());
        if (wasCollapsed && item->length() < MenuBarRow::collapsedLength) dividerOpened = true;
    }
    // What floated to be seen beside a closed divider has its own place in sight again.
    if (dividerOpened) {
        for (BarItem* item : items.all()) endFloat(*item);
        endVisit();
    }
    roomDue.reset();
    MenuBarRow::Room open = openRoom();
    if (floatRoom.isLeftOpen()) {
        closeRoom();
        open = openRoom();
    }
    std::vector<MenuBarRow::Slot> slots = keeper.row().slots(room());
    std::vector<MenuBarRow::Slot> places = keeper.row().slots(open);
    bool changed = false;
    std::vector<std::uint32_t> list;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        BarItem& item = *items.withKey(slots[i].key);
        item.floats = floatRoom.item() == item.key;
        if (item.floats) places[i].x = floatRoom.x(keeper.row(), open);
        changed = placeItem(item, slots[i], places[i]) || changed;
        list.push_back(item.frame->window());
    }
    if (!changed && list == publishedList) return;
    publishedList = list;
    xcb::writeNumbers(display.get(), host->controlWindow(), display.atom(barprotocol::items),
                      XCB_ATOM_WINDOW, list);
    needsPaint = true;
}

bool Bar::placeItem(BarItem& item, const MenuBarRow::Slot& slot, const MenuBarRow::Slot& place) {
    const PixelRect& bar = windows.front()->rect();
    int left = rounded(slot.x);
    PixelRect slotRect{left, bar.y, rounded(slot.x + slot.width) - left, bar.height};
    PixelRect placeRect = slotRect;
    placeRect.x = rounded(place.x);
    item.roomShift = item.floats ? 0 : placeRect.x - slotRect.x;
    PixelRect onRoot = realRect(item, placeRect);
    PixelRect inBar{onRoot.x - bar.x, 0, onRoot.width, onRoot.height};
    int least = -farthestX - std::min(bar.x, 0);
    int most = farthestX - std::max(bar.x, 0);
    inBar.x = std::clamp(inBar.x, least, most);
    onRoot.x = bar.x + inBar.x;

    bool moved = item.frame->setRect(inBar);
    if (moved || item.awaitsPlace) {
        resizeClient(display, item);
        tellPlace(display, item.client, onRoot);
        item.awaitsPlace = false;
    }
    item.frame->setTakesInput(item.opacity > 0 && slotRect.width > 0);
    item.frame->setMapped(true);
    return publishSlot(item, slotRect) || moved;
}

/// Where the frame stands, root coordinates: in its place, or a visitor, or in the hand.
PixelRect Bar::realRect(const BarItem& item, const PixelRect& place) const {
    const PixelRect& bar = windows.front()->rect();
    PixelRect rect = place;
    if (place.width > largestRealWidth) {
        rect.width = options.height;
        rect.x = place.x + place.width - rect.width;
    }
    rect.width = std::max(rect.width, 1);
    if (isVisiting(item)) {
        int most = std::max(bar.x, bar.x + bar.width - rect.width);
        rect.x = std::clamp(visit->x - rect.width / 2, bar.x, most);
    }
    bool followsPointer = drag && drag->usesPointer && drag->hasMoved;
    if (followsPointer && drag->item == item.key) {
        rect.x = drag->pointerX - drag->grabOffset;
    }
    return rect;
}

bool Bar::publishSlot(BarItem& item, const PixelRect& slot) {
    std::array<std::uint32_t, 6> values{static_cast<std::uint32_t>(slot.x),
                                        static_cast<std::uint32_t>(slot.y),
                                        static_cast<std::uint32_t>(slot.width),
                                        static_cast<std::uint32_t>(slot.height),
                                        item.floats ? 1U : 0U,
                                        static_cast<std::uint32_t>(item.roomShift)};
    if (values == item.publishedSlot) return false;
    item.slot = slot;
    item.publishedSlot = values;
    xcb::writeNumbers(display.get(), item.frame->window(), display.atom(barprotocol::itemSlot),
                      XCB_ATOM_INTEGER, values);
    return true;
}

bool Bar::isVisible(const BarItem& item) const {
    const PixelRect& rect = item.frame->rect();
    return item.isInRow && item.opacity > 0 && item.slot.width > 0 && !isVisiting(item) &&
           rect.x + rect.width > 0 && rect.x < windows.front()->rect().width;
}

void Bar::paint() {
    for (const auto& window : windows) {
        window->beginPaint();
        int width = clockFace.width();
        if (clockFace.picture() != 0) {
            int right = window->rect().width - options.height / 2;
            window->draw(clockFace.picture(), right - width, width, options.height, fullOpacity);
        }
        if (window == windows.front()) {
            auto isInHand = [&](const BarItem& item) { return drag && drag->item == item.key; };
            std::vector<BarItem*> above;
            for (const auto& entry : keeper.row().items()) {
                BarItem& item = *items.withKey(entry.key);
                if (item.floats || isInHand(item)) {
                    above.push_back(&item);
                } else {
                    paintItem(item);
                }
            }
            std::stable_sort(above.begin(), above.end(), [&](const BarItem* a, const BarItem* b) {
                return !isInHand(*a) && isInHand(*b);
            });
            for (BarItem* item : above) paintItem(*item);
        }
        window->endPaint();
    }
}

void Bar::paintItem(BarItem& item) {
    if (!isVisible(item)) return;
    // Before drawing: a change that comes meanwhile is told again.
    if (std::exchange(item.hasDamage, false)) item.frame->acknowledgeDamage();
    const PixelRect& rect = item.frame->rect();
    windows.front()->draw(item.frame->picture(), rect.x, rect.width, rect.height, item.opacity);
}

}  // namespace nevo::menubar
