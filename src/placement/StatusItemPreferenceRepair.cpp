#include "placement/StatusItemPreferenceRepair.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/StoredValues.h"
#include "core/debugLog.h"
#include "core/describe.h"
#include "discovery/ItemIdentity.h"

namespace nevo {

namespace {

const std::string keyPrefix = "NSStatusItem Preferred Position ";
const std::string unnamedKeyPrefix = "NSStatusItem Preferred Position Item-";
const std::string toggleKey = "NSStatusItem Preferred Position Nevo_Toggle";
const std::string separatorKey = "NSStatusItem Preferred Position Nevo_Separator";
const std::string alwaysHiddenDividerKey =
    "NSStatusItem Preferred Position Nevo_AlwaysHiddenDivider";

std::string keyOf(const std::string& persistedID) { return keyPrefix + stableName(persistedID); }

std::string bundleOf(const std::string& bundleID, const std::string& persistedID) {
    return bundleID.empty() ? bundleIDFromPersistedID(persistedID).value_or("") : bundleID;
}

/// The item's own key first, then every other key of an unnamed item, ascending.
std::vector<std::string> candidateKeys(const DefaultsDomain& domain,
                                       const std::string& persistedID) {
    std::vector<std::string> candidates{keyOf(persistedID)};
    std::vector<std::string> all = domain.keys();
    std::sort(all.begin(), all.end());
    for (const std::string& key : all) {
        if (key.starts_with(unnamedKeyPrefix) && key != candidates.front())
            candidates.push_back(key);
    }
    return candidates;
}

}  // namespace

StatusItemPreferenceRepair::StatusItemPreferenceRepair(UserDefaults& store) : defaults(store) {}

void StatusItemPreferenceRepair::seedSeparatorPosition() {
    DefaultsDomain& own = defaults.standard();
    double position = storedNumber(own, toggleKey).value_or(0.0);
    own.set(toggleKey, position);
    own.set(separatorKey, position);
}

void StatusItemPreferenceRepair::syncSeparatorPosition() {
    DefaultsDomain& own = defaults.standard();
    // The bar writes the toggle's place when a drag ends, perhaps a moment ago.
    own.synchronize();
    if (auto position = storedNumber(own, toggleKey)) own.set(separatorKey, *position);
}

void StatusItemPreferenceRepair::writeAlwaysHiddenDividerPosition(double position) {
    defaults.standard().set(alwaysHiddenDividerKey, position);
}

std::optional<StatusItemPreferenceRepair::Mutation> StatusItemPreferenceRepair::markHidden(
    const std::string& bundleID, const std::string& persistedID) {
    if (bundleID.empty()) return std::nullopt;
    auto domain = defaults.suite(bundleID);
    if (!domain) return std::nullopt;
    std::string key = keyOf(persistedID);
    double previous = storedNumber(*domain, key).value_or(0.0);
    if (previous >= hiddenPosition) return std::nullopt;
    domain->set(key, hiddenPosition);
    domain->synchronize();
    return Mutation{key, previous, hiddenPosition};
}

std::vector<StatusItemPreferenceRepair::Mutation> StatusItemPreferenceRepair::repair(
    const std::string& bundleID, const std::string& persistedID, std::optional<double> place) {
    std::vector<Mutation> mutations;
    std::string bundle = bundleOf(bundleID, persistedID);
    if (bundle.empty()) return mutations;
    auto domain = defaults.suite(bundle);
    if (!domain) return mutations;
    for (const std::string& key : candidateKeys(*domain, persistedID)) {
        double previous = storedNumber(*domain, key).value_or(0.0);
        if (!(previous >= hiddenPosition)) continue;
        bool isOwn = key == keyOf(persistedID);
        double position = isOwn ? place.value_or(visiblePosition) : visiblePosition;
        domain->set(key, position);
        mutations.push_back({key, previous, position});
    }
    if (!mutations.empty()) domain->synchronize();
    return mutations;
}

std::vector<StatusItemPreferenceRepair::RuleRepair>
StatusItemPreferenceRepair::repairAlwaysShowRules(
    const std::map<std::string, AppState::IconRule>& rules) {
    std::vector<RuleRepair> repairs;
    for (const auto& [persistedID, rule] : rules) {
        if (rule != AppState::IconRule::alwaysShow || isPhantomID(persistedID)) continue;
        std::string bundle = bundleOf("", persistedID);
        repairs.push_back({persistedID, bundle, repair(bundle, persistedID)});
    }
    return repairs;
}

void StatusItemPreferenceRepair::restoreAndLog(const std::string& bundleID,
                                               const std::string& persistedID,
                                               std::optional<double> place) {
    for (const Mutation& mutation : repair(bundleID, persistedID, place)) {
        debugLog(fmt::format(
            "[SectionMgr] restored {} {}={} (was {})", bundleOf(bundleID, persistedID),
            mutation.key, describeWhole(mutation.newValue), describeWhole(mutation.previousValue)));
    }
}

void StatusItemPreferenceRepair::restoreAll(const std::vector<std::string>& ids,
                                            const ScannedBarItems& items) {
    for (const std::string& id : ids) {
        if (auto* item = findByPersistedID(items, id)) restoreAndLog(item->bundleID, id);
    }
}

const ScannedBarItem* findByPersistedID(const ScannedBarItems& items,
                                        const std::string& persistedID) {
    auto found = std::find_if(items.begin(), items.end(), [&](const ScannedBarItem& item) {
        return item.persistedID == persistedID;
    });
    return found == items.end() ? nullptr : &*found;
}

}  // namespace nevo
