#pragma once

#include <QColor>
#include <QImage>

namespace nevo {

/// What lies in the shade of `shape` (of which only alpha counts): as large as it, in `color`, its
/// edges softened over about twice `softness` pixels to either side.
QImage softShadow(const QImage& shape, double softness, const QColor& color);

/// How far the shadow of a window reaches around it, in pixels.
inline constexpr int windowShadowRoom = 30;

/// The shadow around a window that has `shape`, larger by `windowShadowRoom` on each side. Under
/// the window itself is none: it would darken what shines through.
QImage windowShadow(const QImage& shape);

}  // namespace nevo
