#include "platform/menubar/RowKeeper.h"

#include <algorithm>

namespace nevo {

namespace {
/// What the bar itself stores stays below a mark, in points.
constexpr double farthestPlace = MenuBarRow::markedPosition - 1;
}  // namespace

void RowKeeper::add(const Arrival& arrival) {
    const Domain& domain = domains[arrival.key] = {arrival.domain, arrival.name, arrival.otherName};
    auto foreign = foreignPosition(domain);
    auto stored = foreign ? foreign : storedPosition(domain);
    if (stored) stored = *stored * scale;
    current.insert(
        {arrival.key, arrival.domain, arrival.identity, arrival.length, stored, arrival.role},
        store.order(), foreign.has_value());
    acknowledge(domain);
    remember(arrival.identity);
}

std::optional<double> RowKeeper::storedPosition(const Domain& domain) {
    auto stored = store.position(domain.domain, domain.name);
    if (domain.otherName.empty()) return stored;
    // A mark counts under either name.
    auto other = store.position(domain.domain, domain.otherName);
    return other && *other >= MenuBarRow::markedPosition ? other : stored;
}

std::optional<double> RowKeeper::foreignPosition(const Domain& domain) {
    for (const std::string& name : {domain.otherName, domain.name}) {
        if (name.empty()) continue;
        auto stored = store.position(domain.domain, name);
        if (stored && store.isForeign(domain.domain, name, *stored)) return stored;
    }
    return std::nullopt;
}

bool RowKeeper::isMarked(MenuBarRow::Key key) {
    if (current.find(key)->role != MenuBarRow::Role::ordinary) return false;
    return storedPosition(domains[key]).value_or(0) >= MenuBarRow::markedPosition;
}

void RowKeeper::acknowledge(const Domain& domain) {
    for (const std::string& name : {domain.otherName, domain.name}) {
        if (name.empty()) continue;
        if (auto stored = store.position(domain.domain, name))
            store.acknowledge(domain.domain, name, *stored);
    }
}

void RowKeeper::leave(MenuBarRow::Key key) {
    if (current.find(key) == nullptr) return;
    // Who changed the stored position while the item stood here meant it for its return.
    if (!foreignPosition(domains[key]) && !isMarked(key)) writePosition(key);
    take(key);
}

void RowKeeper::take(MenuBarRow::Key key) {
    current.remove(key);
    domains.erase(key);
}

void RowKeeper::setLength(MenuBarRow::Key key, double length) {
    const MenuBarRow::Item* item = current.find(key);
    if (item == nullptr || item->length == length) return;
    bool appears = item->length <= 0 && length > 0;
    current.setLength(key, length);
    if (!appears) return;
    const Domain& domain = domains[key];
    auto stored = store.position(domain.domain, domain.name);
    if (!stored) return;
    store.acknowledge(domain.domain, domain.name, *stored);
    // Its position may be a copy of one that another program has written since for an item of the
    // same program.
    for (const MenuBarRow::Item& each : std::vector(current.items())) {
        if (each.domain != domain.domain) continue;
        if (auto position = storedPosition(domains[each.key]))
            current.setStoredPosition(each.key, *position * scale);
    }
    current.placeByPosition(key, *stored * scale);
    remember(current.find(key)->identity);
}

void RowKeeper::drop(MenuBarRow::Key key, double centerX, const MenuBarRow::Room& room) {
    std::map<MenuBarRow::Key, double> before;
    for (const auto& item : current.items()) before[item.key] = *current.position(item.key);
    current.drop(key, centerX, room);
    for (const auto& [each, position] : before) {
        bool isShifted = *current.position(each) != position;
        if (each == key || (isShifted && !isMarked(each))) writePosition(each);
    }
    if (const MenuBarRow::Item* item = current.find(key)) remember(item->identity);
}

void RowKeeper::writePosition(MenuBarRow::Key key) {
    const Domain& domain = domains[key];
    double position = std::min(*current.position(key) / scale, farthestPlace);
    store.writePosition(domain.domain, domain.name, position);
    // Where another program has used the other name, it tells the truth as well.
    if (!domain.otherName.empty() && store.position(domain.domain, domain.otherName))
        store.writePosition(domain.domain, domain.otherName, position);
    current.setStoredPosition(key, position * scale);
}

void RowKeeper::remember(const std::string& placed) {
    std::vector<std::string> identities;
    identities.reserve(current.items().size());
    for (const auto& item : current.items()) {
        if (!item.identity.empty()) identities.push_back(item.identity);
    }
    store.setPresent(identities, placed);
}

bool RowKeeper::save() {
    remember("");
    return store.save();
}

}  // namespace nevo
