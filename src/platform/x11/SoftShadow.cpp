#include "platform/x11/SoftShadow.h"

#include <QPainter>
#include <cmath>
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
int reachOf(double softness) {
    double width = std::sqrt(12 * softness * softness / passes + 1);
    return static_cast<int>(std::lround((width - 1) / 2));
}

/// Puts the mean of each value and its neighbours into `out`; beyond the ends is nothing.
void average(const float* in, float* out, int count, int stride, int reach) {
    float share = 1.0F / static_cast<float>(2 * reach + 1);
    float sum = 0;
    for (int i = 0; i < std::min(reach, count); ++i) sum += in[i * stride];
    for (int i = 0; i < count; ++i) {
        if (i + reach < count) sum += in[(i + reach) * stride];
        out[i * stride] = sum * share;
        if (i >= reach) sum -= in[(i - reach) * stride];
    }
}

void soften(std::vector<float>& values, int width, int height, int reach) {
    std::vector<float> other(values.size());
    for (int pass = 0; pass < passes; ++pass) {
        for (int y = 0; y < height; ++y) {
            average(&values[static_cast<std::size_t>(y * width)],
                    &other[static_cast<std::size_t>(y * width)], width, 1, reach);
        }
        for (int x = 0; x < width; ++x) {
            auto column = static_cast<std::size_t>(x);
            average(&other[column], &values[column], height, width, reach);
        }
    }
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
    soften(values, width, height, reachOf(softness));
    QImage result(shape.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < width; ++x) {
            double part = static_cast<double>(values[static_cast<std::size_t>(y * width + x)]);
            int opacity = static_cast<int>(std::lround(std::max(0.0, part) * color.alphaF()));
            line[x] = qPremultiply(qRgba(color.red(), color.green(), color.blue(), opacity));
        }
    }
    return result;
}

QImage onWindowShadow(const QImage& content, const QImage& shape) {
    QImage result(content.size() + QSize(2 * windowShadowRoom, 2 * windowShadowRoom),
                  QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QImage solid = result;
    const QPoint place(windowShadowRoom, windowShadowRoom);
    QPainter(&solid).drawImage(place, shape);
    QPainter painter(&result);
    for (const Layer& layer : windowLayers) {
        QColor shade(0, 0, 0, static_cast<int>(layer.opacity * 255));
        painter.drawImage(QPoint(0, layer.down), softShadow(solid, layer.softness, shade));
    }
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.drawImage(0, 0, solid);
    // Where an edge covers a pixel in part, both have their part in it.
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    painter.drawImage(place, content);
    return result;
}

}  // namespace nevo
