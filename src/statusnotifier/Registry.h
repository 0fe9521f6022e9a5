#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "statusnotifier/Item.h"

namespace nevo::statusnotifier {

/// All items on the bus, by whatever way they became known.
class Registry {
public:
    /// No connection offers more items than this; what it offers beyond isn't taken in.
    static constexpr std::size_t mostItemsOfAProgram = 32;
    static constexpr std::size_t mostItems = 500;

    /// `side`: of the items' pictures, pixels.
    Registry(SessionBus& of, int side) : bus(of), pictureSide(side) {}

    /// Takes an item in that a connection offers, most often its own; or asks one that is here
    /// already for everything anew. False when there are too many.
    bool add(const ItemAddress& address, const std::string& offeredBy);
    /// It doesn't count any more, by its watcher's word.
    void remove(const ItemAddress& address);
    std::vector<Item*> all() const;
    std::vector<ItemAddress> addresses() const;

    /// An item has come to be known, or has changed.
    std::function<void(Item&)> changed;
    /// One that may have been known goes; the item lives until this returns.
    std::function<void(Item&)> gone;
    /// There is another list of items.
    std::function<void(const ItemAddress&, bool isThere)> listed;

private:
    void dropUnknown();

    SessionBus& bus;
    int pictureSide;
    struct Entry {
        std::unique_ptr<Item> item;
        std::string offeredBy;
    };
    std::map<ItemAddress, Entry> items;
};

}  // namespace nevo::statusnotifier
