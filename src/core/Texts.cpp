#include "core/Texts.h"

#include <map>
#include <nlohmann/json.hpp>

#include "strings/en.h"

namespace nevo {

std::string text(const std::string& key) {
    static const auto table =
        nlohmann::json::parse(englishStrings).get<std::map<std::string, std::string>>();
    auto found = table.find(key);
    return found == table.end() ? key : found->second;
}

}  // namespace nevo
