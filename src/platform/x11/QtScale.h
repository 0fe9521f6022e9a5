#pragma once

#include <QPoint>
#include <QRect>

#include "platform/Geometry.h"

namespace nevo {

/// Between root pixels and Qt's coordinates: on each screen Qt counts from the screen's own corner,
/// in units of as many pixels as the scale that the user has set (`QT_SCALE_FACTOR`, `Xft.dpi`).
struct QtScale {
    /// The same in both.
    QPoint corner;
    /// Pixels to a unit of Qt's.
    double factor = 1;

    /// That of the screen that `root` is on, else of the primary one.
    static QtScale at(Point root);

    /// The nearest place of Qt's.
    QPoint fromRoot(Point root) const;
    /// The smallest rectangle of Qt's that covers all of `root`.
    QRect around(const QRect& root) const;
    /// Where a window lies that Qt was told to put at `qt`.
    QRect toRoot(const QRect& qt) const;
};

}  // namespace nevo
