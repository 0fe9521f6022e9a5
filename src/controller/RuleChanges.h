#pragma once

#include <map>
#include <string>

#include "core/IconRule.h"

namespace nevo {

/// A rule that a user has chosen for an item; the number tells it from the item's other changes.
struct RuleChange {
    std::string persistedID;
    IconRule rule = IconRule::automatic;
    int number = 0;
};

/// The changes of each item's rule. Those of one item are carried out one after another, and one
/// that isn't the newest stops at its next step. Times are seconds of the run loop's clock.
class RuleChanges {
public:
    /// Whether it says again what the item's last accepted change has said a moment ago.
    bool isDuplicate(const std::string& persistedID, IconRule rule, double now) const;
    void accept(const std::string& persistedID, IconRule rule, double now);
    RuleChange newest(const std::string& persistedID) const;
    bool isNewest(const RuleChange& change) const;

    /// False when one of the item's changes is being carried out: whoever does that goes on with
    /// the newest.
    bool begin(const std::string& persistedID);
    void end(const std::string& persistedID);
    bool isUnderWay(const std::string& persistedID) const;

private:
    struct Last {
        IconRule rule = IconRule::automatic;
        double time = 0;
        int number = 0;
        bool isUnderWay = false;
    };
    std::map<std::string, Last> changes;
};

}  // namespace nevo
