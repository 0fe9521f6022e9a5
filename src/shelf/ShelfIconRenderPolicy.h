#pragma once

#include <optional>

#include "platform/Image.h"

namespace nevo {

/// How a slot draws its picture: in its own colours, or as a mask in the theme's tint.
enum class ShelfIconRenderPolicy { preserveOriginal, templateTint };

/// What of a picture's pixels is how.
struct IconAnalysis {
    /// Pixels with alpha above 30, of all.
    double visibleFraction = 0;
    /// Visible ones whose colour components lie more than 30 apart, of the visible ones.
    double colorfulFraction = 0;
    /// Pixels with alpha above 220, of all.
    double opaqueFraction = 0;
    /// Visible ones near the edge, of all near the edge.
    double edgeFraction = 0;
};

/// Nothing for a picture without pixels.
std::optional<IconAnalysis> analyzeIcon(const Image& image);

/// A picture in one colour on a clear ground is a mask; one with colours, or that fills its
/// rectangle, isn't.
ShelfIconRenderPolicy renderPolicy(const Image& image);

}  // namespace nevo
