#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace nevo::statusnotifier {

/// A square-ish picture as the protocol sends it: rows of ARGB in network byte order, not
/// premultiplied.
struct RawPixmap {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::span<const std::uint8_t> bytes;
};

/// A picture ready to be painted: premultiplied ARGB in this machine's byte order.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
    bool operator==(const Picture&) const = default;
    bool isEmpty() const { return pixels.empty(); }
};

/// Pictures with a side above this aren't looked at.
inline constexpr std::int32_t largestPixmapSide = 1024;

/// Whether it is as large as it says, and no larger than one that is looked at.
bool isSound(const RawPixmap& pixmap);

/// Of the overlay in the corner of a picture of `side` pixels: it covers a quarter.
inline int overlaySide(int side) {
    constexpr int smallest = 8;
    return std::max(smallest, (side + 1) / 2);
}

/// `pixmap`, which is sound, scaled to fit into a square of `side` pixels. One that is only a
/// little smaller, from three quarters, stays as it is: sharp is better than large.
Picture scaledToFit(const RawPixmap& pixmap, int side);

/// Of two sound ones the better one to be shown at `side` pixels: the smallest that is large
/// enough, else the largest.
bool isBetter(const RawPixmap& candidate, const RawPixmap& current, int side);

}  // namespace nevo::statusnotifier
