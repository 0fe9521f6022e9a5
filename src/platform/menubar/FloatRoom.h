#pragma once

#include <functional>
#include <optional>

#include "platform/menubar/MenuBarRow.h"

namespace nevo {

/// Where an item stands that has been brought out of the row for a while, so that it covers no
/// other: in a room that opens between the item that is kept in sight and its right neighbour, or
/// on free ground left of that item. One item at a time. Pure; units are those of the row.
///
/// The room counts in no order and no position (`MenuBarRow::Room::opening`), and outlives the
/// float until `close`.
class FloatRoom {
public:
    /// Whether others than the bar itself can see the item: its ground isn't free.
    using IsSeen = std::function<bool(MenuBarRow::Key)>;

    /// Makes room for an item of the row. False, and nothing changes, for one that is wider than
    /// half the bar, or when no item is kept in sight. `pointerRests` on the item that is kept in
    /// sight: it isn't moved away from under it if that can be helped.
    bool begin(const MenuBarRow& row, MenuBarRow::Key key, const MenuBarRow::Room& room,
               bool pointerRests, const IsSeen& isSeen);
    /// The item floats no longer.
    void end() { floating.reset(); }
    /// What `begin` was given; nothing once it has ended.
    std::optional<MenuBarRow::Key> item() const { return floating; }

    /// An empty room is open.
    bool isLeftOpen() const { return !floating && opening > 0; }
    /// Does nothing while an item is in the room.
    void close();

    /// To be called before each layout: the bar's own room with the one that is open in it.
    MenuBarRow::Room update(const MenuBarRow& row, const MenuBarRow::Room& room,
                            const IsSeen& isSeen);
    /// The float's left edge in such a room. Only while there is one.
    double x(const MenuBarRow& row, const MenuBarRow::Room& room) const;

private:
    std::optional<MenuBarRow::Key> floating;
    /// On ground of its own, left of the item that is kept in sight.
    bool isBeside = false;
    double opening = 0;
};

}  // namespace nevo
