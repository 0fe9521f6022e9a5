#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace nevo {

/// How one item is pinned, stored by raw value. `automatic` ("auto") follows the divider and is
/// never stored.
enum class IconRule { automatic, alwaysShow, alwaysHide };

std::string rawValue(IconRule rule);
/// Nothing for an unknown raw value.
std::optional<IconRule> iconRuleFrom(std::string_view raw);

/// Which items show and hide while one application is in front, by item id.
struct AppRule {
    std::set<std::string> visibleIcons;
    std::set<std::string> hiddenIcons;
    bool operator==(const AppRule&) const = default;
};

/// By item id: a `persistedID`, or a bare bundle identifier.
using IconRules = std::map<std::string, IconRule>;
/// By the application's bundle identifier.
using AppRules = std::map<std::string, AppRule>;

}  // namespace nevo
