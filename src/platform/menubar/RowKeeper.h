#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/menubar/MenuBarRow.h"
#include "platform/menubar/RowStorage.h"

namespace nevo {

/// Decides where in the row each item stands, and remembers it.
///
/// The bar's own order is the first authority: an item comes back between its old neighbours. A
/// position in the domain of its application counts instead where another program changed it since
/// the bar last wrote or obeyed it. A mark (`MenuBarRow::isMark`) is another program's too, and is
/// kept until the item itself is dragged.
class RowKeeper {
public:
    struct Arrival {
        MenuBarRow::Key key = 0;
        /// The application id.
        std::string domain;
        std::string name;
        /// What others call an item whose program gave it no name: its program's. Empty otherwise.
        std::string otherName;
        /// Empty for an item that isn't to be remembered.
        std::string identity;
        double length = 0;
        MenuBarRow::Role role = MenuBarRow::Role::ordinary;
    };

    /// Lengths are in units of which a point takes `unitsPerPoint`.
    RowKeeper(RowStorage& storage, double unitsPerPoint)
        : store(storage), scale(unitsPerPoint), current(unitsPerPoint) {}

    const MenuBarRow& row() const { return current; }
    const std::vector<std::string>& order() const { return store.order(); }

    void add(const Arrival& arrival);
    /// Takes the item out and writes its position into its domain.
    void leave(MenuBarRow::Key key);
    /// Takes the item out, to be added under another name.
    void take(MenuBarRow::Key key);
    /// An item whose length was 0 is placed anew by the position in its domain.
    void setLength(MenuBarRow::Key key, double length);
    /// The end of a drag: the item stands where its centre was dropped, and its position is
    /// written, as is each other one that has changed, unless it is a mark.
    void drop(MenuBarRow::Key key, double centerX, const MenuBarRow::Room& room);
    /// Brings order and positions to the storage, some at a time. True when there is more to be
    /// saved.
    bool save();

private:
    struct Domain {
        std::string domain;
        std::string name;
        std::string otherName;
    };
    /// What the domain holds.
    std::optional<double> storedPosition(const Domain& domain);
    /// A position that another program has written, under either name.
    std::optional<double> foreignPosition(const Domain& domain);
    bool isMarked(MenuBarRow::Key key);
    void acknowledge(const Domain& domain);
    void writePosition(MenuBarRow::Key key);
    /// Notes the order, with the identity of the item that was placed just now, or none.
    void remember(const std::string& placed);

    RowStorage& store;
    double scale;
    MenuBarRow current;
    std::map<MenuBarRow::Key, Domain> domains;
};

}  // namespace nevo
