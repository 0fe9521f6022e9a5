#include "platform/menubar/FloatRoom.h"

#include <algorithm>

namespace nevo {

namespace {

/// An item that is wider would leave no room for the others.
constexpr double largestShare = 0.5;

const MenuBarRow::Item* keptItem(const MenuBarRow& row) {
    auto found = std::find_if(
        row.items().begin(), row.items().end(),
        [](const MenuBarRow::Item& item) { return item.role == MenuBarRow::Role::keptInSight; });
    return found == row.items().end() ? nullptr : &*found;
}

double keptX(const MenuBarRow& row, const MenuBarRow::Room& room) {
    auto slot = row.slot(keptItem(row)->key, room);
    return slot->x;
}

/// What is to be opened for an item of that width. Where others give way for it, the item that is
/// kept in sight stays where it is.
double openingFor(const MenuBarRow& row, double width, MenuBarRow::Room room) {
    double before = keptX(row, room);
    room.opening = width;
    return width + std::max(0.0, keptX(row, room) - before);
}

bool hasRoomBeside(const MenuBarRow& row, double width, MenuBarRow::Room room) {
    room.opening = width;
    auto slots = row.slots(room);
    return std::none_of(slots.begin(), slots.end(),
                        [](const MenuBarRow::Slot& slot) { return slot.hasGivenWay; });
}

/// Nothing that can be seen stands on the ground directly left of the item that is kept in sight.
bool isGroundFree(const MenuBarRow& row, MenuBarRow::Key key, double width,
                  const MenuBarRow::Room& room, const FloatRoom::IsSeen& isSeen) {
    auto slots = row.slots(room);
    double right = keptX(row, room);
    double left = right - width;
    if (left < room.left) return false;
    return std::none_of(slots.begin(), slots.end(), [&](const MenuBarRow::Slot& slot) {
        bool isThere = slot.x < right && slot.x + slot.width > left;
        bool isItem = row.find(slot.key)->role == MenuBarRow::Role::ordinary && slot.key != key;
        return isThere && isItem && isSeen(slot.key);
    });
}

}  // namespace

bool FloatRoom::begin(const MenuBarRow& row, MenuBarRow::Key key, const MenuBarRow::Room& room,
                      bool pointerRests, const IsSeen& isSeen) {
    const MenuBarRow::Item* item = row.find(key);
    bool fits = item != nullptr && item->length <= (room.end - room.left) * largestShare;
    if (!fits || keptItem(row) == nullptr) return false;
    floating = key;
    MenuBarRow::Room present = room;
    present.opening = opening;
    bool isBetterBeside = pointerRests || !hasRoomBeside(row, item->length, room);
    isBeside = isBetterBeside && isGroundFree(row, key, item->length, present, isSeen);
    if (!isBeside) opening = openingFor(row, item->length, room);
    return true;
}

void FloatRoom::close() {
    if (!floating || isBeside) opening = 0;
}

MenuBarRow::Room FloatRoom::update(const MenuBarRow& row, const MenuBarRow::Room& room,
                                   const IsSeen& isSeen) {
    MenuBarRow::Room result = room;
    result.opening = opening;
    const MenuBarRow::Item* item = floating ? row.find(*floating) : nullptr;
    if (item == nullptr || keptItem(row) == nullptr) {
        floating.reset();
        return result;
    }
    // Others may have come to stand there, or the item itself have grown.
    if (isBeside && !isGroundFree(row, item->key, item->length, result, isSeen)) isBeside = false;
    if (!isBeside) result.opening = opening = openingFor(row, item->length, room);
    return result;
}

double FloatRoom::x(const MenuBarRow& row, const MenuBarRow::Room& room) const {
    if (!floating) return room.left;
    double left = keptX(row, room);
    return isBeside ? left - row.find(*floating)->length : left + keptItem(row)->length;
}

}  // namespace nevo
