#include "statusnotifier/Registry.h"

#include <algorithm>

namespace nevo::statusnotifier {

bool Registry::add(const ItemAddress& address, const std::string& offeredBy) {
    // Some programs register twice, and some whose object came after its announcement.
    if (auto known = items.find(address); known != items.end()) {
        known->second.item->outdate();
        return true;
    }
    // Whoever invents items of another program takes none of its room.
    auto ofThisProgram = std::count_if(items.begin(), items.end(), [&](const auto& entry) {
        return entry.second.offeredBy == offeredBy;
    });
    if (items.size() >= mostItems) dropUnknown();
    if (items.size() >= mostItems ||
        static_cast<std::size_t>(ofThisProgram) >= mostItemsOfAProgram) {
        return false;
    }
    Item::Events told{[this](Item& item) { changed(item); },
                      [this](Item& item) { remove(ItemAddress(item.address())); }};
    items[address] = {std::make_unique<Item>(bus, address, pictureSide, std::move(told)),
                      offeredBy};
    listed(address, true);
    return true;
}

/// Room for one that may be shown: those that have never answered are many programs' or one's, and
/// none of them is missed.
void Registry::dropUnknown() {
    auto unknown = std::find_if(items.begin(), items.end(),
                                [](const auto& entry) { return !entry.second.item->isKnown(); });
    if (unknown != items.end()) remove(ItemAddress(unknown->first));
}

void Registry::remove(const ItemAddress& address) {
    auto taken = items.extract(address);
    if (taken.empty()) return;
    gone(*taken.mapped().item);
    listed(address, false);
}

std::vector<Item*> Registry::all() const {
    std::vector<Item*> list;
    for (const auto& [address, entry] : items) list.push_back(entry.item.get());
    return list;
}

std::vector<ItemAddress> Registry::addresses() const {
    std::vector<ItemAddress> list;
    for (const auto& [address, entry] : items) list.push_back(address);
    return list;
}

}  // namespace nevo::statusnotifier
