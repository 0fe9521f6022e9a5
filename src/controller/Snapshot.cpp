#include <fmt/format.h>

#include <set>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"
#include "discovery/ItemLabel.h"

namespace nevo {

void StatusBarController::updateSnapshot(const ScannedBarItems& items, bool skipReconcile) {
    if (!skipReconcile) reconcileReport(items);
    SectionSnapshot& snapshot = sectionManager.lastExpandedSnapshot;
    snapshot = sectionManager.classify(items);
    applyRulesToSnapshot();
    std::set<std::string> hiddenBundles;
    for (const ScannedBarItem& item : snapshot[SectionName::hidden])
        hiddenBundles.insert(item.bundleID);
    appState.setHiddenBundleIDs(std::move(hiddenBundles));
    appState.setSnapshotItems(snapshotItemsOf(items));
    noteNewItems();
    if (shelfController) shelfController->renewSlots();
    decoyController->update();
}

/// Tells which rules the items' places don't fit; positions never change a rule here.
void StatusBarController::reconcileReport(const ScannedBarItems& items) const {
    auto toggle = SectionManager::frame(*sectionManager.toggleItem);
    if (!toggle) return;
    IconRules rules = appState.rules.loadIconRules();
    std::set<WindowNumber> alphaHidden = sectionManager.opacity.alphaHiddenWindows();
    for (const ScannedBarItem& item : items) {
        if (item.persistedID.empty() || alphaHidden.contains(item.windowID)) continue;
        auto match = matchIconRule(item, rules, items);
        if (!match || match->first != item.persistedID) continue;
        bool isLeft = item.centerX < toggle->x;
        bool hides = match->second == IconRule::alwaysHide;
        if (match->second == IconRule::automatic || hides == isLeft) continue;
        debugLog(
            fmt::format("[Reconcile] Keeping {} for {} despite {}-zone position x={}; rule replay "
                        "will repair placement",
                        rawValue(match->second), item.persistedID, hides ? "visible" : "hidden",
                        describe(item.centerX)));
    }
}

std::vector<AppState::SnapshotItem> StatusBarController::snapshotItemsOf(
    const ScannedBarItems& items) const {
    const SectionSnapshot& snapshot = sectionManager.lastExpandedSnapshot;
    ScannedBarItems source;
    for (SectionName section :
         {SectionName::hidden, SectionName::visible, SectionName::alwaysHidden}) {
        const ScannedBarItems& part = snapshot.at(section);
        source.insert(source.end(), part.begin(), part.end());
    }
    if (source.empty()) source = items;

    auto isIn = [&](SectionName section, const std::string& id) {
        return findByPersistedID(snapshot.at(section), id) != nullptr;
    };
    std::vector<AppState::SnapshotItem> result;
    std::set<std::string> seen;
    for (const ScannedBarItem& item : source) {
        if (item.persistedID.empty() || !seen.insert(item.persistedID).second) continue;
        bool isHidden = isIn(SectionName::hidden, item.persistedID) ||
                        !isIn(SectionName::visible, item.persistedID);
        result.push_back({item.persistedID, item.bundleID, labelForPeople(item, platform.workspace),
                          item.icon, isHidden});
    }
    return result;
}

}  // namespace nevo
