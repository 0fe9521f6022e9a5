#pragma once

#include "platform/Screens.h"

namespace nevo {

/// A display as scripts describe it: `frame` has its origin at the top left of the main display.
struct SimDisplay {
    std::uint32_t id = 0;
    Rect frame;
    double notchInset = 0;
    double scale = 2;
};

/// The displays, the main one first, and the arithmetic between the two coordinate systems.
class SimScreens : public Screens {
public:
    SimScreens();

    std::vector<Screen> screens() const override;
    std::optional<Screen> mainScreen() const override;

    const std::vector<SimDisplay>& displays() const { return all; }
    /// Adds a display, or changes the one with the same id. The first one is the main display and
    /// the origin of all coordinates.
    void put(const SimDisplay& display);
    /// False when there is no such display. When the main display goes, the next one becomes it,
    /// and all coordinates move to its origin.
    bool remove(std::uint32_t id);

    /// Height of the menu bar, points.
    double barHeight() const { return thickness; }
    void setBarHeight(double height) { thickness = height; }

    /// Turns a place over between the origin at the top left and that at the bottom left of the
    /// main display. Without a display it stays as it is.
    Point flipped(Point place) const;
    Rect flipped(const Rect& frame) const;

private:
    /// Puts the main display at 0, 0 and all others beside it as they stand.
    void moveOrigin();
    Screen screen(const SimDisplay& display) const;

    std::vector<SimDisplay> all;
    double thickness = 24;
};

}  // namespace nevo
