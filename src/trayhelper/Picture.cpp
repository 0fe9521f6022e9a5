#include "trayhelper/Picture.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>

namespace nevo::trayhelper {

namespace {

constexpr qint64 mostFileBytes = 4 * 1024 * 1024;
/// For the largest picture that is read, at 16 bits a channel.
constexpr int mostMegabytes = 128;

/// Of pixels; empty for all else. Qt is told the kind, or it would try everything it knows.
const char* rasterFormat(const QByteArray& bytes) {
    if (bytes.startsWith("\x89PNG")) return "png";
    if (bytes.startsWith("/* XPM")) return "xpm";
    return "";
}

/// Not a packed one: a small file can be gigabytes of text.
bool isDrawing(const QByteArray& bytes) {
    QByteArray start = bytes.left(16).trimmed();
    return start.startsWith('<') || start.startsWith("\xEF\xBB\xBF<");
}

QSize fitting(QSize size, int side) {
    return size.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1});
}

QImage draw(const QByteArray& bytes, int side) {
    QSvgRenderer renderer(bytes);
    if (!renderer.isValid() || renderer.defaultSize().isEmpty()) return {};
    QImage canvas(fitting(renderer.defaultSize(), side), QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    renderer.render(&painter, QRectF(canvas.rect()));
    return canvas;
}

QImage decode(QByteArray bytes, const char* format, int side, int largestSide) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    QSize size = reader.size();
    if (size.isEmpty() || std::max(size.width(), size.height()) > largestSide) return {};
    QImage image = reader.read().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return scaledToFit(image, side);
}

}  // namespace

void limitPictureMemory() { QImageReader::setAllocationLimit(mostMegabytes); }

QImage scaledToFit(const QImage& picture, int side) {
    int longer = std::max(picture.width(), picture.height());
    bool isLittleSmaller = longer <= side && 4 * longer >= 3 * side;
    if (picture.isNull() || isLittleSmaller) return picture;
    return picture.scaled(fitting(picture.size(), side), Qt::IgnoreAspectRatio,
                          Qt::SmoothTransformation);
}

QImage readPicture(const QByteArray& bytes, int side, int largestSide) {
    if (isDrawing(bytes)) return draw(bytes, side);
    const char* format = rasterFormat(bytes);
    return *format == '\0' ? QImage() : decode(bytes, format, side, largestSide);
}

QImage readPictureFile(const QString& path, int side) {
    // To open a pipe would be to wait for somebody who writes into it.
    if (!QFileInfo(path).isFile()) return {};
    QFile file(path);
    if (file.size() > mostFileBytes || !file.open(QIODevice::ReadOnly)) return {};
    return readPicture(file.read(mostFileBytes), side, largestFileSide);
}

QImage recoloured(QImage picture, const QColor& color) {
    if (picture.isNull()) return picture;
    picture.convertTo(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(picture.rect(), color);
    return picture;
}

}  // namespace nevo::trayhelper
