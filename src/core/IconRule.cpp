#include "core/IconRule.h"

namespace nevo {

std::string rawValue(IconRule rule) {
    switch (rule) {
        case IconRule::alwaysShow:
            return "alwaysShow";
        case IconRule::alwaysHide:
            return "alwaysHide";
        case IconRule::automatic:
            break;
    }
    return "auto";
}

std::optional<IconRule> iconRuleFrom(std::string_view raw) {
    for (IconRule rule : {IconRule::automatic, IconRule::alwaysShow, IconRule::alwaysHide}) {
        if (rawValue(rule) == raw) return rule;
    }
    return std::nullopt;
}

}  // namespace nevo
