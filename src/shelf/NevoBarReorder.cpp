#include <algorithm>

#include "shelf/NevoBar.h"

namespace nevo {

namespace {
constexpr double draggedAlpha = 0.88;
constexpr LayerShadow draggedShadow{Color::white(0), 0.28, 8.0, {0, -2.0}};
constexpr Animation lift{0.12};
constexpr Animation settle{0.16, TimingFunction::easeOut};
constexpr Animation slide{0.16, TimingFunction::easeInEaseOut};

template <typename List>
void moveElement(List& list, std::size_t from, std::size_t to) {
    auto begin = list.begin();
    auto at = [&](std::size_t index) { return begin + static_cast<std::ptrdiff_t>(index); };
    if (from < to) {
        std::rotate(at(from), at(from + 1), at(to + 1));
    } else {
        std::rotate(at(to), at(from), at(from + 1));
    }
}
}  // namespace

std::optional<std::size_t> NevoBar::indexOf(WindowNumber window) const {
    auto found = std::find_if(items.begin(), items.end(),
                              [&](const BarItem& each) { return each.windowID == window; });
    auto index = static_cast<std::size_t>(found - items.begin());
    if (index >= itemSlotViews.size()) return std::nullopt;
    return index;
}

void NevoBar::dragBegins(const BarItem& item) {
    auto index = indexOf(item.windowID);
    if (!isReorderingEnabled || !index || !panel) return;
    draggingWindowID = item.windowID;
    PanelView& view = itemSlotViews[*index]->view;
    view.shadow = draggedShadow;
    view.alpha = draggedAlpha;
    panel->bringViewToFront(view.key);
    panel->setView(view, lift);
}

void NevoBar::dragged(const BarItem& item, Point inPanel) {
    auto index = indexOf(item.windowID);
    if (!isReorderingEnabled || draggingWindowID != item.windowID || !index || !panel) return;
    std::size_t target = dropIndex(*index, inPanel);
    if (target != *index) {
        moveElement(items, *index, target);
        moveElement(itemSlotViews, *index, target);
        slideSlots(target);
    }
    PanelView& view = itemSlotViews[target]->view;
    double rightmost = panel->frame().width - view.frame.width;
    view.frame.x = std::max(0.0, std::min(inPanel.x - view.frame.width * 0.5, rightmost));
    view.frame.y = layout.slots[target].y;
    panel->setView(view);
}

/// Where the dragged slot belongs among the others when the pointer is there: behind those of the
/// rows above, and those further left in its own. Above the first row counts as in it, below the
/// last one too.
std::size_t NevoBar::dropIndex(std::size_t from, Point inPanel) const {
    double spacing = configuration().spacing;
    double y = std::clamp(inPanel.y, layout.slots.back().midY(), layout.slots.front().midY());
    std::size_t target = 0;
    for (std::size_t i = 0; i < itemSlotViews.size(); ++i) {
        if (i == from) continue;
        const Rect& slot = itemSlotViews[i]->view.frame;
        bool isAbove = slot.minY() - spacing / 2 > y;
        bool isInRow = !isAbove && slot.maxY() + spacing / 2 > y;
        if (!isAbove && (!isInRow || slot.midX() > inPanel.x)) break;
        ++target;
    }
    return target;
}

/// Rows of slots that aren't equally wide may break in other places than before, and the bar then
/// changes its size.
void NevoBar::slideSlots(std::optional<std::size_t> leftOut) {
    auto screen = panel->screen();
    if (!screen) return;
    Size before = layout.size;
    layout = layoutOn(*screen);
    if (layout.size != before) {
        panel->setFrame(frameFor(layout.size, *screen));
        backgrounds = backgroundViews(layout.size);
        for (const PanelView& view : backgrounds) panel->setView(view);
    }
    for (std::size_t i = 0; i < itemSlotViews.size(); ++i) {
        PanelView& view = itemSlotViews[i]->view;
        double x = i == leftOut ? view.frame.x : layout.slots[i].x;
        view.frame = layout.slots[i];
        view.frame.x = x;
        if (i != leftOut) panel->setView(view, slide);
    }
    panel->setView(focusRing(), slide);
}

void NevoBar::dragEnds(const BarItem& item) {
    auto index = indexOf(item.windowID);
    if (!isReorderingEnabled || draggingWindowID != item.windowID || !index || !panel) return;
    draggingWindowID.reset();
    PanelView& view = itemSlotViews[*index]->view;
    slideSlots(std::nullopt);
    view.alpha = 1.0;
    panel->setView(view, settle);
    platform.runLoop.postAfter(settle.seconds, [weak = weak_from_this(), window = item.windowID] {
        if (auto self = weak.lock()) self->settleSlot(window);
    });
    if (onItemsReordered) onItemsReordered(items);
}

/// The slot has come to rest: it loses its shadow, unless it was lifted again meanwhile.
void NevoBar::settleSlot(WindowNumber window) {
    if (!panel || draggingWindowID == window) return;
    for (std::size_t i = 0; i < itemSlotViews.size(); ++i) {
        if (items[i].windowID != window) continue;
        PanelView& view = itemSlotViews[i]->view;
        view.shadow.opacity = 0;
        view.shadow.radius = 0;
        panel->setView(view);
    }
}

}  // namespace nevo
