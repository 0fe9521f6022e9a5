#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/UserDefaults.h"

namespace nevo {

/// Where an item stood before a rule took it elsewhere.
struct RememberedPlace {
    /// Ids of the items on its side of the toggle: those left of it and those right of it, each
    /// from left to right.
    std::vector<std::string> left;
    std::vector<std::string> right;
    /// Its side: left of the toggle.
    bool isHidden = false;
    /// Its saved position then, points from the system area.
    double position = 0;
};

/// The places of items with a rule, by id, stored until the item is back in its place. Bytes that
/// aren't ours read as nothing remembered.
class RememberedPlaces {
public:
    explicit RememberedPlaces(DefaultsDomain& domain) : store(domain) {}

    std::optional<RememberedPlace> find(const std::string& persistedID) const;
    std::vector<std::string> ids() const;
    /// The first place counts: what comes later is the doing of a rule.
    void remember(const std::string& persistedID, const RememberedPlace& place);
    /// The item is called otherwise now. What was remembered under its former name counts, being
    /// older; without any nothing changes.
    void rename(const std::string& former, const std::string& persistedID);
    void forget(const std::string& persistedID);

private:
    DefaultsDomain& store;
};

}  // namespace nevo
