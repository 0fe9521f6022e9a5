#pragma once

#include <filesystem>
#include <string>

#include "menubar/RowStore.h"
#include "platform/menubar/MenuBarRow.h"

namespace nevo::menubar {

/// Decides where in the row each item stands, and remembers it.
///
/// The bar's own row file is the first authority: an item comes back between its old neighbours. A
/// position in the domain of its application counts instead where somebody else changed it since
/// the bar last wrote or obeyed it.
class RowKeeper {
public:
    struct Arrival {
        MenuBarRow::Key key = 0;
        /// The application id.
        std::string domain;
        std::string name;
        /// What others call an item whose program gave it no name: its program's. Empty otherwise.
        std::string otherName;
        std::string identity;
        double length = 0;
        MenuBarRow::Role role = MenuBarRow::Role::ordinary;
    };

    RowKeeper(std::filesystem::path rowFile, double pixelsToPoint)
        : store(std::move(rowFile), pixelsToPoint),
          markedFrom(MenuBarRow::markedPosition * pixelsToPoint) {}

    const MenuBarRow& row() const { return current; }
    const std::vector<std::string>& order() const { return store.order(); }

    void add(const Arrival& arrival);
    /// Takes the item out and writes its position into its domain.
    void leave(MenuBarRow::Key key);
    /// Takes the item out, to be added under another name.
    void take(MenuBarRow::Key key);
    /// An item whose length was 0 is placed anew by the position in its domain.
    void setLength(MenuBarRow::Key key, double length);
    /// The end of a drag: the item stands where its centre was dropped, and each changed position
    /// is written.
    void drop(MenuBarRow::Key key, double centerX, const MenuBarRow::Room& room);
    /// Brings order and positions to the disk, some at a time. True when there is more to be saved.
    bool save();

private:
    struct Domain {
        std::string domain;
        std::string name;
        std::string otherName;
    };
    /// A position that somebody else has written, under either name.
    std::optional<double> foreignPosition(const Domain& domain);
    void acknowledge(const Domain& domain);
    void writePosition(MenuBarRow::Key key, double position);

    MenuBarRow current;
    RowStore store;
    /// Pixels.
    double markedFrom;
    std::map<MenuBarRow::Key, Domain> domains;
};

}  // namespace nevo::menubar
