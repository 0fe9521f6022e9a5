#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/ShelfAppearance.h"
#include "platform/Color.h"

namespace nevo {

/// The colours of the floating bar.
struct ShelfAppearanceTheme {
    ShelfAppearanceMode mode = ShelfAppearanceMode::system;
    Color backgroundOverlayColor;
    Color slotBackgroundColor;
    Color highlightedSlotBackgroundColor;
    Color templateIconTintColor;
    Color textColor;
    Color borderColor;
    bool operator==(const ShelfAppearanceTheme&) const = default;
};

/// What the user gets who has chosen no colour, or one that can't be read.
inline constexpr Color defaultCustomColor{0.04, 0.05, 0.07, 1.0};

/// `customColor` and `opacity`, which is brought into 0.40 to 1.0, count for `custom` only.
ShelfAppearanceTheme makeTheme(ShelfAppearanceMode mode, Color customColor, double opacity);

/// "#0A0D12", with or without its sign and blanks around it; nothing for anything else.
std::optional<Color> colorFromHex(std::string_view text);
/// Six upper-case digits behind a sign; alpha is left out.
std::string hexFromColor(Color color);

/// Between 0 for black and 1 for white, as the Web Content Accessibility Guidelines have it; 0 for
/// a colour that has no place in sRGB.
double relativeLuminance(Color color);

}  // namespace nevo
