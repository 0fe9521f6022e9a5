#include <fmt/format.h>

#include <algorithm>

#include "core/ItemId.h"
#include "core/RememberedPlaces.h"
#include "discovery/ItemIdentity.h"
#include "entry/NevoApp.h"
#include "randomrun/Invariants.h"
#include "scenario/commandSupport.h"

namespace nevo {

namespace {
constexpr const char* positionKey = "NSStatusItem Preferred Position ";
constexpr const char* toggleKey = "NSStatusItem Preferred Position Nevo_Toggle";
constexpr std::size_t traceText = 21;

bool isDivider(const SimBar::Item& item) { return item.own && item.name != "Nevo_Toggle"; }
}  // namespace

void LastingOrder::forget(const std::string& item) {
    leftOf.erase(item);
    for (auto& [other, left] : leftOf) left.erase(item);
}

std::optional<std::pair<std::string, std::string>> LastingOrder::update(
    const std::vector<std::string>& row) {
    std::optional<std::pair<std::string, std::string>> crossed;
    for (auto right = row.begin(); right != row.end(); ++right) {
        std::set<std::string>& left = leftOf[*right];
        for (auto each = row.begin(); each != right; ++each) {
            if (left.insert(*each).second && leftOf[*each].erase(*right) > 0)
                crossed = {*each, *right};
        }
    }
    return crossed;
}

/// What a hand drops, and what has its place by a position that another program has stored.
void Invariants::noteHand(const std::string& line) {
    if (line.size() <= traceText) return;
    std::string text = line.substr(traceText);
    if (line.find("  hand  ") != std::string::npos) inHand = text.substr(text.find(' ') + 1);
    constexpr const char* scanned = "[MenuBarScanner] wid=";
    if (text.starts_with(scanned)) {
        std::size_t id = text.find(" id=");
        auto window = std::stoul(text.substr(std::string_view(scanned).size()));
        if (id != std::string::npos)
            idsOfWindows[static_cast<WindowNumber>(window)].insert(text.substr(id + 4));
    }
    if (std::size_t end = text.find(" dropped at"); end != std::string::npos) {
        std::string label = text.substr(0, end);
        (label == inHand ? movedFreely : movedByNevo).insert(label);
        if (label == inHand) inHand.clear();
    }
    notePosition(text);
}

/// A position that another program stores, or Nevo: for the sake of a rule, which may be that of
/// another item whose position has the same name.
void Invariants::notePosition(const std::string& text) {
    std::size_t key = text.find(positionKey);
    if (key == std::string::npos) return;
    std::string name = text.substr(key + std::string_view(positionKey).size());
    name.resize(std::min(name.find_first_of("\"="), name.size()));
    for (const char* writes :
         {"set ", "[SectionMgr] wrote ", "[SectionMgr] restored ", "[Rules] startup restored "}) {
        if (!text.starts_with(writes)) continue;
        std::size_t from = std::string_view(writes).size();
        std::string domain = text.substr(from, text.find_last_not_of(" \"", key - 1) + 1 - from);
        positionsWritten.emplace(domainNamed(run, domain), name);
    }
}

/// The order changes by a hand, and for an item whose rule moves it.
std::optional<Broken> Invariants::checkOrder() {
    if (std::exchange(placesChanged, false)) {
        touchedRules.insert(idsAway.begin(), idsAway.end());
        idsAway = RememberedPlaces(desktop.defaults.standard()).ids();
        touchedRules.insert(idsAway.begin(), idsAway.end());
    }
    std::set<std::string> freed = std::exchange(movedFreely, {});
    std::vector<WindowNumber> row;
    for (WindowNumber window : desktop.bar.order()) {
        const SimBar::Item* item = desktop.bar.find(window);
        if (item->length > 0 && !isDivider(*item)) row.push_back(window);
    }
    std::vector<WindowNumber> before = std::exchange(lastRow, row);
    if (row == before && freed.empty()) return std::nullopt;
    std::vector<std::string> labels;
    std::set<std::string> ruled = idsWithRules();
    std::set<std::pair<std::string, std::string>> obeyed;
    for (WindowNumber window : row) {
        const SimBar::Item* item = desktop.bar.find(window);
        labels.push_back(item->label);
        bool isNew = std::find(before.begin(), before.end(), window) == before.end();
        bool isPlaced =
            isNew && (positionsWritten.contains({item->domain, item->name}) || isMarked(*item));
        if (isPlaced) obeyed.emplace(item->domain, item->name);
        bool isTouched = touchedWindows.contains(window);
        if (isPlaced || isTouched || isMovedByRule(window, ruled)) freed.insert(item->label);
    }
    for (const auto& position : obeyed) positionsWritten.erase(position);
    // Those that have gone since have done so from another place.
    for (const std::string& label : std::exchange(movedByNevo, {})) {
        if (std::find(labels.begin(), labels.end(), label) == labels.end()) freed.insert(label);
    }
    for (const std::string& label : freed) rowOrder.forget(label);
    auto crossed = rowOrder.update(labels);
    if (!crossed) return std::nullopt;
    return Broken{"order", fmt::format("{} has come to stand left of {}: {}", crossed->first,
                                       crossed->second, describedRow())};
}

/// Whether a rule, or another program, has left it a place at the left end.
bool Invariants::isMarked(const SimBar::Item& item) const {
    auto stored =
        desktop.defaults.readNumber(item.domain, "NSStatusItem Preferred Position " + item.name);
    return stored.value_or(0) >= MenuBarRow::markedPosition;
}

/// Those of items that a rule moves, or that go back where they stood before one.
std::set<std::string> Invariants::idsWithRules() const {
    std::set<std::string> ids = touchedRules;
    for (const auto& [id, rule] : expectedRules) ids.insert(id);
    ids.insert(idsAway.begin(), idsAway.end());
    return ids;
}

bool Invariants::isMovedByRule(WindowNumber window, const std::set<std::string>& ruled) const {
    // The window server may tell of another program, or of another name, for a while.
    std::set<std::string> bundles{desktop.bar.find(window)->domain};
    std::set<std::string> ids;
    if (auto scanned = idsOfWindows.find(window); scanned != idsOfWindows.end())
        ids = scanned->second;
    for (const std::string& id : ids) bundles.insert(lastPartOfID(id));
    std::set<std::string> seen = seenIds();
    return std::any_of(ruled.begin(), ruled.end(), [&](const std::string& rule) {
        // A rule under a name that no item has now may be for any of its program.
        bool isForAny = ids.empty() || !seen.contains(rule);
        bool isOfProgram = std::any_of(bundles.begin(), bundles.end(), [&](const auto& bundle) {
            return rule == bundle || (isForAny && isOfApplication(rule, bundle));
        });
        return ids.contains(rule) || isOfProgram;
    });
}

/// As Nevo has scanned them.
ScannedBarItems Invariants::seenItems() const {
    ScannedBarItems result;
    auto nevo = run.nevo();
    auto controller = nevo ? nevo->delegate().controller() : nullptr;
    if (controller == nullptr) return result;
    for (const auto& [section, items] : controller->sections().lastExpandedSnapshot)
        result.insert(result.end(), items.begin(), items.end());
    return result;
}

std::set<std::string> Invariants::seenIds() const {
    std::set<std::string> ids;
    for (const ScannedBarItem& item : seenItems()) ids.insert(item.persistedID);
    return ids;
}

/// What stands from the toggle to the system area has the first claim to the bar, then the hidden
/// items nearest the toggle while their section is open.
std::optional<Broken> Invariants::checkRoom() const {
    bool readable = !desktop.screens.displays().empty() && desktop.bar.hasSettled();
    if (!readable || desktop.bar.isDragging() || readFailures() > readFailuresAtRest)
        return std::nullopt;
    // The hidden section's divider is placed by it.
    if (!desktop.defaults.readNumber(desktop.defaults.ownDomain(), toggleKey)) return std::nullopt;
    double start = desktop.screens.displays().front().frame.minX();
    double end = *desktop.bar.systemAreaLeft();
    std::set<std::string> pinned;
    std::set<std::string> shown;
    for (const auto& [id, rule] : expectedRules)
        (rule == IconRule::alwaysHide ? pinned : shown).insert(id);
    // Nor can one go back in a bar that refuses.
    if (moveFailures() > moveFailuresAtRest) pinned.insert(idsAway.begin(), idsAway.end());
    double room = end - start;
    for (WindowNumber window : claimsToRoom()) {
        const SimBar::Item& item = *desktop.bar.find(window);
        // An item that a rule hides stands left of all others.
        bool isPinned = !item.own && isMovedByRule(window, pinned);
        bool isInBar = item.slot.x >= start && item.slot.maxX() <= end;
        // One that only looks like the rule's, and is transparent for another reason, takes room.
        bool isOut = isPinned && desktop.windows.find(window)->alpha == 0 && !isInBar;
        if (isOut && !isMovedByRule(window, shown)) continue;
        room -= item.length;
        if (room < 0) break;
        if (isInBar || isPinned) continue;
        return Broken{
            "room", fmt::format("there is room in the bar for {}: {}", item.label, describedRow())};
    }
    return std::nullopt;
}

/// How often Nevo couldn't read the row, or who is in it.
int Invariants::readFailures() const {
    int count = 0;
    for (SimOperation operation :
         {SimOperation::windowCount, SimOperation::menuBarWindowList, SimOperation::windowFrame})
        count += desktop.faults.struckCount(operation);
    return count;
}

std::string Invariants::describedRow() const {
    std::string text;
    for (WindowNumber window : desktop.bar.order()) {
        const SimBar::Item* item = desktop.bar.find(window);
        text += fmt::format(" {}@{}+{}", item->label, item->slot.x, item->length);
    }
    return text;
}

/// The items that are to be seen, the first claim first.
std::vector<WindowNumber> Invariants::claimsToRoom() const {
    std::vector<WindowNumber> order = desktop.bar.order();
    std::erase_if(order, [&](WindowNumber each) { return isDivider(*desktop.bar.find(each)); });
    std::reverse(order.begin(), order.end());
    auto toggle = std::find(order.begin(), order.end(), run.ownItem("toggle")->window());
    std::rotate(order.begin(), toggle, toggle + 1);
    bool isOpen = run.ownItem("divider")->length() == 0;
    if (!isOpen) order.erase(toggle + 1, order.end());
    return order;
}

}  // namespace nevo
