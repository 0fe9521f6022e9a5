#pragma once

#include <functional>
#include <string>

#include "core/ScannedBarItem.h"
#include "platform/Geometry.h"

namespace nevo {

/// What decides when the floating bar opens and closes in shelf mode, as the controller sees it.
class ShelfController {
public:
    /// `presentingItem`: a hidden item stands beside the toggle for the user to click.
    enum class State { presentingItem, collapsed, panelVisible };

    virtual ~ShelfController() = default;

    virtual State state() const = 0;
    /// Seconds on the run loop's clock.
    virtual double panelOpenedAt() const = 0;
    /// Opens or closes the bar; `from` names the caller for the log.
    virtual void toggle(const std::string& from) = 0;
    /// Closes the bar if it is open.
    virtual void dismissShelf() = 0;
    /// Takes the items that a collapse has just pushed away, and the toggle's frame.
    virtual void onItemsPushed(const ScannedBarItems& items, const Rect& toggleFrame) = 0;
    virtual void updateCachedItemsAfterDrag(const ScannedBarItems& items) = 0;
};

}  // namespace nevo
