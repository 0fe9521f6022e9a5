#pragma once

#include <map>
#include <memory>
#include <vector>

#include "menubar/BarItem.h"

namespace nevo::menubar {

/// All items, found by key, frame or client. Addresses stay good until an item is removed.
class ItemTable {
public:
    BarItem& add(std::unique_ptr<BarItem> item);
    void remove(MenuBarRow::Key key);

    // Nullptr when there is none.
    BarItem* withKey(MenuBarRow::Key key) const;
    BarItem* withFrame(xcb_window_t frame) const { return found(byFrame, frame); }
    BarItem* withClient(xcb_window_t client) const { return found(byClient, client); }

    /// In order of arrival.
    std::vector<BarItem*> all() const;
    std::size_t size() const { return items.size(); }

private:
    using Index = std::map<xcb_window_t, BarItem*>;
    static BarItem* found(const Index& index, xcb_window_t window) {
        auto entry = index.find(window);
        return entry == index.end() ? nullptr : entry->second;
    }

    std::map<MenuBarRow::Key, std::unique_ptr<BarItem>> items;
    Index byFrame;
    Index byClient;
    MenuBarRow::Key lastKey = 0;
};

}  // namespace nevo::menubar
