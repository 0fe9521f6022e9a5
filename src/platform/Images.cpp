#include "platform/Images.h"

#include <cmath>

namespace nevo {

std::optional<Image> cropped(const Image& image, Rect pixels) {
    if (!image.bitmap) return std::nullopt;
    const Bitmap& from = *image.bitmap;
    // Whole pixels that the rectangle touches, clipped to the picture.
    double left = std::max(0.0, std::floor(pixels.minX()));
    double top = std::max(0.0, std::floor(pixels.minY()));
    double right = std::min(static_cast<double>(from.width), std::ceil(pixels.maxX()));
    double bottom = std::min(static_cast<double>(from.height), std::ceil(pixels.maxY()));
    if (!(left < right) || !(top < bottom)) return std::nullopt;

    auto part = std::make_shared<Bitmap>();
    part->width = static_cast<int>(right - left);
    part->height = static_cast<int>(bottom - top);
    part->pixels.reserve(static_cast<std::size_t>(part->width) *
                         static_cast<std::size_t>(part->height));
    for (int row = 0; row < part->height; ++row) {
        auto start = from.pixels.begin() + (static_cast<std::ptrdiff_t>(top) + row) * from.width +
                     static_cast<std::ptrdiff_t>(left);
        part->pixels.insert(part->pixels.end(), start, start + part->width);
    }
    Size size{static_cast<double>(part->width), static_cast<double>(part->height)};
    return Image{std::move(part), size, image.isTemplate, image.source};
}

}  // namespace nevo
