#include <algorithm>
#include <utility>

#include "controller/StatusBarController.h"
#include "discovery/ItemIdentity.h"
#include "surfaces/OnboardingCoordinator.h"

namespace nevo {

namespace {
/// What comes before is the session's start.
constexpr double startTime = 60.0;
/// How often is looked whether the one before is back.
constexpr double turnPoll = 1.0;
}  // namespace

/// A new program's icon that would be hidden from the start is seen once, lest its user believe
/// that it has none.
void StatusBarController::noteNewItems() {
    bool isFirst = !std::exchange(hasSeenRow, true);
    bool isStarting = !isFirstStart && platform.runLoop.now() - startedAt < startTime;
    // A drag, a rule or a change of monitors may have the divider open for a moment. On the very
    // first start it stays open, and everything is in sight.
    bool isClosed =
        !appState.isExpanded() && (!isFirstStart || sectionManager.isHiddenDividerCollapsed());
    IconRules rules = appState.rules.loadIconRules();
    ScannedBarItems all = snapshotItems({SectionName::hidden, SectionName::visible});
    const ScannedBarItems& hidden = sectionManager.lastExpandedSnapshot[SectionName::hidden];
    for (const ScannedBarItem& item : all) {
        if (item.persistedID.empty() || isPhantomID(item.persistedID)) continue;
        bool isHidden = std::any_of(hidden.begin(), hidden.end(), [&](const ScannedBarItem& each) {
            return each.windowID == item.windowID;
        });
        bool shows = isHidden && isClosed && !isFirst && !isStarting &&
                     !matchIconRule(item, rules, all).has_value();
        bool isNew = knownItems.meet(item.persistedID, item.bundleID, shows);
        if (isNew && shows) newItems.push_back(item.persistedID);
    }
    if (newItems.empty() || isShowingNewItems) return;
    isShowingNewItems = true;
    spawn(platform.runLoop, showNewItems(weak_from_this()));
}

/// One after another, each for as long as any item is brought out.
Task<> StatusBarController::showNewItems(std::weak_ptr<StatusBarController> owner) {
    while (true) {
        auto self = owner.lock();
        if (!self) co_return;
        if (self->appState.isExpanded()) self->newItems.clear();
        if (self->newItems.empty()) {
            self->isShowingNewItems = false;
            co_return;
        }
        bool isShelfOpen =
            self->isShelfIn(ShelfState::Kind::panelVisible) && self->nevoBar->isPanelVisible();
        bool isFree = !self->shelf().hasItemOut() && !isShelfOpen && !self->isBarInMotion() &&
                      self->sectionManager.isHiddenDividerCollapsed() &&
                      self->sectionManager.shownFrame(*self->sectionManager.toggleItem);
        if (isFree) {
            std::string id = self->newItems.front();
            self->newItems.pop_front();
            self->bringOut(id);
        }
        self.reset();
        co_await sleep(turnPoll);
    }
}

}  // namespace nevo
