#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Panels.h"

namespace nevo {

/// The shape of the floating bar, stored by raw value.
enum class ShelfBarStyle { classic, capsule, floatingGlass, minimal };

/// The measures of a style, in points.
struct ShelfBarStyleConfiguration {
    double itemHeight = 0;
    double horizontalPadding = 0;
    double verticalPadding = 0;
    double spacing = 0;
    double cornerRadius = 0;
    double slotCornerRadius = 0;
    bool showsSlots = false;
    bool screenWide = false;
    /// Kept free between the bar and the screen's edge.
    double screenInset = 0;
    Material material = Material::menu;
    double borderWidth = 0;
    bool hasShadow = false;
};

const ShelfBarStyleConfiguration& configurationOf(ShelfBarStyle style);

/// The colours of the floating bar, stored by raw value.
enum class ShelfAppearanceMode { system, dark, highContrast, custom };

std::string rawValue(ShelfBarStyle style);
std::string rawValue(ShelfAppearanceMode mode);
/// Nothing for an unknown raw value.
std::optional<ShelfBarStyle> shelfBarStyleFrom(std::string_view raw);
std::optional<ShelfAppearanceMode> shelfAppearanceModeFrom(std::string_view raw);

}  // namespace nevo
