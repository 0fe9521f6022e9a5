#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "platform/UserDefaults.h"

namespace nevo {

/// The object that `text` holds; nothing when it is no JSON object, or nested deeper than any
/// program here writes.
std::optional<nlohmann::json> parseDefaults(const std::string& text);

/// The value of one entry; nothing for a form that no value has.
std::optional<DefaultsValue> defaultsValueFrom(const nlohmann::json& entry);

nlohmann::json jsonFrom(const DefaultsValue& value);

}  // namespace nevo
