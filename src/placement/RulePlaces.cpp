#include "placement/RulePlaces.h"

#include <algorithm>

namespace nevo {

namespace {

/// A larger one would be a mark: hide this item always.
constexpr double largestPosition = 4999.0;

std::optional<WindowNumber> windowOf(StatusItem& item) {
    StatusItemButton* button = item.button();
    return button ? button->windowNumber() : std::nullopt;
}

/// The row with its toggle; `toggle` is its size when there is none.
struct Row {
    std::vector<RowSlot> slots;
    std::size_t toggle = 0;

    std::size_t indexOf(WindowNumber window) const {
        auto found = std::find_if(slots.begin(), slots.end(),
                                  [&](const RowSlot& slot) { return slot.window == window; });
        return static_cast<std::size_t>(found - slots.begin());
    }
};

Row readRow(const WindowServer& windows, const SectionManager& sections) {
    Row row{rowSlots(windows)};
    row.toggle = row.slots.size();
    if (auto window = windowOf(*sections.toggleItem)) row.toggle = row.indexOf(*window);
    return row;
}

}  // namespace

bool RulePlaces::isLeftOfToggle(WindowNumber window) const {
    Row row = readRow(windows, sections);
    return row.toggle < row.slots.size() && row.indexOf(window) < row.toggle;
}

void RulePlaces::remember(WindowNumber window, const Ids& ids) {
    auto id = ids.find(window);
    Row row = readRow(windows, sections);
    std::size_t at = row.indexOf(window);
    bool isKnown = id != ids.end() && at < row.slots.size() && row.toggle < row.slots.size();
    if (!isKnown || places.find(id->second) ||
        sections.isBehindAlwaysHiddenDivider(row.slots[at].frame.midX()))
        return;
    RememberedPlace place;
    place.isHidden = at < row.toggle;
    auto own = sections.ownWindowIDs();
    for (std::size_t i = at; i < row.slots.size(); ++i) {
        bool isDivider = own.contains(row.slots[i].window) && i != row.toggle;
        if (!isDivider) place.position += row.slots[i].frame.width;
    }
    std::vector<std::string> side = formerSide(row.slots, row.toggle, ids, place.isHidden);
    auto self = std::find(side.begin(), side.end(), id->second);
    place.left.assign(side.begin(), self);
    if (self != side.end()) place.right.assign(self + 1, side.end());
    places.remember(id->second, place);
}

/// Whether the item stands where its user has it. One that is always hidden doesn't, nor does one
/// whose rule has ended until it is back.
bool RulePlaces::isInPlace(const RowSlot& slot, const std::string& id) const {
    if (sections.isBehindAlwaysHiddenDivider(slot.frame.midX())) return false;
    bool isShown = sections.opacity.has(ItemOpacity::Reason::shownByRule, slot.window);
    return isShown || !places.find(id);
}

/// The ids on one side of the toggle, left to right, with those that a rule holds elsewhere where
/// they stood: each directly right of its nearest left neighbour, which is exact since a place has
/// all its neighbours.
std::vector<std::string> RulePlaces::formerSide(const std::vector<RowSlot>& slots,
                                                std::size_t toggle, const Ids& ids,
                                                bool isHidden) const {
    std::vector<std::string> side;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        auto id = ids.find(slots[i].window);
        bool isHere =
            id != ids.end() && (i < toggle) == isHidden && isInPlace(slots[i], id->second);
        if (isHere) side.push_back(id->second);
    }
    for (const auto& [window, id] : ids) {
        auto place = places.find(id);
        bool isKnown = std::find(side.begin(), side.end(), id) != side.end();
        if (isKnown || !place || place->isHidden != isHidden) continue;
        auto at = side.begin();
        for (auto left = place->left.rbegin(); left != place->left.rend(); ++left) {
            auto found = std::find(side.begin(), side.end(), *left);
            if (found == side.end()) continue;
            at = found + 1;
            break;
        }
        side.insert(at, id);
    }
    return side;
}

std::optional<double> RulePlaces::position(const std::string& persistedID) const {
    auto place = places.find(persistedID);
    if (!place || !(place->position > 0)) return std::nullopt;
    return std::min(place->position, largestPosition);
}

std::optional<Point> RulePlaces::target(WindowNumber window, const Ids& ids) const {
    auto id = ids.find(window);
    auto place = id == ids.end() ? std::nullopt : places.find(id->second);
    Row row = readRow(windows, sections);
    if (!place || row.toggle >= row.slots.size()) return std::nullopt;
    auto neighbour = [&](const std::string& wanted) -> const RowSlot* {
        for (std::size_t i = 0; i < row.slots.size(); ++i) {
            const RowSlot& slot = row.slots[i];
            auto found = ids.find(slot.window);
            bool isIt = found != ids.end() && found->second == wanted && slot.window != window &&
                        (i < row.toggle) == place->isHidden && !slot.hasGivenWay &&
                        !sections.isBehindAlwaysHiddenDivider(slot.frame.midX());
            if (isIt) return &slot;
        }
        return nullptr;
    };
    for (auto left = place->left.rbegin(); left != place->left.rend(); ++left) {
        if (const RowSlot* slot = neighbour(*left))
            return Point{slot->frame.maxX(), slot->frame.midY()};
    }
    for (const std::string& right : place->right) {
        if (const RowSlot* slot = neighbour(right))
            return Point{slot->frame.minX(), slot->frame.midY()};
    }
    const Rect& toggle = row.slots[row.toggle].frame;
    if (!place->isHidden) return Point{toggle.maxX(), toggle.midY()};
    // The hidden section's divider has its place directly left of the toggle.
    auto divider = windowOf(*sections.hiddenDivider);
    std::size_t at = divider ? row.indexOf(*divider) : row.slots.size();
    const Rect& bound = at < row.slots.size() ? row.slots[at].frame : toggle;
    return Point{bound.minX(), toggle.midY()};
}

}  // namespace nevo
