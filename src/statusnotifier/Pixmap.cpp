#include "statusnotifier/Pixmap.h"

#include <algorithm>
#include <array>

namespace nevo::statusnotifier {

namespace {
constexpr std::size_t bytesOfPixel = 4;

/// A part of a row or column that becomes one pixel.
struct Stretch {
    int begin;
    int end;
};

Stretch stretchOf(int index, int from, int to) {
    int begin = static_cast<int>(static_cast<std::int64_t>(index) * from / to);
    int end = static_cast<int>(static_cast<std::int64_t>(index + 1) * from / to);
    return {begin, std::max(end, begin + 1)};
}

/// The mean of the pixels, each weighed by how opaque it is.
std::uint32_t mean(const RawPixmap& pixmap, const Stretch& columns, const Stretch& rows) {
    std::array<std::uint64_t, bytesOfPixel> sums{};
    for (int y = rows.begin; y < rows.end; ++y) {
        for (int x = columns.begin; x < columns.end; ++x) {
            std::size_t at = (static_cast<std::size_t>(y) * static_cast<std::size_t>(pixmap.width) +
                              static_cast<std::size_t>(x)) *
                             bytesOfPixel;
            std::uint64_t alpha = pixmap.bytes[at];
            sums[0] += alpha * 255;
            for (std::size_t i = 1; i < bytesOfPixel; ++i) sums[i] += alpha * pixmap.bytes[at + i];
        }
    }
    auto count =
        static_cast<std::uint64_t>((columns.end - columns.begin) * (rows.end - rows.begin));
    std::uint32_t pixel = 0;
    for (std::uint64_t sum : sums) {
        std::uint64_t whole = count * 255;
        pixel = pixel << 8U | static_cast<std::uint32_t>((sum + whole / 2) / whole);
    }
    return pixel;
}
}  // namespace

bool isSound(const RawPixmap& pixmap) {
    bool hasSize = pixmap.width > 0 && pixmap.height > 0 && pixmap.width <= largestPixmapSide &&
                   pixmap.height <= largestPixmapSide;
    return hasSize && pixmap.bytes.size() == static_cast<std::size_t>(pixmap.width) *
                                                 static_cast<std::size_t>(pixmap.height) *
                                                 bytesOfPixel;
}

Picture scaledToFit(const RawPixmap& pixmap, int side) {
    int longer = std::max(pixmap.width, pixmap.height);
    int target = std::min(side, longer);
    auto scaled = [&](int length) {
        return std::max(1, static_cast<int>(static_cast<std::int64_t>(length) * target / longer));
    };
    Picture picture{scaled(pixmap.width), scaled(pixmap.height), {}};
    picture.pixels.reserve(static_cast<std::size_t>(picture.width) *
                           static_cast<std::size_t>(picture.height));
    for (int y = 0; y < picture.height; ++y) {
        Stretch rows = stretchOf(y, pixmap.height, picture.height);
        for (int x = 0; x < picture.width; ++x) {
            picture.pixels.push_back(mean(pixmap, stretchOf(x, pixmap.width, picture.width), rows));
        }
    }
    return picture;
}

bool isBetter(const RawPixmap& candidate, const RawPixmap& current, int side) {
    auto sideOf = [](const RawPixmap& pixmap) { return std::max(pixmap.width, pixmap.height); };
    bool isLargeEnough = sideOf(candidate) >= side;
    if (isLargeEnough != (sideOf(current) >= side)) return isLargeEnough;
    return isLargeEnough ? sideOf(candidate) < sideOf(current)
                         : sideOf(candidate) > sideOf(current);
}

}  // namespace nevo::statusnotifier
