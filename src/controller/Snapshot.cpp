#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

namespace {

/// A label of numbers alone tells a person nothing.
bool isTelling(const std::string& label) {
    return std::any_of(label.begin(), label.end(), [](char c) { return c < '0' || c > '9'; });
}

std::string without(std::string text, const std::string& part) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at))
        text.erase(at, part.size());
    return text;
}

std::string withoutLastComponent(const std::string& bundleID) {
    auto dot = bundleID.rfind('.');
    return dot == std::string::npos ? "" : bundleID.substr(0, dot);
}

}  // namespace

void StatusBarController::updateSnapshot(const ScannedBarItems& items, bool skipReconcile) {
    if (!skipReconcile) reconcileReport(items);
    SectionSnapshot& snapshot = sectionManager.lastExpandedSnapshot;
    snapshot = sectionManager.classify(items);
    std::set<std::string> hiddenBundles;
    for (const ScannedBarItem& item : snapshot[SectionName::hidden])
        hiddenBundles.insert(item.bundleID);
    appState.setHiddenBundleIDs(std::move(hiddenBundles));
    appState.setSnapshotItems(snapshotItemsOf(items));
}

/// Tells which rules the items' places don't fit; positions never change a rule here.
void StatusBarController::reconcileReport(const ScannedBarItems& items) const {
    auto toggle = SectionManager::frame(*sectionManager.toggleItem);
    if (!toggle) return;
    IconRules rules = appState.rules.loadIconRules();
    for (const ScannedBarItem& item : items) {
        if (item.persistedID.empty() || sectionManager.alphaHiddenWindows.contains(item.windowID))
            continue;
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
        result.push_back({item.persistedID, item.bundleID, labelFor(item), item.icon, isHidden});
    }
    return result;
}

std::string StatusBarController::labelFor(const ScannedBarItem& item) const {
    if (isTelling(item.label)) return item.label;
    // A helper process seldom has a name of its own; its application does.
    for (const std::string& bundleID :
         {item.bundleID, without(item.bundleID, ".helper"), withoutLastComponent(item.bundleID)}) {
        if (auto path = platform.workspace.applicationPath(bundleID)) {
            return without(platform.workspace.displayName(*path), ".app");
        }
    }
    return item.label;
}

}  // namespace nevo
