#include "menubar/ItemNaming.h"

#include <fmt/format.h>

#include <algorithm>

namespace nevo::menubar {

namespace {
constexpr std::size_t longestName = 100;

bool contains(const std::vector<std::string>& list, const std::string& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}
}  // namespace

std::string rowIdentity(const std::string& applicationId, const std::string& name, int ordinal) {
    std::string identity = applicationId + "|" + name;
    return ordinal == 0 ? identity : fmt::format("{}|{}", identity, ordinal);
}

std::string chooseItemName(const NameHints& item, const std::vector<NameHints>& siblings,
                           const std::vector<std::string>& siblingNames,
                           const std::vector<std::string>& rowOrder) {
    auto isFree = [&](const std::string& name) {
        return !name.empty() && name.size() <= longestName && !contains(siblingNames, name);
    };
    auto isKnown = [&](const std::string& name) {
        return contains(rowOrder, rowIdentity(item.applicationId, name, 0));
    };
    for (const std::string& hint : {item.classInstance, item.windowName}) {
        if (isFree(hint) && isKnown(hint)) return hint;
    }
    if (isFree(unnamedItem)) return unnamedItem;
    auto shares = [&](auto field) {
        return std::any_of(siblings.begin(), siblings.end(),
                           [&](const NameHints& sibling) { return sibling.*field == item.*field; });
    };
    if (!shares(&NameHints::classInstance) && isFree(item.classInstance)) return item.classInstance;
    if (!shares(&NameHints::windowName) && isFree(item.windowName)) return item.windowName;
    for (int number = 1;; ++number) {
        std::string name = fmt::format("Item-{}", number);
        if (isFree(name)) return name;
    }
}

}  // namespace nevo::menubar
