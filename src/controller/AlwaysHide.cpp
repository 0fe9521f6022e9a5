#include <fmt/format.h>

#include <algorithm>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"
#include "discovery/ItemIdentity.h"

namespace nevo {

namespace {

constexpr double dividerOpenSettle = 0.5;
constexpr double collapseSettle = 0.1;
constexpr double snapshotSettle = 1.0;
/// After an item that couldn't be moved: a bar that refuses isn't asked at each change.
constexpr double arrangeBackOff = 30.0;

}  // namespace

Task<> StatusBarController::applyAlwaysHide(std::weak_ptr<StatusBarController> owner,
                                            RuleChange change, WindowNumber window) {
    std::string id = change.persistedID;
    auto self = owner.lock();
    if (!self) co_return;
    bool ok = self->sectionManager.opacity.setRule(window, true, false);
    debugLog(fmt::format("[Rules] alwaysHide wid={} alpha=0 ok={}", window, describe(ok)));
    // Its place in the row, also while it is brought out.
    auto frame = self->platform.windows.slotFrame(window);
    bool standsOnBar = frame && frame->x > 0;
    self->arrangeAgainAt = 0;
    self.reset();
    if (standsOnBar) co_await moveBehindDivider(owner, change, window, frame->midY());
    self = carryingOut(owner, change);
    if (!self) co_return;
    self->sectionManager.opacity.reassert(window);
    self.reset();
    co_await arrangeAlwaysHidden(owner);

    co_await sleep(snapshotSettle);
    self = carryingOut(owner, change);
    if (!self) co_return;
    MenuBarScanner& scanner = self->services.scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    self.reset();
    ScannedBarItems items = co_await scanner.scanCached(own, 3.0);
    self = carryingOut(owner, change);
    if (!self) co_return;
    self->updateSnapshot(items, false);
    self->sectionManager.opacity.reassert(window);
}

/// Drags an item that stands on the bar to the left of all ordinary ones. A closed section is
/// opened for that, in a blanked bar.
Task<> StatusBarController::moveBehindDivider(std::weak_ptr<StatusBarController> owner,
                                              RuleChange change, WindowNumber window, double y) {
    auto self = owner.lock();
    if (!self) co_return;
    ItemMover& mover = self->services.mover;
    bool wasCollapsed = self->sectionManager.isHiddenDividerCollapsed();
    self->platform.windows.setSetsCursorInBackground(true);
    // So nothing is seen to jump about.
    std::vector<WindowNumber> others;
    if (wasCollapsed) others = self->openBlanked();
    self.reset();
    if (wasCollapsed) co_await sleep(dividerOpenSettle);
    bool moved = false;
    for (int attempt = 0; attempt < 2 && !moved; ++attempt) {
        self = carryingOut(owner, change);
        if (!self) break;
        auto end = self->alwaysHiddenArea.leftEnd(self->pinnedWindows());
        Point target{end ? end->x : 0, y};
        self.reset();
        if (!end) break;
        if (attempt > 0) co_await sleep(dividerOpenSettle);
        // The pointer can't go past the bar's left end, where a long row goes on.
        if (target.x < 0) {
            moved = co_await mover.reorderInPlace(window, target);
        } else {
            moved = co_await mover.moveItem(window, target);
        }
    }
    debugLog(fmt::format("[Rules] alwaysHide moveItem wid={} moved={}", window, describe(moved)));
    self = owner.lock();
    // The tear-down makes the bar opaque again.
    if (!self || !wasCollapsed) co_return;
    // A click meanwhile may have opened the section for good.
    if (!self->appState.isExpanded() || self->isShelfMode()) self->performCollapse();
    self.reset();
    co_await sleep(collapseSettle);
    self = owner.lock();
    if (!self) co_return;
    for (WindowNumber other : others)
        self->sectionManager.opacity.remove(ItemOpacity::Reason::blanked, other);
}

/// Opens the hidden section with every other program's item transparent; gives those.
std::vector<WindowNumber> StatusBarController::openBlanked() {
    std::vector<WindowNumber> others = otherMenuBarWindows();
    for (WindowNumber other : others)
        sectionManager.opacity.add(ItemOpacity::Reason::blanked, other);
    refreshToggleButton();
    sectionManager.setDividerLength(*sectionManager.hiddenDivider, false);
    if (StatusItemButton* button = sectionManager.toggleItem->button()) button->setAlpha(1.0);
    return others;
}

std::vector<WindowNumber> StatusBarController::otherMenuBarWindows() const {
    auto own = sectionManager.ownWindowIDs();
    std::vector<WindowNumber> others;
    for (WindowNumber window : services.scanner.menuBarWindowIDs()) {
        if (!own.contains(window)) others.push_back(window);
    }
    return others;
}

ScannedBarItems StatusBarController::itemsRuledHidden() const {
    IconRules rules = appState.rules.loadIconRules();
    ScannedBarItems all = snapshotItems({SectionName::hidden, SectionName::visible});
    ScannedBarItems result;
    for (const ScannedBarItem& item : all) {
        auto match = matchIconRule(item, rules, all);
        bool hides = match && match->second == IconRule::alwaysHide;
        if (hides && !isPhantomID(item.persistedID)) result.push_back(item);
    }
    return result;
}

std::set<WindowNumber> StatusBarController::pinnedWindows() const {
    std::set<WindowNumber> windows;
    for (const ScannedBarItem& item : itemsRuledHidden()) windows.insert(item.windowID);
    return windows;
}

bool StatusBarController::hasAlwaysHideRule() const {
    IconRules rules = appState.rules.loadIconRules();
    return std::any_of(rules.begin(), rules.end(), [](const auto& entry) {
        return entry.second == IconRule::alwaysHide && !isPhantomID(entry.first);
    });
}

/// Moves each always-hidden item that stands right of an ordinary one to the left of them all, and
/// puts the divider between. One run at a time; what comes meanwhile is seen by that.
Task<> StatusBarController::arrangeAlwaysHidden(std::weak_ptr<StatusBarController> owner) {
    auto self = owner.lock();
    if (!self) co_return;
    self->mustArrangeAgain = true;
    if (self->isArranging) co_return;
    self->isArranging = true;
    while (std::exchange(self->mustArrangeAgain, false)) {
        ItemMover& mover = self->services.mover;
        for (std::size_t left = self->pinnedWindows().size(); left > 0; --left) {
            std::set<WindowNumber> pinned = self->pinnedWindows();
            auto window = self->alwaysHiddenArea.misplaced(pinned);
            auto end = self->alwaysHiddenArea.leftEnd(pinned);
            if (!window || !end) break;
            WindowNumber moving = *window;
            Point target = *end;
            // Its rule may have been stored a moment ago, and its turn not have come yet.
            self->rulePlaces.remember(moving, self->snapshotIDs());
            self.reset();
            bool moved = co_await mover.reorderInPlace(moving, target);
            self = owner.lock();
            if (!self) co_return;
            if (!moved) self->arrangeAgainAt = self->platform.runLoop.now() + arrangeBackOff;
        }
        self->updateAlwaysHiddenDivider();
    }
    self->isArranging = false;
}

/// Whether the row lacks something of that order.
bool StatusBarController::mustArrangeAlwaysHidden() const {
    std::set<WindowNumber> pinned = pinnedWindows();
    bool isUp = sectionManager.alwaysHiddenDivider->isVisible();
    if (pinned.empty() && !hasAlwaysHideRule()) return isUp;
    // Only moves are backed off from: the divider is put right at once.
    bool mayMove = platform.runLoop.now() >= arrangeAgainAt;
    return (mayMove && alwaysHiddenArea.misplaced(pinned)) ||
           !alwaysHiddenArea.isDividerInPlace(pinned);
}

void StatusBarController::updateAlwaysHiddenDivider() {
    ScannedBarItems all = snapshotItems({SectionName::hidden, SectionName::visible});
    std::vector<std::string> hideIDs;
    for (const ScannedBarItem& item : itemsRuledHidden()) hideIDs.push_back(item.persistedID);
    std::vector<std::string> otherIDs;
    for (const ScannedBarItem& item : all) {
        bool hides = std::find(hideIDs.begin(), hideIDs.end(), item.persistedID) != hideIDs.end();
        if (!hides) otherIDs.push_back(item.persistedID);
    }
    if (!otherIDs.empty()) preferences.restoreAll(otherIDs, all);
    std::set<WindowNumber> pinned = pinnedWindows();
    if (hideIDs.empty() && !hasAlwaysHideRule()) {
        sectionManager.deactivateAlwaysHiddenDivider();
    } else if (alwaysHiddenArea.isDividerInPlace(pinned)) {
        sectionManager.markHidden(hideIDs, all);
    } else {
        // Before its program comes, too: so its item isn't seen for a moment.
        sectionManager.recreateAlwaysHiddenDivider(hideIDs, all,
                                                   alwaysHiddenArea.dividerPosition(pinned));
    }
    debugLog(fmt::format("[Rules] updateAlwaysHiddenDivider: alwaysHide={}", hideIDs.size()));
}

}  // namespace nevo
