#include "core/ShelfAppearance.h"

#include <array>
#include <utility>

namespace nevo {

namespace {

constexpr std::array<std::pair<ShelfBarStyle, std::string_view>, 4> styles{{
    {ShelfBarStyle::classic, "classic"},
    {ShelfBarStyle::capsule, "capsule"},
    {ShelfBarStyle::floatingGlass, "floatingGlass"},
    {ShelfBarStyle::minimal, "minimal"},
}};

constexpr std::array<std::pair<ShelfAppearanceMode, std::string_view>, 4> modes{{
    {ShelfAppearanceMode::system, "system"},
    {ShelfAppearanceMode::dark, "dark"},
    {ShelfAppearanceMode::highContrast, "highContrast"},
    {ShelfAppearanceMode::custom, "custom"},
}};

template <typename Table, typename Case>
std::string rawOf(const Table& table, Case wanted) {
    for (const auto& [value, raw] : table) {
        if (value == wanted) return std::string(raw);
    }
    return {};
}

template <typename Case, std::size_t count>
std::optional<Case> caseOf(const std::array<std::pair<Case, std::string_view>, count>& table,
                           std::string_view wanted) {
    for (const auto& [value, raw] : table) {
        if (raw == wanted) return value;
    }
    return std::nullopt;
}

}  // namespace

std::string rawValue(ShelfBarStyle style) { return rawOf(styles, style); }
std::string rawValue(ShelfAppearanceMode mode) { return rawOf(modes, mode); }
std::optional<ShelfBarStyle> shelfBarStyleFrom(std::string_view raw) { return caseOf(styles, raw); }
std::optional<ShelfAppearanceMode> shelfAppearanceModeFrom(std::string_view raw) {
    return caseOf(modes, raw);
}

}  // namespace nevo
