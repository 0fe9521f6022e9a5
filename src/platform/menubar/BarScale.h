#pragma once

#include <algorithm>
#include <cmath>

namespace nevo {

/// The usual thickness of a menu bar, in points.
inline constexpr double usualBarThickness = 24;

/// How many pixels a point takes where the bar is `barHeight` pixels high: who makes the bar twice
/// as high has a screen of twice as many pixels. In quarters, so that most edges fall on whole
/// pixels, and never below 1.
inline double pixelsPerPoint(double barHeight) {
    constexpr double steps = 4;
    return std::max(1.0, std::floor(barHeight / usualBarThickness * steps) / steps);
}

}  // namespace nevo
