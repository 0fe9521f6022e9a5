#include "platform/menubar/MenuBarRow.h"

#include <algorithm>

#include "platform/menubar/BarProtocol.h"

namespace nevo {

namespace {
double uncollapsed(double length) { return length >= MenuBarRow::collapsedLength ? 0.0 : length; }
}  // namespace

MenuBarRow::Role MenuBarRow::roleOf(bool isNative, const std::string& name) {
    if (!isNative) return Role::ordinary;
    if (name == barprotocol::keptInSightName) return Role::keptInSight;
    if (name == barprotocol::boundaryName) return Role::boundary;
    return Role::native;
}

const MenuBarRow::Item* MenuBarRow::find(Key key) const {
    auto index = indexOf(key);
    return index ? &row[*index] : nullptr;
}

const MenuBarRow::Item* MenuBarRow::upBoundary() const {
    auto found = std::find_if(row.begin(), row.end(), [](const Item& item) {
        return item.role == Role::boundary && item.length >= collapsedLength;
    });
    return found == row.end() ? nullptr : &*found;
}

void MenuBarRow::insert(Item item, const Order& order, bool isForeign) {
    std::size_t index = 0;
    if (item.role == Role::ordinary && upBoundary() != nullptr) {
        index = indexBesideBoundary(item, order, isForeign);
    } else {
        auto known = isForeign ? std::nullopt : indexByOrder(item, order);
        index = known ? *known : indexByPosition(item);
    }
    row.insert(row.begin() + static_cast<std::ptrdiff_t>(index), std::move(item));
}

std::size_t MenuBarRow::indexBesideBoundary(const Item& newcomer, const Order& order,
                                            bool isForeign) const {
    const Item* up = upBoundary();
    std::size_t boundary = *indexOf(up->key);
    auto known = indexByOrder(newcomer, order);
    auto inOrder = std::find(order.begin(), order.end(), newcomer.identity);
    bool isOrderedLeft =
        !isForeign && known && std::find(inOrder, order.end(), up->identity) != order.end();
    bool isMarked = newcomer.storedPosition.value_or(0) >= markedPosition * point;
    if (isMarked || isOrderedLeft) return std::min(known.value_or(boundary), boundary);
    std::size_t place = known && !isForeign ? *known : indexByPosition(newcomer);
    return std::max(place, boundary + 1);
}

std::optional<std::size_t> MenuBarRow::indexByOrder(const Item& newcomer,
                                                    const Order& order) const {
    auto known = std::find(order.begin(), order.end(), newcomer.identity);
    if (known == order.end()) return std::nullopt;
    while (known != order.begin()) {
        --known;
        auto present = std::find_if(row.begin(), row.end(),
                                    [&](const Item& item) { return item.identity == *known; });
        if (present != row.end()) return static_cast<std::size_t>(present - row.begin()) + 1;
    }
    return 0;
}

void MenuBarRow::remove(Key key) { take(key); }

void MenuBarRow::setLength(Key key, double length) {
    if (auto index = indexOf(key)) row[*index].length = std::max(0.0, length);
}

void MenuBarRow::placeByPosition(Key key, double position) {
    auto item = take(key);
    if (!item) return;
    item->storedPosition = position;
    insert(std::move(*item));
}

void MenuBarRow::drop(Key key, double centerX, const Room& room) {
    auto own = indexOf(key);
    if (!own) return;
    auto all = slots(room);
    auto isStandingOther = [key](const Slot& slot) { return slot.key != key && !slot.hasGivenWay; };
    auto next = std::find_if(all.begin(), all.end(), [&](const Slot& slot) {
        return isStandingOther(slot) && slot.midX() >= centerX;
    });
    auto target = static_cast<std::size_t>(next - all.begin());
    // Between its place and the target only what has given way: it stands where it is dropped.
    auto ownPlace = all.begin() + static_cast<std::ptrdiff_t>(*own);
    bool standsThere =
        target > *own && !ownPlace->hasGivenWay && std::none_of(ownPlace, next, isStandingOther);
    if (standsThere) return;
    auto item = take(key);
    if (target > *own) --target;
    row.insert(row.begin() + static_cast<std::ptrdiff_t>(target), std::move(*item));
}

void MenuBarRow::setStoredPosition(Key key, std::optional<double> position) {
    if (auto index = indexOf(key)) row[*index].storedPosition = position;
}

/// From the system area on, whatever finds room beside the item that is kept in sight stands.
std::vector<bool> MenuBarRow::givingWay(const Room& room) const {
    std::vector<bool> result(row.size(), false);
    auto kept = std::find_if(row.begin(), row.end(),
                             [](const Item& item) { return item.role == Role::keptInSight; });
    if (kept == row.end()) return result;
    double left = room.right - room.left - room.opening - kept->length;
    auto first = static_cast<std::size_t>(kept - row.begin());
    bool isFull = false;
    for (std::size_t i = row.size(); --i > first;) {
        left -= row[i].length;
        isFull = isFull || left < 0;
        result[i] = isFull;
    }
    return result;
}

std::vector<MenuBarRow::Slot> MenuBarRow::slots(const Room& room) const {
    std::vector<Slot> result(row.size());
    std::vector<bool> givesWay = givingWay(room);
    double right = room.right;
    double given = room.end;
    for (std::size_t i = row.size(); i-- > 0;) {
        const Item& item = row[i];
        if (item.role == Role::keptInSight) right -= room.opening;
        right -= givesWay[i] ? 0 : item.length;
        if (!givesWay[i]) result[i] = {item.key, right, item.length, false};
    }
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (!givesWay[i]) continue;
        result[i] = {row[i].key, given, row[i].length, true};
        given += row[i].length;
    }
    return result;
}

std::optional<MenuBarRow::Slot> MenuBarRow::slot(Key key, const Room& room) const {
    auto index = indexOf(key);
    return index ? std::optional(slots(room)[*index]) : std::nullopt;
}

std::optional<double> MenuBarRow::position(Key key) const {
    auto index = indexOf(key);
    if (!index) return std::nullopt;
    double sum = 0;
    for (std::size_t i = *index; i < row.size(); ++i) sum += uncollapsed(row[i].length);
    return sum;
}

std::size_t MenuBarRow::indexByPosition(const Item& newcomer) const {
    if (!newcomer.storedPosition) return 0;
    double position = *newcomer.storedPosition;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (row[i].domain == newcomer.domain && row[i].storedPosition == position) return i;
    }
    // A position counts the item's own width, those of the others are without it: an item that was
    // taken out goes back to where it was. From the right end, the first item that is further away
    // has the newcomer to its right.
    double rightEdge = position - uncollapsed(newcomer.length);
    double sum = 0;
    for (std::size_t i = row.size(); i-- > 0;) {
        sum += uncollapsed(row[i].length);
        if (sum > rightEdge) return i + 1;
    }
    return 0;
}

std::optional<std::size_t> MenuBarRow::indexOf(Key key) const {
    auto found = std::find_if(row.begin(), row.end(), [&](const Item& i) { return i.key == key; });
    if (found == row.end()) return std::nullopt;
    return static_cast<std::size_t>(found - row.begin());
}

std::optional<MenuBarRow::Item> MenuBarRow::take(Key key) {
    auto index = indexOf(key);
    if (!index) return std::nullopt;
    Item item = std::move(row[*index]);
    row.erase(row.begin() + static_cast<std::ptrdiff_t>(*index));
    return item;
}

}  // namespace nevo
