#pragma once

#include <string>
#include <vector>

namespace nevo::menubar {

/// What can tell the items of one application apart.
struct NameHints {
    std::string applicationId;
    std::string classInstance;
    std::string windowName;
};

/// The key of an item's place in the order of the row; `ordinal` tells items apart that nothing
/// else does.
std::string rowIdentity(const std::string& applicationId, const std::string& name, int ordinal);

/// The name of an application's only or first item without one.
inline constexpr const char* unnamedItem = "Item-0";

/// A name for an item whose program gives it none: "Item-0" for an application's only or first
/// item, else its window's class instance or title if they tell it from its siblings, else
/// "Item-1" and on. A name that the row order knows already is kept, whichever sibling docks first.
std::string chooseItemName(const NameHints& item, const std::vector<NameHints>& siblings,
                           const std::vector<std::string>& siblingNames,
                           const std::vector<std::string>& rowOrder);

}  // namespace nevo::menubar
