#include "shelf/DecoyPanelController.h"

#include <algorithm>
#include <utility>

#include "core/debugLog.h"

namespace nevo {

namespace {
/// The bar's layout has settled by then.
constexpr double collapseSettle = 0.4;
constexpr double snapshotAge = 3.0;
constexpr double refreshInterval = 10.0;
}  // namespace

DecoyPanelController::DecoyPanelController(const Platform& desktop, AppState& state,
                                           SectionManager& sections, MenuBarScanner& itemScanner)
    : platform(desktop), appState(state), sectionManager(sections), scanner(itemScanner) {}

std::shared_ptr<DecoyPanelController> DecoyPanelController::create(const Platform& platform,
                                                                   AppState& appState,
                                                                   SectionManager& sectionManager,
                                                                   MenuBarScanner& scanner) {
    std::shared_ptr<DecoyPanelController> decoys(
        new DecoyPanelController(platform, appState, sectionManager, scanner));
    decoys->expandedCancellable =
        appState.isExpandedDidChange.observe([weak = std::weak_ptr(decoys)] {
            if (auto self = weak.lock()) self->isExpandedChanged();
        });
    return decoys;
}

void DecoyPanelController::isExpandedChanged() {
    if (!appState.isExpanded()) {
        spawn(platform.runLoop, rebuildAfterCollapse(weak_from_this()));
        return;
    }
    platform.runLoop.post([weak = weak_from_this()] {
        auto self = weak.lock();
        if (!self) return;
        self->hide();
        self->stopRefreshing();
    });
}

Task<> DecoyPanelController::rebuildAfterCollapse(std::weak_ptr<DecoyPanelController> owner) {
    co_await sleep(collapseSettle);
    auto self = owner.lock();
    if (self) spawn(self->platform.runLoop, rebuild(owner));
}

Task<> DecoyPanelController::rebuild(std::weak_ptr<DecoyPanelController> owner) {
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& itemScanner = self->scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    self.reset();
    ScannedBarItems items = co_await itemScanner.scanCached(own, snapshotAge);
    self = owner.lock();
    if (!self) co_return;
    self->sectionManager.lastExpandedSnapshot = self->sectionManager.classify(items);
    self->hide();
    auto former = std::exchange(self->entries, {});
    self->refreshTimer = self->platform.runLoop.timer(refreshInterval, true, [owner] {
        auto held = owner.lock();
        if (!held) return;
        held->platform.runLoop.post([owner] {
            if (auto later = owner.lock()) later->refresh();
        });
    });
    self->makeEntries(former);
    self->updatePanel();
}

/// Decoys stand for the items that only the shelf would show: in push mode a click brings the real
/// ones back. One that a rule hides is to stay out of sight, and of items with the same id a click
/// could only ever reach the first.
void DecoyPanelController::makeEntries(const std::vector<DecoyEntry>& former) {
    if (!isShelfMode(platform.screens, appState) || appState.isExpanded()) return;
    auto find = [](const std::vector<DecoyEntry>& all, const std::string& id) {
        return std::find_if(all.begin(), all.end(),
                            [&](const DecoyEntry& each) { return each.persistedID == id; });
    };
    IconRules rules = appState.rules.loadIconRules();
    for (const ScannedBarItem& item : sectionManager.lastExpandedSnapshot[SectionName::hidden]) {
        auto rule = rules.find(item.persistedID);
        bool isRuledOut = rule != rules.end() && rule->second == IconRule::alwaysHide;
        if (isRuledOut || find(entries, item.persistedID) != entries.end()) continue;
        DecoyEntry entry;
        entry.persistedID = item.persistedID;
        entry.ownerPID = item.ownerPID;
        entry.windowID = item.windowID;
        entry.realCenterX = item.centerX;
        entry.realWidth = item.width;
        // The shelf may be opened and closed many times while a picture stays good.
        auto known = find(former, item.persistedID);
        if (known != former.end() && known->windowID == item.windowID && isCurrent(*known)) {
            entry.image = known->image;
            entry.state = known->state;
            entry.lastCaptureTime = known->lastCaptureTime;
        } else {
            capture(entry);
        }
        entries.push_back(entry);
    }
}

void DecoyPanelController::handleRuleChange(const std::string& persistedID, IconRule rule) {
    if (rule == IconRule::alwaysShow) {
        hide();
        entries.clear();
        return;
    }
    std::erase_if(entries,
                  [&](const DecoyEntry& entry) { return entry.persistedID == persistedID; });
    updatePanel();
}

ScannedBarItems DecoyPanelController::snapshotItems() const {
    ScannedBarItems items;
    for (SectionName section : {SectionName::hidden, SectionName::visible}) {
        auto part = sectionManager.lastExpandedSnapshot.find(section);
        if (part == sectionManager.lastExpandedSnapshot.end()) continue;
        items.insert(items.end(), part->second.begin(), part->second.end());
    }
    return items;
}

void DecoyPanelController::refresh() {
    if (!panel || !panel->isVisible()) return;
    ScannedBarItems all = snapshotItems();
    bool changed = false;
    for (DecoyEntry& entry : entries) {
        if (entry.state == DecoyState::nonDecoyable) continue;
        changed = updateEntry(entry, findByPersistedID(all, entry.persistedID)) || changed;
    }
    std::erase_if(entries, [&](const DecoyEntry& entry) {
        if (findByPersistedID(all, entry.persistedID) != nullptr) return false;
        debugLog("[Decoy] pruning disappeared item: " + entry.persistedID);
        return true;
    });
    if (changed || entries.empty()) updatePanel();
}

bool DecoyPanelController::updateEntry(DecoyEntry& entry, const ScannedBarItem* item) {
    bool changed = false;
    if (item == nullptr) {
        entry.state = DecoyState::dirty;
    } else if (item->windowID != entry.windowID) {
        entry.windowID = item->windowID;
        entry.ownerPID = item->ownerPID;
        entry.state = DecoyState::dirty;
        changed = true;
    }
    if (isCurrent(entry)) return changed;
    capture(entry);
    return true;
}

bool DecoyPanelController::isCurrent(const DecoyEntry& entry) const {
    bool isOld = platform.runLoop.now() - entry.lastCaptureTime > refreshInterval;
    return entry.state != DecoyState::dirty && !isOld;
}

}  // namespace nevo
