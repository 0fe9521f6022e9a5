#pragma once

namespace nevo {

/// How far right of the toggle an item is put that is to be seen, points.
inline constexpr double besideToggle = 60.0;
/// Nearer to the screen's right edge an item doesn't count as seen.
inline constexpr double rightMargin = 20.0;
/// Stands in for the screen's width where there is none.
inline constexpr double widthWithoutScreen = 1440.0;

}  // namespace nevo
