#include "shelf/ShelfIconRenderPolicy.h"

#include <algorithm>

namespace nevo {

namespace {

constexpr unsigned visibleAlpha = 30;
constexpr unsigned opaqueAlpha = 220;
constexpr unsigned colorfulSpread = 30;
constexpr double mostColorful = 0.08;
constexpr double mostOpaque = 0.82;
constexpr double mostOfEdge = 0.22;

bool isColorful(std::uint32_t pixel) {
    unsigned red = pixel >> 16U & 255U;
    unsigned green = pixel >> 8U & 255U;
    unsigned blue = pixel & 255U;
    return std::max({red, green, blue}) - std::min({red, green, blue}) > colorfulSpread;
}

/// The edge ring's width: an eighth of the shorter side, one pixel at the least.
int borderOf(int width, int height) { return std::max(std::min(width, height), 8) / 8; }

double fraction(std::size_t part, std::size_t whole) {
    return static_cast<double>(part) / static_cast<double>(whole);
}

}  // namespace

std::optional<IconAnalysis> analyzeIcon(const Image& image) {
    if (!image.bitmap || image.bitmap->width < 1 || image.bitmap->height < 1) return std::nullopt;
    int width = image.bitmap->width;
    int height = image.bitmap->height;
    int border = borderOf(width, height);
    std::size_t visible = 0;
    std::size_t opaque = 0;
    std::size_t colorful = 0;
    std::size_t edgeTotal = 0;
    std::size_t edgeVisible = 0;
    const std::uint32_t* pixel = image.bitmap->pixels.data();
    for (int y = 0; y < height; ++y) {
        bool rowIsEdge = y < border || y >= height - border;
        for (int x = 0; x < width; ++x, ++pixel) {
            bool isEdge = rowIsEdge || x < border || x >= width - border;
            unsigned alpha = *pixel >> 24U;
            bool isVisible = alpha > visibleAlpha;
            edgeTotal += isEdge;
            edgeVisible += isEdge && isVisible;
            visible += isVisible;
            opaque += alpha > opaqueAlpha;
            colorful += isVisible && isColorful(*pixel);
        }
    }
    auto total = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    return IconAnalysis{
        fraction(visible, total), fraction(colorful, std::max<std::size_t>(visible, 1)),
        fraction(opaque, total), edgeTotal == 0 ? 0.0 : fraction(edgeVisible, edgeTotal)};
}

ShelfIconRenderPolicy renderPolicy(const Image& image) {
    if (image.isTemplate) return ShelfIconRenderPolicy::templateTint;
    auto analysis = analyzeIcon(image);
    if (!analysis) return ShelfIconRenderPolicy::preserveOriginal;
    if (!(analysis->visibleFraction > 0)) return ShelfIconRenderPolicy::templateTint;
    bool isMask = analysis->colorfulFraction <= mostColorful &&
                  analysis->opaqueFraction <= mostOpaque && analysis->edgeFraction <= mostOfEdge;
    return isMask ? ShelfIconRenderPolicy::templateTint : ShelfIconRenderPolicy::preserveOriginal;
}

}  // namespace nevo
