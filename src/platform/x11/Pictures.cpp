#include "platform/x11/Pictures.h"

#include <QPainter>
#include <cstring>

namespace nevo {

QImage toQImage(const Image& image) {
    if (!image.bitmap || image.bitmap->pixels.empty()) return {};
    const Bitmap& bitmap = *image.bitmap;
    QImage view(reinterpret_cast<const uchar*>(bitmap.pixels.data()), bitmap.width, bitmap.height,
                bitmap.width * 4, QImage::Format_ARGB32_Premultiplied);
    return view.copy();
}

Image fromQImage(const QImage& image) {
    QImage source = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    auto bitmap = std::make_shared<Bitmap>();
    bitmap->width = source.width();
    bitmap->height = source.height();
    auto width = static_cast<std::size_t>(source.width());
    bitmap->pixels.resize(width * static_cast<std::size_t>(source.height()));
    for (int y = 0; y < source.height(); ++y) {
        std::memcpy(bitmap->pixels.data() + static_cast<std::size_t>(y) * width,
                    source.constScanLine(y), width * 4);
    }
    Size size{static_cast<double>(bitmap->width), static_cast<double>(bitmap->height)};
    return {std::move(bitmap), size, false, {}};
}

QImage rendered(const Image& image, QSize size, const QColor& templateColor) {
    QImage source = toQImage(image);
    if (source.isNull() || size.isEmpty()) return {};
    QImage result(size, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (source.width() > size.width() * 2) {
        // The painter samples four pixels only: a large picture would flicker into noise.
        source = source.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    painter.drawImage(QRect(QPoint(0, 0), size), source);
    if (image.isTemplate) {
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(result.rect(), templateColor);
    }
    return result;
}

}  // namespace nevo
