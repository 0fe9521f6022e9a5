#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "core/ItemId.h"
#include "core/RuleStore.h"
#include "core/debugLog.h"

namespace nevo {

namespace {

/// Rules of the same application stored under any name: an item's name can change between launches.
std::vector<std::string> keysOfApplication(const IconRules& rules, const std::string& bundleID) {
    std::vector<std::string> keys;
    for (const auto& [key, rule] : rules) {
        if (isOfApplication(key, bundleID)) keys.push_back(key);
    }
    return keys;
}

/// OneDrive's unnamed items are told apart by their labels.
std::optional<std::string> oneDriveKey(const ScannedBarItem& item,
                                       const std::vector<std::string>& candidates) {
    std::vector<std::string> narrowed;
    for (const std::string& key : candidates) {
        std::string first = key.substr(0, key.find(persistedIDSeparator));
        if (!first.empty() && first == item.label) narrowed.push_back(key);
    }
    if (narrowed.size() == 1) return narrowed.front();
    if (candidates.size() >= 2) {
        debugLog(fmt::format("[Rules] ambiguous OneDrive fallback for {}: {}", item.bundleID,
                             fmt::join(candidates, ",")));
    }
    return std::nullopt;
}

}  // namespace

std::optional<MatchedRule> matchIconRule(const ScannedBarItem& item, const IconRules& rules,
                                         const ScannedBarItems& allItems) {
    auto found = rules.find(item.persistedID);
    if (found != rules.end()) return *found;
    if (item.bundleID.empty()) return std::nullopt;
    found = rules.find(item.bundleID);
    if (found != rules.end()) return *found;

    std::vector<std::string> candidates = keysOfApplication(rules, item.bundleID);
    if (candidates.empty()) return std::nullopt;
    if (candidates.size() == 1) {
        auto ofApplication = std::count_if(
            allItems.begin(), allItems.end(),
            [&](const ScannedBarItem& other) { return other.bundleID == item.bundleID; });
        if (ofApplication == 1) return *rules.find(candidates.front());
    }
    if (!isOneDrive(item.bundleID)) return std::nullopt;
    auto key = oneDriveKey(item, candidates);
    return key ? std::optional<MatchedRule>(*rules.find(*key)) : std::nullopt;
}

bool itemMatchesRule(const ScannedBarItem& item, const std::set<std::string>& ids) {
    if (ids.contains(item.persistedID)) return true;
    if (item.bundleID.empty()) return false;
    return std::any_of(ids.begin(), ids.end(),
                       [&](const std::string& id) { return isOfApplication(id, item.bundleID); });
}

}  // namespace nevo
