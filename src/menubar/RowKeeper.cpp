#include "menubar/RowKeeper.h"

namespace nevo::menubar {

void RowKeeper::add(const Arrival& arrival) {
    const Domain& domain = domains[arrival.key] = {arrival.domain, arrival.name, arrival.otherName};
    auto foreign = foreignPosition(domain);
    auto stored = foreign ? foreign : store.position(domain.domain, domain.name);
    bool isMarked = stored && *stored >= markedFrom;
    current.insert({arrival.key, arrival.domain, arrival.identity, arrival.length, stored,
                    arrival.role, isMarked},
                   store.order(), foreign.has_value());
    acknowledge(domain);
}

std::optional<double> RowKeeper::foreignPosition(const Domain& domain) {
    for (const std::string& name : {domain.otherName, domain.name}) {
        if (name.empty()) continue;
        auto stored = store.position(domain.domain, name);
        if (stored && store.isForeign(domain.domain, name, *stored)) return stored;
    }
    return std::nullopt;
}

void RowKeeper::acknowledge(const Domain& domain) {
    for (const std::string& name : {domain.otherName, domain.name}) {
        if (name.empty()) continue;
        if (auto stored = store.position(domain.domain, name))
            store.acknowledge(domain.domain, name, *stored);
    }
}

void RowKeeper::leave(MenuBarRow::Key key) {
    auto position = current.position(key);
    auto distance = current.distance(key);
    if (!position || !distance) return;
    // One that is pushed off leaves with a position that says so. A divider's own length doesn't
    // count for itself.
    bool isDivider = current.find(key)->length >= MenuBarRow::collapsedLength;
    bool isPushedOff = !isDivider && *distance >= MenuBarRow::collapsedLength;
    // Who changed the saved place while the item stood here meant it for its return.
    if (!foreignPosition(domains[key])) writePosition(key, isPushedOff ? *distance : *position);
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
    current.placeByPosition(key, *stored);
}

void RowKeeper::drop(MenuBarRow::Key key, double centerX, const MenuBarRow::Room& room) {
    std::map<MenuBarRow::Key, double> before;
    for (const auto& item : current.items()) before[item.key] = *current.position(item.key);
    current.drop(key, centerX, room);
    for (const auto& [each, position] : before) {
        double now = *current.position(each);
        if (each == key || now != position) writePosition(each, now);
    }
}

void RowKeeper::writePosition(MenuBarRow::Key key, double position) {
    const Domain& domain = domains[key];
    store.writePosition(domain.domain, domain.name, position);
    // Where somebody has used the other name, it tells the truth as well.
    if (!domain.otherName.empty() && store.position(domain.domain, domain.otherName))
        store.writePosition(domain.domain, domain.otherName, position);
    current.setStoredPosition(key, position);
}

bool RowKeeper::save() {
    std::vector<std::string> identities;
    identities.reserve(current.items().size());
    for (const auto& item : current.items()) identities.push_back(item.identity);
    store.setPresent(identities);
    return store.save();
}

}  // namespace nevo::menubar
