#include <fmt/format.h>

#include <algorithm>

#include "core/ItemId.h"
#include "discovery/ItemIdentity.h"
#include "entry/NevoApp.h"
#include "randomrun/Invariants.h"

namespace nevo {

namespace {

/// What Nevo may hold at rest, whatever has happened to it: a little more than it needs.
constexpr std::size_t mostTimers = 6;
constexpr std::size_t mostMonitors = 10;
constexpr std::size_t mostObservers = 20;

}  // namespace

bool Invariants::isAtRest() const {
    auto nevo = run.nevo();
    return !nevo || (nevo->delegate().itemMover().programmaticMoveCount() == 0 &&
                     desktop.loop.tasks().liveCount() <= mostTasks() &&
                     desktop.loop.programWorkCount() == 0);
}

/// Where there is no room right of the toggle for items that are to be shown, or their places can't
/// be read, Nevo tries again without end.
bool Invariants::mustComeToRest() const {
    SimStatusItem* toggle = run.ownItem("toggle");
    bool isHeld = desktop.screens.displays().empty() || desktop.bar.isDragging();
    if (toggle == nullptr || isHeld) return toggle == nullptr;
    if (ownPlacesWritten || desktop.bar.find(toggle->window())->floating) return false;
    double room = *desktop.bar.systemAreaLeft() - desktop.screens.displays().front().frame.minX();
    for (WindowNumber window : claimsToRoom()) room -= desktop.bar.find(window)->length;
    return room >= 0;
}

/// The replay of rules waits for a first scan without end, and an item that was brought out for a
/// minute.
std::size_t Invariants::mostTasks() const {
    bool isItemOut = shelf() != nullptr && shelf()->hasItemOut();
    return isItemOut ? 2 : 1;
}

std::optional<Broken> Invariants::atRest() {
    auto nevo = run.nevo();
    if (!nevo || nevo->delegate().controller() == nullptr) return std::nullopt;
    touchedRules.clear();
    touchedWindows.clear();
    idsOfWindows.clear();
    for (const ScannedBarItem& item : seenItems())
        idsOfWindows[item.windowID].insert(item.persistedID);
    if (auto broken = checkState()) return broken;
    if (auto broken = checkToggle()) return broken;
    if (auto broken = checkTransparency()) return broken;
    if (auto broken = checkPinned()) return broken;
    if (auto broken = checkRoom()) return broken;
    if (auto broken = checkOpenSection()) return broken;
    readFailuresAtRest = readFailures();
    moveFailuresAtRest = moveFailures();
    if (auto broken = checkShelf()) return broken;
    if (auto broken = checkDecoys()) return broken;
    if (auto broken = checkPresentation()) return broken;
    return checkGrowth();
}

std::optional<Broken> Invariants::checkState() {
    auto nevo = run.nevo();
    bool expanded = nevo->delegate().state().isExpanded();
    double length = run.ownItem("divider")->length();
    if (length != 0 && length != 10000) {
        return Broken{"state", fmt::format("the divider's length is {}", length)};
    }
    bool closed = length > 0;
    bool shelf = isShelfMode(desktop.screens, nevo->delegate().state());
    if (shelf) return std::nullopt;
    if (expanded != closed) {
        mayBeClosedUnasked = mayBeOpenUnasked = false;
        return std::nullopt;
    }
    if (closed ? mayBeClosedUnasked : mayBeOpenUnasked) return std::nullopt;
    return Broken{"state", fmt::format("isExpanded is {} in push mode while the divider is {}",
                                       expanded, closed ? "closed" : "open")};
}

std::optional<Broken> Invariants::checkToggle() const {
    SimStatusItem* toggle = run.ownItem("toggle");
    const SimStatusItemButton& button = toggle->shownButton();
    if (desktop.statusBar.itemCount() != 3) {
        return Broken{"own-items", fmt::format("Nevo has {} items", desktop.statusBar.itemCount())};
    }
    if (!toggle->isVisible() || !button.isEnabled() || button.isHidden() || button.alpha() < 1) {
        return Broken{"toggle", "the toggle can't be seen or clicked"};
    }
    // A bar that obeys moves of Nevo's own items takes them anywhere.
    bool isHeld = desktop.screens.displays().empty() || desktop.bar.isDragging() ||
                  desktop.bar.find(toggle->window())->floating;
    if (isHeld || desktop.bar.isOnScreen(toggle->window())) return std::nullopt;
    return Broken{"toggle", fmt::format("the toggle stands at {}, off the screen",
                                        desktop.windows.find(toggle->window())->frame.x)};
}

std::optional<Broken> Invariants::checkTransparency() const {
    if (desktop.faults.struckCount(SimOperation::setWindowAlpha) > alphaFailuresAtStart)
        return std::nullopt;
    auto nevo = run.nevo();
    const SectionManager& sections = nevo->delegate().controller()->sections();
    for (WindowNumber window : desktop.bar.order()) {
        const SimBar::Item* item = desktop.bar.find(window);
        bool known = sections.opacity.isTransparent(window);
        if (desktop.windows.find(window)->alpha >= 1 || known) continue;
        return Broken{"transparency",
                      fmt::format("{} is transparent and Nevo doesn't know it", item->label)};
    }
    return std::nullopt;
}

/// An item that a rule always hides is seen only where the user, or the rule of the program in
/// front, has brought it out. Its id is the one that the settings list shows.
std::optional<Broken> Invariants::checkPinned() const {
    if (desktop.faults.struckCount(SimOperation::setWindowAlpha) > alphaFailuresAtStart ||
        readFailures() > readFailuresAtRest)
        return std::nullopt;
    const SectionManager& sections = run.nevo()->delegate().controller()->sections();
    std::set<std::string> shown;
    for (const auto& [id, rule] : expectedRules) {
        if (rule == IconRule::alwaysShow) shown.insert(id);
    }
    for (const auto& [section, items] : sections.lastExpandedSnapshot) {
        for (const ScannedBarItem& item : items) {
            auto rule = expectedRules.find(item.persistedID);
            bool isPinned = rule != expectedRules.end() && rule->second == IconRule::alwaysHide &&
                            !isPhantomID(item.persistedID);
            const SimWindow* window = desktop.windows.find(item.windowID);
            if (!isPinned || window == nullptr || window->alpha == 0) continue;
            // An ordinary window may be listed among the bar's for a while.
            if (desktop.bar.find(item.windowID) == nullptr) continue;
            // A later rule, under a name that no item has, may have been taken for this one's.
            if (isMovedByRule(item.windowID, shown)) continue;
            bool isOut = sections.opacity.has(ItemOpacity::Reason::broughtOut, item.windowID) ||
                         sections.opacity.has(ItemOpacity::Reason::shownInFront, item.windowID);
            if (isOut || !desktop.bar.isOnScreen(item.windowID)) continue;
            return Broken{"pinned", item.persistedID + " is always hidden and can be seen"};
        }
    }
    return std::nullopt;
}

/// Where the section is open, an item is seen unless there is a reason.
std::optional<Broken> Invariants::checkOpenSection() {
    // Of an item that couldn't be told from others the rule is found again with the next scan.
    if (readFailures() > readFailuresAtRest) noteTransparent();
    const AppState& state = run.nevo()->delegate().state();
    bool open = state.isExpanded() && run.ownItem("divider")->length() == 0;
    if (!open || isShelfMode(desktop.screens, state)) return std::nullopt;
    bool refused = desktop.faults.struckCount(SimOperation::setWindowAlpha) > alphaFailuresAtStart;
    for (WindowNumber window : desktop.bar.order()) {
        if (desktop.windows.find(window)->alpha >= 1) {
            hiddenWithReason.erase(window);
        } else if (!refused && !isHiddenInFront(window) && !hiddenWithReason.contains(window) &&
                   !isRuledHidden(window)) {
            return Broken{"unexplained", fmt::format("{} is transparent for no reason",
                                                     desktop.bar.find(window)->label)};
        }
    }
    return std::nullopt;
}

bool Invariants::isHiddenInFront(WindowNumber window) const {
    const SectionManager& sections = run.nevo()->delegate().controller()->sections();
    return sections.opacity.has(ItemOpacity::Reason::hiddenInFront, window);
}

/// Any rule for its program counts, since ids change with an item's names. Where a program has had
/// several items, a rule may have been taken back of another one than it was set for.
bool Invariants::isRuledHidden(WindowNumber window) const {
    const std::string& bundle = desktop.bar.find(window)->domain;
    const SimOtherProgram* owner =
        desktop.applications.runningWithPid(desktop.windows.find(window)->pid);
    // The window server may tell of another program.
    if (owner == nullptr || owner->application.bundleIdentifier != bundle) return true;
    if (bundlesOfSeveral.contains(bundle)) return true;
    return std::any_of(expectedRules.begin(), expectedRules.end(), [&](const auto& entry) {
        // An item without a program has an id that ends with the separator.
        bool fits = entry.first.ends_with(bundle) || entry.first.ends_with(persistedIDSeparator);
        return entry.second == IconRule::alwaysHide && fits;
    });
}

std::optional<Broken> Invariants::checkGrowth() const {
    struct Bound {
        const char* what;
        std::size_t count;
        std::size_t most;
    };
    // The shelf or the decoys, and a cover on each display but the main one.
    std::size_t mostPanels = 1 + std::max<std::size_t>(1, desktop.screens.displays().size());
    for (const Bound& bound : {Bound{"tasks", desktop.loop.tasks().liveCount(), mostTasks()},
                               Bound{"timers", desktop.loop.programTimerCount(), mostTimers},
                               Bound{"monitors", desktop.events.monitorCount(), mostMonitors},
                               Bound{"observers", observerCount(), mostObservers},
                               Bound{"panels", desktop.panels.count(), mostPanels},
                               Bound{"hot keys", desktop.hotKeys.count(), 1}}) {
        if (bound.count <= bound.most) continue;
        return Broken{"growth", fmt::format("Nevo has {} {} at rest", bound.count, bound.what)};
    }
    return std::nullopt;
}

}  // namespace nevo
