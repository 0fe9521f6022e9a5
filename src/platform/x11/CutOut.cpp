#include "platform/x11/CutOut.h"

#include <algorithm>

namespace nevo {

namespace {

constexpr int leastAlpha = 128;

/// Makes a line's pixels opaque or nothing, and gives the stretches of those that stay.
std::vector<std::pair<int, int>> cutOutLine(QRgb* pixels, int width) {
    std::vector<std::pair<int, int>> stretches;
    for (int x = 0; x < width; ++x) {
        bool stays = qAlpha(pixels[x]) >= leastAlpha;
        pixels[x] = stays ? qUnpremultiply(pixels[x]) | 0xff000000U : 0;
        if (!stays) continue;
        if (stretches.empty() || stretches.back().second != x) stretches.emplace_back(x, x);
        stretches.back().second = x + 1;
    }
    return stretches;
}

}  // namespace

Outline cutOut(QImage& picture) {
    Outline outline;
    std::vector<std::pair<int, int>> above;
    for (int y = 0; y < picture.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        auto stretches = cutOutLine(line, picture.width());
        if (y > 0 && stretches == above) {
            // Most lines are like the one above them: its rectangles grow.
            std::for_each(outline.end() - static_cast<std::ptrdiff_t>(above.size()), outline.end(),
                          [](xcb_rectangle_t& rectangle) { ++rectangle.height; });
            continue;
        }
        for (auto [begin, end] : stretches) {
            outline.push_back({static_cast<std::int16_t>(begin), static_cast<std::int16_t>(y),
                               static_cast<std::uint16_t>(end - begin), 1});
        }
        above = std::move(stretches);
    }
    return outline;
}

}  // namespace nevo
