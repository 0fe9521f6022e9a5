#include "platform/store/DefaultsJson.h"

#include <array>
#include <cmath>
#include <string_view>

namespace nevo {

namespace {

constexpr const char* bytesKey = "base64";
constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// Deeper ones would only serve to exhaust the stack of whoever writes them back.
constexpr int deepestNesting = 64;

std::string encodeBase64(const Bytes& bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            group = group << 8U | (k < count ? bytes[i + k] : std::uint32_t{0});
        }
        for (std::size_t k = 0; k < 4; ++k) {
            text += k <= count ? alphabet[group >> (18 - 6 * k) & 63U] : '=';
        }
    }
    return text;
}

std::optional<Bytes> decodeBase64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    std::size_t padding = text.ends_with("==") ? 2 : text.ends_with("=") ? 1 : 0;
    Bytes bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::size_t digit = i + padding < text.size() ? alphabet.find(text[i]) : 0;
        if (digit == std::string_view::npos) return std::nullopt;
        group = group << 6U | static_cast<std::uint32_t>(digit);
        if (i % 4 != 3) continue;
        for (unsigned shift : {16U, 8U, 0U}) {
            bytes.push_back(static_cast<std::uint8_t>(group >> shift & 0xffU));
        }
    }
    bytes.resize(bytes.size() - padding);
    return bytes;
}

std::optional<DefaultsValue> stringArrayFrom(const nlohmann::json& entry) {
    std::vector<std::string> strings;
    strings.reserve(entry.size());
    for (const auto& element : entry) {
        if (!element.is_string()) return std::nullopt;
        strings.push_back(element.get<std::string>());
    }
    return strings;
}

std::optional<DefaultsValue> bytesFrom(const nlohmann::json& entry) {
    auto text = entry.find(bytesKey);
    if (entry.size() != 1 || text == entry.end() || !text->is_string()) return std::nullopt;
    auto bytes = decodeBase64(text->get_ref<const std::string&>());
    if (!bytes) return std::nullopt;
    return std::move(*bytes);
}

std::optional<DefaultsValue> integerFrom(const nlohmann::json& entry) {
    if (entry.is_number_unsigned() &&
        entry.get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX)) {
        return std::nullopt;
    }
    return entry.get<std::int64_t>();
}

}  // namespace

std::optional<nlohmann::json> parseDefaults(const std::string& text) {
    bool tooDeep = false;
    auto callback = [&](int depth, nlohmann::json::parse_event_t, nlohmann::json&) {
        tooDeep = tooDeep || depth > deepestNesting;
        return !tooDeep;
    };
    auto parsed = nlohmann::json::parse(text, callback, false);
    if (tooDeep || !parsed.is_object()) return std::nullopt;
    return parsed;
}

std::optional<DefaultsValue> defaultsValueFrom(const nlohmann::json& entry) {
    if (entry.is_boolean()) return entry.get<bool>();
    if (entry.is_number_integer()) return integerFrom(entry);
    if (entry.is_number_float()) return entry.get<double>();
    if (entry.is_string()) return entry.get<std::string>();
    if (entry.is_array()) return stringArrayFrom(entry);
    if (entry.is_object()) return bytesFrom(entry);
    return std::nullopt;
}

nlohmann::json jsonFrom(const DefaultsValue& value) {
    return std::visit(
        [](const auto& v) -> nlohmann::json {
            if constexpr (std::is_same_v<std::decay_t<decltype(v)>, Bytes>) {
                return {{bytesKey, encodeBase64(v)}};
            } else {
                return v;
            }
        },
        value);
}

}  // namespace nevo
