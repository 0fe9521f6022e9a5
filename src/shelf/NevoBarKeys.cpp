#include <algorithm>
#include <cmath>
#include <iterator>
#include <tuple>

#include "shelf/NevoBar.h"

namespace nevo {

namespace {

constexpr double ringWidth = 2.0;
/// Long enough for whoever looks for an item. The keyboard can't stay with the bar for good: what
/// locks the screen needs it.
constexpr double idleKeysTime = 60.0;

}  // namespace

void NevoBar::takeKeys() {
    panel->onKey = [weak = weak_from_this()](PanelKey key) {
        if (auto self = weak.lock()) self->keyPressed(key);
    };
    hasKeys = panel->makeKey();
    if (!hasKeys) return;
    auto index = focusedWindowID ? indexOf(*focusedWindowID) : std::nullopt;
    focusSlot(index.value_or(neighbour(0, PanelKey::first)));
}

void NevoBar::giveKeysBack() {
    hasKeys = false;
    focusedWindowID.reset();
    idleKeysTimer.reset();
    if (!panel) return;
    panel->resignKey();
    panel->setView(focusRing());
}

void NevoBar::keyPressed(PanelKey key) {
    auto index = focusedWindowID ? indexOf(*focusedWindowID) : std::nullopt;
    if (!index) return;
    switch (key) {
        case PanelKey::cancel:
            if (auto callback = onCancelled) callback();
            break;
        case PanelKey::press:
            slotClicked(BarItem(items[*index]));
            break;
        case PanelKey::menu: {
            Rect frame = panel->frame();
            Point middle = layout.slots[*index].center();
            slotRightClicked(BarItem(items[*index]), {frame.x + middle.x, frame.y + middle.y});
            break;
        }
        default:
            focusSlot(neighbour(*index, key));
    }
}

/// The slot that a key leads to, empty ones left out; the same one where there is none. Along the
/// row one comes from its end into the next; up and down lead to the slot above or below.
std::size_t NevoBar::neighbour(std::size_t of, PanelKey towards) const {
    auto isFull = [](const BarItem& item) { return !isEmptySlot(item); };
    auto begin = items.begin();
    auto own = begin + static_cast<std::ptrdiff_t>(of);
    auto after = [&](auto from) {
        auto found = std::find_if(from, items.end(), isFull);
        return found == items.end() ? of : static_cast<std::size_t>(found - begin);
    };
    auto before = [&](auto end) {
        auto found = std::find_if(std::make_reverse_iterator(end), items.rend(), isFull);
        return found == items.rend() ? of : static_cast<std::size_t>(items.rend() - found - 1);
    };
    switch (towards) {
        case PanelKey::left:
            return before(own);
        case PanelKey::right:
            return after(own + 1);
        case PanelKey::first:
            return after(begin);
        case PanelKey::last:
            return before(items.end());
        default:
            break;
    }
    const std::vector<Rect>& slots = layout.slots;
    double sign = towards == PanelKey::up ? 1 : -1;
    auto distance = [&](std::size_t i) {
        return std::tuple((slots[i].y - slots[of].y) * sign,
                          std::abs(slots[i].midX() - slots[of].midX()));
    };
    std::size_t best = of;
    for (std::size_t i = 0; i < items.size(); ++i) {
        bool isBeyond = isFull(items[i]) && std::get<0>(distance(i)) > 0;
        if (isBeyond && (best == of || distance(i) < distance(best))) best = i;
    }
    return best;
}

std::size_t NevoBar::nearestFullSlot(std::size_t to) const {
    if (!isEmptySlot(items[to])) return to;
    std::size_t right = neighbour(to, PanelKey::right);
    return right != to ? right : neighbour(to, PanelKey::left);
}

void NevoBar::focusSlot(std::size_t index) {
    focusedWindowID = items[index].windowID;
    panel->setView(focusRing());
    idleKeysTimer = platform.runLoop.timer(idleKeysTime, false, [weak = weak_from_this()] {
        if (auto self = weak.lock()) self->giveKeysBack();
    });
}

/// Around the slot that keys are for; nothing to be seen without one.
PanelView NevoBar::focusRing() const {
    PanelView ring;
    ring.key = "focus";
    auto index = focusedWindowID ? indexOf(*focusedWindowID) : std::nullopt;
    if (!index) return ring;
    ring.frame = layout.slots[*index].grownBy(ringWidth);
    ring.cornerRadius = configuration().slotCornerRadius;
    ring.borderWidth = ringWidth;
    ring.borderColor = appearanceTheme.textColor;
    return ring;
}

}  // namespace nevo
