#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/Geometry.h"

namespace nevo {

/// Pixels, row by row from the top left: 0xAARRGGBB, colours premultiplied with alpha, sRGB.
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    bool operator==(const Bitmap&) const = default;
};

/// A picture with a size in points. Cheap to copy: the pixels are shared and never changed. Stands
/// for `NSImage`, and with `size` equal to its pixels for `CGImage`.
struct Image {
    std::shared_ptr<const Bitmap> bitmap;
    /// Points; the bitmap fills the whole of it.
    Size size;
    /// A template's colours are replaced by the bar's text colour when it is drawn; only its alpha
    /// counts.
    bool isTemplate = false;
    /// Where it came from ("symbol:wifi", "window:12"), for logs and tests.
    std::string source;
};

}  // namespace nevo
