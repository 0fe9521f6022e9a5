#pragma once

#include <QColor>
#include <QImage>
#include <QSize>

#include "platform/Image.h"

namespace nevo {

/// Between the logic's pictures and Qt's. Both hold premultiplied ARGB.
QImage toQImage(const Image& image);
Image fromQImage(const QImage& image);

/// `image` in `size` points; a template in `templateColor`.
QImage rendered(const Image& image, QSize size, const QColor& templateColor);

}  // namespace nevo
