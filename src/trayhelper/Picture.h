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

/// `picture`, which may be null, with its own proportions and no side longer than `side` pixels.
/// One that is only a little smaller, from three quarters, stays as it is: sharp is better than
/// large.
QImage scaledToFit(const QImage& picture, int side);

/// A PNG, XPM or SVG with its own proportions, premultiplied, scaled to fit into a square of
/// `side` pixels: a drawing always, pixels as `scaledToFit` does. A null image when it is of
/// another kind, beyond `largestSide` pixels a side, or broken.
QImage readPicture(const QByteArray& bytes, int side, int largestSide);

/// The same for a file; a null image also when it is no ordinary one, or above 4 megabytes.
QImage readPictureFile(const QString& path, int side);

/// `picture`'s shape in one colour.
QImage recoloured(QImage picture, const QColor& color);

}  // namespace nevo::trayhelper
