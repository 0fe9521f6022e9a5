#include "platform/x11/SoftShadow.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace nevo {

namespace {

/// A close and a wide shadow, as under a sheet that lies a little above the desktop.
struct Layer {
    double softness;
    double opacity;
    int down;
};
constexpr Layer windowLayers[] = {{1.5, 0.34, 1}, {8, 0.44, 5}};

/// Three means in a row look like a bell curve.
constexpr int passes = 3;

/// The reach to either side with which `passes` means have the spread of that curve.
std::ptrdiff_t reachOf(double softness) {
    double width = std::sqrt(12 * softness * softness / passes + 1);
    return std::lround((width - 1) / 2);
}

/// Puts the mean of each value and its neighbours above and below into `out`; beyond the ends is
/// nothing. All columns go down together: memory is read in its own order.
void average(const float* in, float* out, std::ptrdiff_t width, std::ptrdiff_t height,
             std::ptrdiff_t reach) {
    float share = 1.0F / static_cast<float>(2 * reach + 1);
    std::vector<float> kept(static_cast<std::size_t>(width));
    float* sums = kept.data();
    auto add = [&](std::ptrdiff_t y) {
        for (std::ptrdiff_t x = 0; x < width; ++x) sums[x] += in[y * width + x];
    };
    for (std::ptrdiff_t y = 0; y < std::min(reach, height); ++y) add(y);
    for (std::ptrdiff_t y = 0; y < height; ++y) {
        if (y + reach < height) add(y + reach);
        for (std::ptrdiff_t x = 0; x < width; ++x) out[y * width + x] = sums[x] * share;
        if (y < reach) continue;
        for (std::ptrdiff_t x = 0; x < width; ++x) sums[x] -= in[(y - reach) * width + x];
    }
}

/// Softens up and down, and turns rows into columns.
std::vector<float> softened(std::vector<float> values, std::ptrdiff_t width, std::ptrdiff_t height,
                            std::ptrdiff_t reach) {
    std::vector<float> other(values.size());
    for (int pass = 0; pass < passes; ++pass) {
        average(values.data(), other.data(), width, height, reach);
        values.swap(other);
    }
    auto to = other.begin();
    for (std::ptrdiff_t x = 0; x < width; ++x) {
        for (std::ptrdiff_t y = 0; y < height; ++y) *to++ = values.data()[y * width + x];
    }
    return other;
}

/// `color` at each opacity from 0 to 255, whatever its own.
std::array<QRgb, 256> shadesOf(const QColor& color) {
    QRgb opaque = color.rgb();
    std::array<QRgb, 256> shades{};
    for (QRgb opacity = 0; opacity < shades.size(); ++opacity) {
        shades[opacity] = qPremultiply((opaque & RGB_MASK) | opacity << 24U);
    }
    return shades;
}

}  // namespace

QImage softShadow(const QImage& shape, double softness, const QColor& color) {
    int width = shape.width();
    int height = shape.height();
    QImage alpha = shape.convertToFormat(QImage::Format_Alpha8);
    std::vector<float> values;
    values.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        const uchar* line = alpha.constScanLine(y);
        values.insert(values.end(), line, line + width);
    }
    std::ptrdiff_t reach = reachOf(softness);
    values = softened(std::move(values), width, height, reach);
    values = softened(std::move(values), height, width, reach);
    QImage result(shape.size(), QImage::Format_ARGB32_Premultiplied);
    auto shades = shadesOf(color);
    auto opacity = static_cast<double>(color.alphaF());
    auto value = values.begin();
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < width; ++x) {
            double part = std::clamp(static_cast<double>(*value++), 0.0, 255.0);
            line[x] = shades[static_cast<std::size_t>(part * opacity + 0.5)];
        }
    }
    return result;
}

QImage windowShadow(const QImage& shape) {
    QImage shadow(shape.size() + QSize(2 * windowShadowRoom, 2 * windowShadowRoom),
                  QImage::Format_ARGB32_Premultiplied);
    shadow.fill(Qt::transparent);
    QImage solid = shadow;
    QPainter(&solid).drawImage(windowShadowRoom, windowShadowRoom, shape);
    QPainter painter(&shadow);
    for (const Layer& layer : windowLayers) {
        QColor shade(0, 0, 0, static_cast<int>(layer.opacity * 255));
        painter.drawImage(QPoint(0, layer.down), softShadow(solid, layer.softness, shade));
    }
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.drawImage(0, 0, solid);
    return shadow;
}

}  // namespace nevo
