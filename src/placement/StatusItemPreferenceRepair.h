#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/AppState.h"
#include "core/ScannedBarItem.h"
#include "platform/UserDefaults.h"

namespace nevo {

/// The saved places of status items. The bar remembers where an item stood as a number in its
/// application's own domain, under "NSStatusItem Preferred Position " and the item's name: the
/// distance from the right end of the bar, so a large number means far left. An edit counts when
/// the application next makes its item.
///
/// A domain that can't be opened gives an empty result: the rule still holds for this run by other
/// means.
class StatusItemPreferenceRepair {
public:
    struct Mutation {
        std::string key;
        double previousValue = 0;
        double newValue = 0;
        bool operator==(const Mutation&) const = default;
    };
    struct RuleRepair {
        std::string persistedID;
        std::string bundleID;
        std::vector<Mutation> mutations;
    };

    /// A position at or above this is behind the divider; also what an item gets that is to be
    /// hidden.
    static constexpr double hiddenPosition = 5000.0;
    /// Where an item is brought back to.
    static constexpr double visiblePosition = 212.0;

    explicit StatusItemPreferenceRepair(UserDefaults& defaults);

    /// Puts the divider's saved place on the toggle's, or both on 0, before the items get their
    /// names.
    void seedSeparatorPosition();
    /// The same before each collapse; a toggle without a saved place changes nothing.
    void syncSeparatorPosition();
    /// Writes a saved place of this program's own always-hidden divider.
    void writeAlwaysHiddenDividerPosition(double position);

    /// Makes the item return behind the divider. Nothing when it will anyway.
    std::optional<Mutation> markHidden(const std::string& bundleID, const std::string& persistedID);
    /// Makes the item, and all unnamed ones of its application, return on the visible side; the
    /// item itself to `place`, where one is given.
    std::vector<Mutation> repair(const std::string& bundleID, const std::string& persistedID,
                                 std::optional<double> place = std::nullopt);
    /// Repairs every item with the rule `alwaysShow`, by ascending id.
    std::vector<RuleRepair> repairAlwaysShowRules(
        const std::map<std::string, AppState::IconRule>& rules);
    /// `repair`, with a log line for each change.
    void restoreAndLog(const std::string& bundleID, const std::string& persistedID,
                       std::optional<double> place = std::nullopt);
    /// `restoreAndLog` for the first item with each id.
    void restoreAll(const std::vector<std::string>& ids, const ScannedBarItems& items);

private:
    UserDefaults& defaults;
};

/// The first item with that id, or nullptr.
const ScannedBarItem* findByPersistedID(const ScannedBarItems& items,
                                        const std::string& persistedID);

}  // namespace nevo
