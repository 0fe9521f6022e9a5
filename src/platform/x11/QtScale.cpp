#include "platform/x11/QtScale.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace nevo {

QtScale QtScale::at(Point root) {
    for (const QScreen* screen : QGuiApplication::screens()) {
        QtScale scale{screen->geometry().topLeft(), screen->devicePixelRatio()};
        QPoint place(static_cast<int>(std::floor(root.x)), static_cast<int>(std::floor(root.y)));
        if (scale.toRoot(screen->geometry()).contains(place)) return scale;
    }
    const QScreen* primary = QGuiApplication::primaryScreen();
    if (primary == nullptr) return {};
    return {primary->geometry().topLeft(), primary->devicePixelRatio()};
}

QPoint QtScale::fromRoot(Point root) const {
    return {corner.x() + qRound((root.x - corner.x()) / factor),
            corner.y() + qRound((root.y - corner.y()) / factor)};
}

QRect QtScale::around(const QRect& root) const {
    // Half a unit more or less may be rounded either way.
    auto low = [&](int value, int origin) {
        return origin + static_cast<int>(std::floor((value - origin) / factor));
    };
    auto high = [&](int value, int origin) {
        return origin + static_cast<int>(std::ceil((value - origin) / factor));
    };
    QPoint topLeft(low(root.x(), corner.x()), low(root.y(), corner.y()));
    QPoint end(high(root.x() + root.width(), corner.x()),
               high(root.y() + root.height(), corner.y()));
    QRect result(topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y()));
    QRect there = toRoot(result);
    // Corner and size are rounded apart from one another.
    if (there.right() < root.right()) result.setWidth(result.width() + 1);
    if (there.bottom() < root.bottom()) result.setHeight(result.height() + 1);
    if (there.left() > root.left()) result.setLeft(result.left() - 1);
    if (there.top() > root.top()) result.setTop(result.top() - 1);
    return result;
}

QRect QtScale::toRoot(const QRect& qt) const {
    return {corner.x() + qRound((qt.x() - corner.x()) * factor),
            corner.y() + qRound((qt.y() - corner.y()) * factor), qRound(qt.width() * factor),
            qRound(qt.height() * factor)};
}

}  // namespace nevo
