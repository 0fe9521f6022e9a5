#pragma once

#include <optional>
#include <set>

#include "placement/RowSlots.h"
#include "placement/SectionManager.h"

namespace nevo {

/// The left end of the row, where the items stand that a rule always hides: behind a divider of
/// their own, directly right of the rightmost of them. No other item stands there. Tells what the
/// row lacks for that; places are those of the bar's layout, global with a top-left origin.
class AlwaysHiddenArea {
public:
    AlwaysHiddenArea(const WindowServer& server, const SectionManager& manager)
        : windows(server), sections(manager) {}

    /// Where an item has to be dropped to stand left of every item but `pinned` ones.
    std::optional<Point> leftEnd(const std::set<WindowNumber>& pinned) const;
    /// One of `pinned` that stands right of another item; nothing when all stand at the left end.
    std::optional<WindowNumber> misplaced(const std::set<WindowNumber>& pinned) const;
    /// The saved position with which the divider comes to stand directly right of those that stand
    /// at the left end: a point more than all that stands further right is wide.
    double dividerPosition(const std::set<WindowNumber>& pinned) const;
    /// Whether the divider is up, with no other item to its left, and directly right of `pinned`.
    bool isDividerInPlace(const std::set<WindowNumber>& pinned) const;

private:
    bool isDivider(const RowSlot& slot) const;
    std::optional<WindowNumber> alwaysHiddenDivider() const;

    const WindowServer& windows;
    const SectionManager& sections;
};

}  // namespace nevo
