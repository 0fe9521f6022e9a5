#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nevo {

/// The order of the status items in a menu bar and the arithmetic of their places. Pure: no
/// windows, no files.
///
/// Items stand side by side from the left edge of the bar's own area at its right end (the system
/// area) towards the left, each as wide as its length. There is no left limit: a long item pushes
/// those left of it off the screen. A *position* is the distance in points from the system area's
/// left edge to the item's left edge, so a large position means far left; it is counted as if no
/// item were collapsed.
class MenuBarRow {
public:
    /// A handle of the caller's choosing, unique in the row.
    using Key = std::uint64_t;

    /// What an item is to the row.
    enum class Role {
        /// Of any program.
        ordinary,
        /// A native status item (one that sets its own length), such as a divider: other items are
        /// placed around it.
        native,
        /// The native item that must stay within reach of the pointer.
        keptInSight,
        /// The native item that divides the row while it is up, see `upBoundary`.
        boundary,
    };
    /// By the names of BarProtocol.h, which are nothing special for an item that isn't native.
    static Role roleOf(bool isNative, const std::string& name);

    struct Item {
        Key key = 0;
        /// The application whose stored values remember the item's position.
        std::string domain;
        /// Stable over restarts: what the row order is kept by.
        std::string identity;
        /// Points, 0 or more.
        double length = 0;
        /// The position last read from or written to `domain`.
        std::optional<double> storedPosition;
        Role role = Role::ordinary;
    };

    struct Slot {
        Key key = 0;
        /// Left edge, in the coordinate of the system area's left edge.
        double x = 0;
        double width = 0;
        double midX() const { return x + width * 0.5; }
    };

    /// From this length on an item counts as collapsed: it stands for a length of 0 wherever
    /// positions are counted.
    static constexpr double collapsedLength = 9999.0;

    /// Left to right.
    const std::vector<Item>& items() const { return row; }
    const Item* find(Key key) const;
    /// The boundary, while it is up: in the row, and collapsed.
    const Item* upBoundary() const;

    /// Inserts by `storedPosition`; without one, at the left end.
    void insert(Item item);
    /// Inserts where `order`, identities from left to right, has the item: right of its nearest
    /// neighbour to the left that is present, or at the left end. False, and nothing is inserted,
    /// when `order` doesn't know the item.
    bool insertByOrder(Item item, const std::vector<std::string>& order);
    void remove(Key key);

    /// Changes the length in place.
    void setLength(Key key, double length);
    /// Takes the item out and puts it where `position` belongs: directly left of an item of the
    /// same domain whose stored position is the same, else left of all items that end nearer to the
    /// system area than it would begin.
    void placeByPosition(Key key, double position);
    /// Drops the item with its centre at `centerX`: right of the others whose centre is further
    /// left, as they stand while its own slot is still kept open. So dropping it where it stands
    /// changes nothing, whatever its width.
    void drop(Key key, double centerX, double systemAreaLeft);
    /// Notes what its domain holds now.
    void setStoredPosition(Key key, std::optional<double> position);

    /// One slot an item, left to right.
    std::vector<Slot> slots(double systemAreaLeft) const;
    std::optional<Slot> slot(Key key, double systemAreaLeft) const;
    /// The item's position as told above; nothing for an unknown key.
    std::optional<double> position(Key key) const;
    /// The distance from the system area to the item's left edge with all lengths as they are, so
    /// it is `collapsedLength` and more for one that stands pushed off.
    std::optional<double> distance(Key key) const;

private:
    std::size_t indexForPosition(double position, const Item& newcomer) const;
    std::optional<std::size_t> indexOf(Key key) const;
    std::optional<Item> take(Key key);

    std::vector<Item> row;
};

}  // namespace nevo
