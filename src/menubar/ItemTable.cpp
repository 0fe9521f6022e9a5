#include "menubar/ItemTable.h"

namespace nevo::menubar {

BarItem& ItemTable::add(std::unique_ptr<BarItem> item) {
    item->key = ++lastKey;
    BarItem& added = *item;
    byFrame[added.frame->window()] = &added;
    byClient[added.client] = &added;
    items.emplace(added.key, std::move(item));
    return added;
}

void ItemTable::remove(MenuBarRow::Key key) {
    auto entry = items.find(key);
    if (entry == items.end()) return;
    byFrame.erase(entry->second->frame->window());
    byClient.erase(entry->second->client);
    items.erase(entry);
}

BarItem* ItemTable::withKey(MenuBarRow::Key key) const {
    auto entry = items.find(key);
    return entry == items.end() ? nullptr : entry->second.get();
}

std::vector<BarItem*> ItemTable::all() const {
    std::vector<BarItem*> result;
    result.reserve(items.size());
    for (const auto& [key, item] : items) result.push_back(item.get());
    return result;
}

}  // namespace nevo::menubar
