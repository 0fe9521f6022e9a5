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

/// Where a pixel of an enlarged row or column lies: between two of the original.
struct Place {
    int first;
    int second;
    /// The part that `second` has in it, of 256.
    std::uint32_t part;
};
constexpr int wholePart = 256;

Place placeOf(int index, int from, int to) {
    int position = (2 * index + 1) * from * (wholePart / 2) / to - wholePart / 2;
    position = std::clamp(position, 0, (from - 1) * wholePart);
    int first = position / wholePart;
    return {first, std::min(first + 1, from - 1), static_cast<std::uint32_t>(position % wholePart)};
}

std::uint32_t blended(const RawPixmap& pixmap, const Place& column, const Place& row) {
    std::array<std::uint32_t, bytesOfPixel> sums{};
    auto add = [&](int x, int y, std::uint32_t weight) {
        std::uint32_t pixel = mean(pixmap, {x, x + 1}, {y, y + 1});
        for (std::size_t i = 0; i < bytesOfPixel; ++i) sums[i] += (pixel >> 8 * i & 0xFFU) * weight;
    };
    std::uint32_t left = wholePart - column.part;
    std::uint32_t upper = wholePart - row.part;
    add(column.first, row.first, left * upper);
    add(column.second, row.first, column.part * upper);
    add(column.first, row.second, left * row.part);
    add(column.second, row.second, column.part * row.part);
    constexpr std::uint32_t whole = wholePart * wholePart;
    std::uint32_t pixel = 0;
    for (std::size_t i = 0; i < bytesOfPixel; ++i) pixel |= (sums[i] + whole / 2) / whole << 8 * i;
    return pixel;
}

std::uint32_t scaledPixel(const RawPixmap& pixmap, const Picture& target, int x, int y) {
    if (target.width > pixmap.width || target.height > pixmap.height) {
        return blended(pixmap, placeOf(x, pixmap.width, target.width),
                       placeOf(y, pixmap.height, target.height));
    }
    return mean(pixmap, stretchOf(x, pixmap.width, target.width),
                stretchOf(y, pixmap.height, target.height));
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
    bool isLittleSmaller = longer < side && 4 * longer >= 3 * side;
    int target = isLittleSmaller ? longer : side;
    auto scaled = [&](int length) {
        return std::max(1, static_cast<int>(static_cast<std::int64_t>(length) * target / longer));
    };
    Picture picture{scaled(pixmap.width), scaled(pixmap.height), {}};
    picture.pixels.reserve(static_cast<std::size_t>(picture.width) *
                           static_cast<std::size_t>(picture.height));
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            picture.pixels.push_back(scaledPixel(pixmap, picture, x, y));
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
