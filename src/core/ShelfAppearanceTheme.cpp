#include "core/ShelfAppearanceTheme.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace nevo {

namespace {

constexpr double leastOpacity = 0.40;
/// A lighter base takes black text.
constexpr double lightBase = 0.58;
constexpr Color white = Color::white(1);
constexpr Color black = Color::white(0);

/// `colorUsingColorSpace:` sRGB: the desktop's own text colour isn't known before it is drawn.
std::optional<Color> inSRGB(Color color) {
    if (color.isLabel) return std::nullopt;
    return color;
}

double linear(double component) {
    return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

ShelfAppearanceTheme customTheme(Color customColor, double opacity) {
    Color base = inSRGB(customColor).value_or(defaultCustomColor);
    Color text = relativeLuminance(base) > lightBase ? black : white;
    bool accentIsWhite = relativeLuminance(text) > 0.5;
    Color accent = accentIsWhite ? white : black;
    return {ShelfAppearanceMode::custom,
            base.withAlpha(std::clamp(opacity, leastOpacity, 1.0)),
            accent.withAlpha(accentIsWhite ? 0.14 : 0.09),
            accent.withAlpha(accentIsWhite ? 0.30 : 0.20),
            text,
            text,
            accent.withAlpha(accentIsWhite ? 0.22 : 0.18)};
}

}  // namespace

ShelfAppearanceTheme makeTheme(ShelfAppearanceMode mode, Color customColor, double opacity) {
    switch (mode) {
        case ShelfAppearanceMode::dark:
            return {
                mode,  black.withAlpha(0.76), white.withAlpha(0.12), white.withAlpha(0.28), white,
                white, white.withAlpha(0.16)};
        case ShelfAppearanceMode::highContrast:
            return {
                mode,  black.withAlpha(0.94), white.withAlpha(0.18), white.withAlpha(0.34), white,
                white, white.withAlpha(0.34)};
        case ShelfAppearanceMode::custom:
            return customTheme(customColor, opacity);
        case ShelfAppearanceMode::system:
            break;
    }
    return {ShelfAppearanceMode::system, Color::clear(), white.withAlpha(0.10),
            white.withAlpha(0.25),       white,          Color::label(),
            black.withAlpha(0.10)};
}

std::optional<Color> colorFromHex(std::string_view text) {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return std::nullopt;
    text = text.substr(first, text.find_last_not_of(blanks) - first + 1);
    if (text.starts_with('#')) text.remove_prefix(1);
    unsigned value = 0;
    auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    bool isWhole = problem == std::errc() && end == text.data() + text.size();
    if (text.size() != 6 || !isWhole) return std::nullopt;
    return Color{static_cast<double>(value >> 16U) / 255,
                 static_cast<double>(value >> 8U & 255U) / 255,
                 static_cast<double>(value & 255U) / 255, 1.0};
}

std::string hexFromColor(Color color) {
    Color known = inSRGB(color).value_or(defaultCustomColor);
    auto byte = [](double component) {
        return static_cast<int>(std::lround(std::clamp(component, 0.0, 1.0) * 255));
    };
    return fmt::format("#{:02X}{:02X}{:02X}", byte(known.red), byte(known.green), byte(known.blue));
}

double relativeLuminance(Color color) {
    auto known = inSRGB(color);
    if (!known) return 0;
    return 0.2126 * linear(known->red) + 0.7152 * linear(known->green) +
           0.0722 * linear(known->blue);
}

}  // namespace nevo
