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
/// those left of it off the screen. Only the item that is kept in sight stays in the bar: where it
/// and what stands right of it are wider than the bar, the leftmost items right of it *give way*,
/// to slots beyond the bar's right end, until there is room. A *position* is the distance in points
/// from the system area's left edge to the item's left edge, so a large position means far left; it
/// is counted as if no item were collapsed.
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

    /// The room for items, from the bar's left edge to the system area's, and the bar's right edge.
    struct Room {
        double left = 0;
        double right = 0;
        double end = 0;
        /// What is kept free directly right of the item that is kept in sight.
        double opening = 0;
    };

    struct Slot {
        Key key = 0;
        /// Left edge, in the coordinate of the room.
        double x = 0;
        double width = 0;
        bool hasGivenWay = false;
        double midX() const { return x + width * 0.5; }
    };

    /// From this length on an item counts as collapsed: it stands for a length of 0 wherever
    /// positions are counted.
    static constexpr double collapsedLength = 9999.0;
    /// A stored position of so many points or more is a mark: another program wants the item left
    /// of the boundary.
    static constexpr double markedPosition = 5000.0;
    /// Identities from left to right.
    using Order = std::vector<std::string>;

    /// Lengths and positions are in units of which a point takes `unitsPerPoint`.
    explicit MenuBarRow(double unitsPerPoint = 1) : point(unitsPerPoint) {}

    /// Left to right.
    const std::vector<Item>& items() const { return row; }
    const Item* find(Key key) const;
    /// The boundary, while it is up: in the row, and collapsed.
    const Item* upBoundary() const;

    /// Inserts an item that arrives: where `order` has it, right of its nearest neighbour to the
    /// left that is present, or at the left end. One that `order` doesn't know, or whose
    /// `storedPosition` `isForeign`, written by another program, is inserted by that position; at
    /// the left end without one.
    ///
    /// While the boundary is up, an ordinary item is left of it only if it is marked or `order`
    /// has it there, and then as near to it as need be; any other directly right of it if its place
    /// would be left.
    void insert(Item item, const Order& order = {}, bool isForeign = false);
    void remove(Key key);

    /// Changes the length in place.
    void setLength(Key key, double length);
    /// Takes the item out and puts it where `position` belongs: directly left of an item of the
    /// same domain whose stored position is the same, else left of all items that end nearer to the
    /// system area than it would begin.
    void placeByPosition(Key key, double position);
    /// Drops the item with its centre at `centerX`: directly before the first of the others whose
    /// centre isn't further left, as they stand while its own slot is still kept open; at the right
    /// end if there is none. Items that have given way don't count. So dropping it where it stands
    /// changes nothing, whatever its width.
    void drop(Key key, double centerX, const Room& room);
    /// Notes what its domain holds now.
    void setStoredPosition(Key key, std::optional<double> position);

    /// One slot an item, in the order of the row: left to right but for those that have given way.
    std::vector<Slot> slots(const Room& room) const;
    std::optional<Slot> slot(Key key, const Room& room) const;
    /// The item's position as told above; nothing for an unknown key.
    std::optional<double> position(Key key) const;

private:
    std::vector<bool> givingWay(const Room& room) const;
    std::optional<std::size_t> indexByOrder(const Item& newcomer, const Order& order) const;
    std::size_t indexByPosition(const Item& newcomer) const;
    std::size_t indexBesideBoundary(const Item& newcomer, const Order& order, bool isForeign) const;
    std::optional<std::size_t> indexOf(Key key) const;
    std::optional<Item> take(Key key);

    double point;
    std::vector<Item> row;
};

}  // namespace nevo
