#include "core/StoredValues.h"

namespace nevo {

std::optional<double> storedNumber(const DefaultsDomain& domain, const std::string& key) {
    auto value = domain.object(key);
    if (!value) return std::nullopt;
    if (auto* number = std::get_if<double>(&*value)) return *number;
    if (auto* number = std::get_if<std::int64_t>(&*value)) return static_cast<double>(*number);
    if (auto* flag = std::get_if<bool>(&*value)) return *flag ? 1.0 : 0.0;
    return std::nullopt;
}

std::optional<std::string> storedString(const DefaultsDomain& domain, const std::string& key) {
    auto value = domain.object(key);
    auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

std::optional<Bytes> storedBytes(const DefaultsDomain& domain, const std::string& key) {
    auto value = domain.object(key);
    auto* bytes = value ? std::get_if<Bytes>(&*value) : nullptr;
    return bytes ? std::optional(std::move(*bytes)) : std::nullopt;
}

bool storedBool(const DefaultsDomain& domain, const std::string& key, bool fallback) {
    auto number = storedNumber(domain, key);
    return number ? *number != 0 : fallback;
}

}  // namespace nevo
