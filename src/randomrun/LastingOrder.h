#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace nevo {

/// For each two items, which of them stood left when both were last in the row; also while one of
/// them, or both, are away.
class LastingOrder {
public:
    /// What is known of the item's side of all others is forgotten: it may stand anywhere.
    void forget(const std::string& item);
    /// Two items that have changed sides, the left one first, if any have. From now on `row`
    /// counts; it goes from left to right.
    std::optional<std::pair<std::string, std::string>> update(const std::vector<std::string>& row);

private:
    /// The items left of each.
    std::map<std::string, std::set<std::string>> leftOf;
};

}  // namespace nevo
