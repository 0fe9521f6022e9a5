#include "placement/AlwaysHiddenArea.h"

namespace nevo {

namespace {

/// The divider goes between two items however their widths are rounded.
constexpr double positionMargin = 1.0;
/// Further left than any row is wide, points.
constexpr double leftmostPosition = 100000.0;

std::optional<WindowNumber> windowOf(StatusItem& item) {
    StatusItemButton* button = item.button();
    return button ? button->windowNumber() : std::nullopt;
}

}  // namespace

std::optional<WindowNumber> AlwaysHiddenArea::alwaysHiddenDivider() const {
    return sections.alwaysHiddenDivider->isVisible() ? windowOf(*sections.alwaysHiddenDivider)
                                                     : std::nullopt;
}

/// The hidden section's divider or the other: neither has a width in saved positions.
bool AlwaysHiddenArea::isDivider(const RowSlot& slot) const {
    return slot.window == windowOf(*sections.hiddenDivider) || slot.window == alwaysHiddenDivider();
}

std::optional<Point> AlwaysHiddenArea::leftEnd(const std::set<WindowNumber>& pinned) const {
    auto divider = alwaysHiddenDivider();
    for (const RowSlot& slot : rowSlots(windows)) {
        if (pinned.contains(slot.window) || slot.window == divider) continue;
        return Point{slot.frame.minX(), slot.frame.midY()};
    }
    return std::nullopt;
}

std::optional<WindowNumber> AlwaysHiddenArea::misplaced(
    const std::set<WindowNumber>& pinned) const {
    bool isPastOthers = false;
    for (const RowSlot& slot : rowSlots(windows)) {
        bool isPinned = pinned.contains(slot.window);
        if (isPinned && isPastOthers) return slot.window;
        if (!isPinned && !isDivider(slot)) isPastOthers = true;
    }
    return std::nullopt;
}

double AlwaysHiddenArea::dividerPosition(const std::set<WindowNumber>& pinned) const {
    // At the left end the divider hides nothing.
    if (!isRowReadable(windows)) return leftmostPosition;
    double width = positionMargin;
    bool isPastOthers = false;
    for (const RowSlot& slot : rowSlots(windows)) {
        if (isDivider(slot)) continue;
        // One that couldn't be moved to the left end doesn't take others behind the divider.
        isPastOthers = isPastOthers || !pinned.contains(slot.window);
        if (isPastOthers) width += slot.frame.width;
    }
    return width;
}

bool AlwaysHiddenArea::isDividerInPlace(const std::set<WindowNumber>& pinned) const {
    auto divider = alwaysHiddenDivider();
    if (!divider || !SectionManager::isCollapsed(*sections.alwaysHiddenDivider)) return false;
    // It stays until the row can be read again.
    if (!isRowReadable(windows)) return true;
    bool isPast = false;
    for (const RowSlot& slot : rowSlots(windows)) {
        if (slot.window == divider) {
            isPast = true;
        } else if (!isDivider(slot)) {
            bool isPinned = pinned.contains(slot.window);
            // One further right couldn't be moved.
            if (isPast) return !isPinned;
            if (!isPinned) return false;
        }
    }
    return isPast;
}

}  // namespace nevo
