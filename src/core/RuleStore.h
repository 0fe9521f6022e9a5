#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/IconRule.h"
#include "core/ScannedBarItem.h"
#include "core/Signal.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"

namespace nevo {

/// The user's rules for single items and for applications, the order of the shelf, and which items
/// have a picture in the bar. Nothing is kept in memory: every operation reads the store, every
/// change writes the whole of it back. Bytes
/// that don't decode read as no rules, silently; the next change replaces them.
class RuleStore {
public:
    RuleStore(DefaultsDomain& domain, NotificationCenter& notifications, Signal& changes);

    IconRules loadIconRules() const;
    /// Sends the change signal, also when nothing could be written.
    void saveIconRules(const IconRules& rules);
    /// `automatic` removes the entry. Posts `nevoIconRulesChanged` in any case.
    void setIconRule(IconRule rule, const std::string& persistedID);

    AppRules loadAppRules() const;
    void saveAppRules(const AppRules& rules);
    /// Nothing, or a rule with two empty sets, removes the entry. Posts `nevoAppRulesChanged`.
    void setAppRule(const std::optional<AppRule>& rule, const std::string& bundleID);
    void removeAppRule(const std::string& bundleID);

    std::vector<std::string> shelfItemOrder() const;
    /// Keeps the first occurrence of each id; without any, there is no order. Items that the stored
    /// order has and `ids` hasn't are away: each keeps its place behind the one before it.
    void saveShelfItemOrder(const std::vector<std::string>& ids);
    /// The stored order first, then the rest as they come.
    ScannedBarItems orderedShelfItems(const ScannedBarItems& items) const;

    /// The items of which a picture stands in the bar while they are hidden, by persisted id; also
    /// such as aren't there.
    std::set<std::string> decoyItems() const;
    void setDecoyItem(bool isOne, const std::string& persistedID);

private:
    std::vector<std::string> storedStrings(const char* key) const;
    void appRulesChanged(const std::string& bundleID);

    DefaultsDomain& store;
    NotificationCenter& notifications;
    Signal& objectWillChange;
};

using MatchedRule = std::pair<std::string, IconRule>;

/// The rule for an item, with the key that it stands under: its own id, its application's
/// identifier, or a stale name of an application with a single item. `rules` is loaded once a pass
/// by the caller; `allItems` is the scan.
std::optional<MatchedRule> matchIconRule(const ScannedBarItem& item, const IconRules& rules,
                                         const ScannedBarItems& allItems);

/// A coarser test, for the rules of applications: any id of the same application matches.
bool itemMatchesRule(const ScannedBarItem& item, const std::set<std::string>& ids);

}  // namespace nevo
