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

const ShelfBarStyleConfiguration& configurationOf(ShelfBarStyle style) {
    // In the order of the styles.
    static const std::array<ShelfBarStyleConfiguration, 4> table{{
        {28, 5, 5, 4, 8, 4, true, false, 4, Material::menu, 1, true},
        {32, 16, 5, 5, 21, 8, false, false, 8, Material::hudWindow, 1, true},
        {32, 12, 8, 7, 16, 8, true, false, 8, Material::popover, 1, true},
        {26, 9, 4, 2, 10, 6, false, false, 4, Material::menu, 0, false},
    }};
    return table[static_cast<std::size_t>(style)];
}

std::string rawValue(ShelfBarStyle style) { return rawOf(styles, style); }
std::string rawValue(ShelfAppearanceMode mode) { return rawOf(modes, mode); }
std::optional<ShelfBarStyle> shelfBarStyleFrom(std::string_view raw) { return caseOf(styles, raw); }
std::optional<ShelfAppearanceMode> shelfAppearanceModeFrom(std::string_view raw) {
    return caseOf(modes, raw);
}

}  // namespace nevo
