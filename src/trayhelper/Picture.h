#pragma once

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QString>

namespace nevo::trayhelper {

/// Of a picture of pixels in a file, in both directions, looked at before it is decoded.
inline constexpr int largestFileSide = 4096;

/// Limits the memory of all pictures that Qt reads in this process, also of those in a theme.
void limitPictureMemory();

/// A PNG, XPM or SVG with its own proportions, premultiplied, no side longer than `side` pixels. A
/// drawing fills that, pixels are never enlarged. A null image when it is of another kind, beyond
/// `largestSide` pixels a side, or broken.
QImage readPicture(const QByteArray& bytes, int side, int largestSide);

/// The same for a file; a null image also when it is no ordinary one, or above 4 megabytes.
QImage readPictureFile(const QString& path, int side);

/// `picture`'s shape in one colour.
QImage recoloured(QImage picture, const QColor& color);

}  // namespace nevo::trayhelper
