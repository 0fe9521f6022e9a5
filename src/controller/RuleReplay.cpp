#include <fmt/format.h>

#include <algorithm>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"
#include "discovery/ItemIdentity.h"

namespace nevo {

namespace {
constexpr double emptySnapshotRetry = 2.0;
constexpr double placementSettle = 0.18;
constexpr double scanSettle = 0.5;
constexpr double replaySettle = 1.0;
}  // namespace

Task<> StatusBarController::replayAllRulesOnStartup(std::weak_ptr<StatusBarController> owner) {
    std::optional<ReplayPreparation> prepared;
    while (true) {
        auto self = owner.lock();
        if (!self) co_return;
        if (self->snapshotItems({SectionName::hidden, SectionName::visible}).empty()) {
            self.reset();
            co_await refreshSnapshot(owner, 0.0);
            self = owner.lock();
            if (!self) co_return;
        }
        prepared = self->prepareReplay();
        if (!prepared) co_return;
        if (!prepared->snapshotEmpty) break;
        self.reset();
        co_await sleep(emptySnapshotRetry);
    }
    if (prepared->preparedHide) co_await arrangeAlwaysHidden(owner);
    if (prepared->preparedShow || prepared->hasAlwaysShow) {
        if (!prepared->preparedShow) {
            co_await sleep(scanSettle);
            co_await refreshSnapshot(owner, 0.0);
        }
        co_await sleep(placementSettle);
        co_await moveAlwaysShowItems(owner);
    }
    co_await sleep(replaySettle);
    co_await refreshSnapshot(owner, 3.0);
    if (owner.lock()) debugLog("[Rules] replayAllRulesOnStartup: done");
}

/// A fresh or recent scan becomes the snapshot, without a report on the rules.
Task<> StatusBarController::refreshSnapshot(std::weak_ptr<StatusBarController> owner,
                                            double maxAge) {
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& scanner = self->services.scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    self.reset();
    ScannedBarItems items = co_await scanner.scanCached(own, maxAge);
    if (auto held = owner.lock()) held->updateSnapshot(items, true);
}

std::optional<StatusBarController::ReplayPreparation> StatusBarController::prepareReplay() {
    IconRules rules = appState.rules.loadIconRules();
    ReplayPreparation result;
    result.hasAlwaysShow = std::any_of(rules.begin(), rules.end(), [](const auto& entry) {
        return entry.second == IconRule::alwaysShow && !isPhantomID(entry.first);
    });
    for (const auto& repair : preferences.repairAlwaysShowRules(rules)) {
        for (const auto& mutation : repair.mutations) {
            debugLog(fmt::format("[Rules] startup restored {} {}={} (was {}) id={}",
                                 repair.bundleID, mutation.key, describeWhole(mutation.newValue),
                                 describeWhole(mutation.previousValue), repair.persistedID));
        }
    }
    if (result.hasAlwaysShow) services.scanner.invalidateScanCache();
    if (rules.empty()) {
        debugLog("[Rules] replayAllRulesOnStartup: no rules to replay");
        return std::nullopt;
    }
    ScannedBarItems all = snapshotItems({SectionName::hidden, SectionName::visible});
    if (all.empty()) {
        debugLog("[Rules] replayAllRulesOnStartup: snapshot empty, retrying in 2s");
        result.snapshotEmpty = true;
        return result;
    }
    debugLog(fmt::format("[Rules] replayAllRulesOnStartup: replaying {} rules against {} items",
                         rules.size(), all.size()));
    bool preparedHide = false;
    for (const ScannedBarItem& item : all) {
        auto match = matchIconRule(item, rules, all);
        if (!match || match->second == IconRule::automatic) continue;
        if (isPhantomID(item.persistedID)) {
            debugLog("[Rules] replay skip phantom/system id=" + item.persistedID);
        } else if (match->second == IconRule::alwaysShow) {
            preferences.restoreAndLog(item.bundleID, item.persistedID);
            showByRule(item.windowID);
            debugLog(fmt::format("[Rules] replay alwaysShow prep wid={} id={}", item.windowID,
                                 item.persistedID));
            result.preparedShow = true;
        } else {
            bool ok = sectionManager.opacity.setRule(item.windowID, true, false);
            double readback = platform.windows.windowAlpha(item.windowID).value_or(-1.0F);
            debugLog(
                fmt::format("[Rules] replay alwaysHide prep wid={} id={} alphaOk={} readback={}",
                            item.windowID, item.persistedID, describe(ok), describe(readback)));
            preparedHide = true;
        }
    }
    result.preparedHide = preparedHide;
    return result;
}

}  // namespace nevo
