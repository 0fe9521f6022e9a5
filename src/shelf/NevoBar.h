#pragma once

#include <vector>

#include "core/BarItem.h"

namespace nevo {

/// The floating bar under the toggle that shows hidden items as a row of slots, as its users see
/// it. A desktop without one has none of these, and nobody misses it.
class NevoBar {
public:
    virtual ~NevoBar() = default;

    /// Opens the bar with these items; none closes it.
    virtual void show(const std::vector<BarItem>& items) = 0;
    /// Closes the bar. Safe when it is closed.
    virtual void dismiss() = 0;
    /// Whether the panel exists and can be seen.
    virtual bool isPanelVisible() const = 0;
    /// The panel's frame, origin at the bottom left; empty without a panel.
    virtual Rect panelFrame() const = 0;

    /// Fades and slides.
    bool animationsEnabled = true;
    /// The toggle's x: the bar's anchor.
    double nevoIconX = 0;
};

}  // namespace nevo
