#include <algorithm>
#include <utility>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "discovery/ItemIdentity.h"

namespace nevo {

/// Looks at the row anew and applies the rules to whatever has come. One run at a time; what comes
/// meanwhile is seen by that.
Task<> StatusBarController::takeInRow(std::weak_ptr<StatusBarController> owner) {
    auto self = owner.lock();
    if (!self) co_return;
    self->hasRowChanged = true;
    if (self->isTakingIn) co_return;
    self->isTakingIn = true;
    while (std::exchange(self->hasRowChanged, false)) {
        MenuBarScanner& scanner = self->services.scanner;
        std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
        self.reset();
        ScannedBarItems items = co_await scanner.scanCached(own, 0.0);
        self = owner.lock();
        if (!self) co_return;
        self->updateSnapshot(items, true);
        std::vector<ScannedBarItem> returning = self->itemsToReturn();
        for (std::size_t i = 0; i < returning.size(); ++i) {
            std::string id = returning[i].persistedID;
            WindowNumber window = returning[i].windowID;
            self.reset();
            co_await returnToPlace(owner, id, window);
            self = owner.lock();
            if (!self) co_return;
        }
    }
    self->isTakingIn = false;
    if (self->isBarInMotion()) co_return;
    self->enforceAlwaysShow(self->sectionManager.ownWindowIDs());
    bool mustArrange = self->mustArrangeAlwaysHidden();
    self.reset();
    if (mustArrange) co_await arrangeAlwaysHidden(owner);
}

/// Items whose rule has ended while they weren't there. Of those that share an id one, and always
/// the same: each would take the other's place, without end.
ScannedBarItems StatusBarController::itemsToReturn() const {
    IconRules rules = appState.rules.loadIconRules();
    ScannedBarItems all = snapshotItems({SectionName::hidden, SectionName::visible});
    ScannedBarItems result;
    for (const ScannedBarItem& item : all) {
        bool isFree = !matchIconRule(item, rules, all) && !ruleChanges.isUnderWay(item.persistedID);
        if (!isFree || !rulePlaces.has(item.persistedID)) continue;
        auto twin = std::find_if(result.begin(), result.end(), [&](const ScannedBarItem& each) {
            return each.persistedID == item.persistedID;
        });
        if (twin == result.end()) {
            result.push_back(item);
        } else if (item.windowID < twin->windowID) {
            *twin = item;
        }
    }
    return result;
}

/// Gives each item of the snapshot the opacity that its rule asks for, whenever it has come and
/// whoever has written the rule.
void StatusBarController::applyRulesToSnapshot() {
    IconRules rules = appState.rules.loadIconRules();
    ScannedBarItems all = snapshotItems({SectionName::hidden, SectionName::visible});
    ItemOpacity& opacity = sectionManager.opacity;
    for (const ScannedBarItem& item : all) {
        auto match = matchIconRule(item, rules, all);
        if (match && findByPersistedID(all, match->first) == nullptr)
            rulePlaces.rename(match->first, item.persistedID);
        bool isPhantom = isPhantomID(item.persistedID);
        bool hides = !isPhantom && match && match->second == IconRule::alwaysHide;
        bool shows = !isPhantom && match && match->second == IconRule::alwaysShow;
        bool isNew = (hides && !opacity.has(ItemOpacity::Reason::hiddenByRule, item.windowID)) ||
                     (shows && !opacity.has(ItemOpacity::Reason::shownByRule, item.windowID));
        if (isNew && !ruleChanges.isUnderWay(item.persistedID))
            rulePlaces.remember(item.windowID, snapshotIDs());
        opacity.setRule(item.windowID, hides, shows);
        if (shows) opacity.remove(ItemOpacity::Reason::stray, item.windowID);
    }
    applyFrontRule(all);
}

/// What the notifications of the bar may have missed.
void StatusBarController::watchRow() {
    std::vector<WindowNumber> windows = services.scanner.menuBarWindowIDs();
    if (windows.empty()) return;
    std::set<WindowNumber> present(windows.begin(), windows.end());
    sectionManager.opacity.forgetOthersThan(present);
    sectionManager.opacity.writeAgain();
    auto own = sectionManager.ownWindowIDs();
    for (WindowNumber window : own) present.erase(window);
    bool hasChanged = std::exchange(watchedRow, present) != present;
    if (hasChanged || (!isArranging && mustArrangeAlwaysHidden()))
        spawn(platform.runLoop, takeInRow(weak_from_this()));
}

}  // namespace nevo
