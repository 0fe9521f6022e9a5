#pragma once

#include <algorithm>
#include <cstdint>

namespace nevo {

/// A place in points. Which corner is the origin is told by whoever hands it out: window server
/// frames have it at the top left of the main display, screens, the pointer and status item buttons
/// at its bottom left.
struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

/// A rectangle in points; `x`, `y` is the corner nearest to the origin of its coordinate system.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const Rect&) const = default;

    double minX() const { return x; }
    double minY() const { return y; }
    double midX() const { return x + width * 0.5; }
    double midY() const { return y + height * 0.5; }
    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    Point center() const { return {midX(), midY()}; }
    bool isEmpty() const { return !(width > 0) || !(height > 0); }

    /// The near edges belong to the rectangle, the far ones don't.
    bool contains(Point p) const { return p.x >= x && p.x < maxX() && p.y >= y && p.y < maxY(); }

    /// True when both share an area greater than zero.
    bool intersects(const Rect& o) const {
        return !isEmpty() && !o.isEmpty() && x < o.maxX() && o.x < maxX() && y < o.maxY() &&
               o.y < maxY();
    }

    /// Grown by `margin` points on each side.
    Rect grownBy(double margin) const {
        return {x - margin, y - margin, width + 2 * margin, height + 2 * margin};
    }

    /// The smallest rectangle around both; an empty one adds nothing.
    Rect unionWith(const Rect& o) const {
        if (isEmpty()) return o;
        if (o.isEmpty()) return *this;
        double left = std::min(x, o.x);
        double top = std::min(y, o.y);
        return {left, top, std::max(maxX(), o.maxX()) - left, std::max(maxY(), o.maxY()) - top};
    }
};

/// A window's number in the window server. A run-time handle only: never stored, never used again
/// for another window while the process lives. 0 is no window.
using WindowNumber = std::uint32_t;

/// A process id; 0 where nothing is known.
using ProcessId = std::int32_t;

}  // namespace nevo
