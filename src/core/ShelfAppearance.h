#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace nevo {

/// The shape of the floating bar, stored by raw value.
enum class ShelfBarStyle { classic, capsule, floatingGlass, minimal };

/// The colours of the floating bar, stored by raw value.
enum class ShelfAppearanceMode { system, dark, highContrast, custom };

std::string rawValue(ShelfBarStyle style);
std::string rawValue(ShelfAppearanceMode mode);
/// Nothing for an unknown raw value.
std::optional<ShelfBarStyle> shelfBarStyleFrom(std::string_view raw);
std::optional<ShelfAppearanceMode> shelfAppearanceModeFrom(std::string_view raw);

}  // namespace nevo
