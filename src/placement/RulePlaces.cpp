#include "placement/RulePlaces.h"

#include <algorithm>

#include "placement/RowSlots.h"

namespace nevo {

namespace {

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
    if (!isKnown || sections.isBehindAlwaysHiddenDivider(row.slots[at].frame.midX())) return;
    RememberedPlace place;
    place.isHidden = at < row.toggle;
    auto own = sections.ownWindowIDs();
    for (std::size_t i = 0; i < row.slots.size(); ++i) {
        const RowSlot& slot = row.slots[i];
        bool isDivider = own.contains(slot.window) && i != row.toggle;
        if (i >= at && !isDivider) place.position += slot.frame.width;
        bool isNeighbour = i != at && ids.contains(slot.window) &&
                           (i < row.toggle) == place.isHidden &&
                           !sections.isBehindAlwaysHiddenDivider(slot.frame.midX());
        if (isNeighbour) (i < at ? place.left : place.right).push_back(ids.at(slot.window));
    }
    places.remember(id->second, place);
}

std::optional<double> RulePlaces::position(const std::string& persistedID) const {
    auto place = places.find(persistedID);
    if (!place || !(place->position > 0)) return std::nullopt;
    return place->position;
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
                        (i < row.toggle) == place->isHidden &&
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
