#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Controls.h"
#include "platform/Panels.h"
#include "platform/StatusBar.h"

namespace nevo {

/// A row of a menu (`NSMenuItem`), or a separator when `key` is empty.
struct MenuItem {
    /// The key of the title's text; how a test names the row.
    std::string key;
    std::string title;
    /// With Command held; empty for none.
    std::string keyEquivalent;
    /// A system symbol's name; empty for none.
    std::string symbol;
    std::function<void()> action;
    /// A row that can't be chosen now is shown dimmed.
    bool isEnabled = true;
    /// A row that says what is on, or off: with a tick, or room for one (`NSMenuItem.state`).
    std::optional<bool> isOn;

    bool isSeparator() const { return key.empty(); }
};

class Menus {
public:
    virtual ~Menus() = default;
    /// Shows a menu with its first row at `location` of the button's view (points, origin at its
    /// bottom left) and returns when it has closed; the chosen row's action has then run
    /// (`popUpMenuPositioningItem:atLocation:inView:`). The loop turns meanwhile.
    virtual void popUp(const std::vector<MenuItem>& items, Point location,
                       StatusItemButton& button) = 0;

    /// Shows a menu at `location` of a panel's content (points, origin at its bottom left), with
    /// its first row there. No row's action is run: `didClose` is told which row was highlighted
    /// when the menu closed, counted from 0, or nothing (`menuDidClose:`, `highlightedItem`).
    /// Returns when the menu has closed; the loop turns meanwhile.
    virtual void popUp(const std::vector<MenuItem>& items, Point location, Panel& panel,
                       std::function<void(std::optional<std::size_t> highlighted)> didClose) = 0;
};

/// A small panel that hangs from the toggle and closes at a click elsewhere (`NSPopover`).
class Popover {
public:
    virtual ~Popover() = default;
    virtual void setContentSize(Size size) = 0;
    /// 1 is transient (`NSPopoverBehaviorTransient`).
    virtual void setBehavior(int behavior) = 0;
    virtual void setAnimates(bool animates) = 0;
    /// Replaces what it shows.
    virtual void setContent(Control content) = 0;
    virtual bool isShown() const = 0;
    /// `performClose:`.
    virtual void performClose() = 0;
    /// `showRelativeToRect:ofView:preferredEdge:`; `rect` in the button's bounds; edge 1 is its
    /// lower edge.
    virtual void show(Rect rect, StatusItemButton& button, int preferredEdge) = 0;
};

class Popovers {
public:
    virtual ~Popovers() = default;
    virtual std::unique_ptr<Popover> create() = 0;
};

}  // namespace nevo
