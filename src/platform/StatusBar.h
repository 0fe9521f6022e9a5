#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/Geometry.h"
#include "platform/Image.h"

namespace nevo {

/// The part of a status item that a person sees and clicks (`NSStatusBarButton`). Its looks don't
/// change its slot in the bar: a hidden button keeps its place.
class StatusItemButton {
public:
    virtual ~StatusItemButton() = default;

    virtual void setImage(std::optional<Image> image) = 0;
    virtual std::optional<Image> image() const = 0;
    virtual void setTitle(const std::string& title) = 0;
    /// 1 is image only (`NSImageOnly`).
    virtual void setImagePosition(int position) = 0;
    /// 0 is scaled down in proportion (`NSImageScaleProportionallyDown`).
    virtual void setImageScaling(int scaling) = 0;
    /// Of the button's cell: a disabled one takes no clicks.
    virtual void setEnabled(bool enabled) = 0;
    virtual bool isEnabled() const = 0;
    virtual void setHighlighted(bool highlighted) = 0;
    virtual void setHidden(bool hidden) = 0;
    virtual bool isHidden() const = 0;
    /// 0 to 1.
    virtual void setAlpha(double alpha) = 0;
    virtual double alpha() const = 0;
    /// Called at a left click; an empty function removes it (`target` and `action`).
    virtual void setAction(std::function<void()> action) = 0;

    /// The number of the button's window, or nothing while it has none.
    virtual std::optional<WindowNumber> windowNumber() const = 0;
    /// Origin 0, 0.
    virtual Rect bounds() const = 0;
    /// `bounds` converted to the screen: points, origin at the bottom left of the main display;
    /// nothing without a window. The button fills its window, so this is the window's frame too.
    virtual std::optional<Rect> screenFrame() const = 0;
    /// The frame of the screen that the button's window is on, or nothing.
    virtual std::optional<Rect> windowScreenFrame() const = 0;
};

/// One of this program's own status items (`NSStatusItem`). Destroying it removes it from the bar
/// (`removeStatusItem:`).
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// Points; -1 means as wide as its content needs. 10000 pushes every item to its left off the
    /// screen. From 0 to more, the bar places the item anew by its saved position.
    virtual void setLength(double length) = 0;
    virtual double length() const = 0;
    virtual void setVisible(bool visible) = 0;
    virtual bool isVisible() const = 0;
    /// The name under which the bar remembers the item's place; setting it places the item by the
    /// remembered one.
    virtual void setAutosaveName(const std::string& name) = 0;
    /// nullptr when it has none.
    virtual StatusItemButton* button() = 0;
};

/// The system's status bar (`NSStatusBar.systemStatusBar`).
class StatusBar {
public:
    virtual ~StatusBar() = default;
    virtual std::unique_ptr<StatusItem> statusItem(double length) = 0;
    /// Height in points.
    virtual double thickness() const = 0;
    /// Where the system's own area begins at the right end of the bar, the left edge of the
    /// leftmost of the system's own items: x in points, origin at the top left of the main display.
    /// Nothing if it can't be told.
    virtual std::optional<double> systemAreaLeft() const = 0;
};

/// Posted on the default centre when the bar has moved or resized items: what stands beside one has
/// to follow it (`NSWindowDidMoveNotification` of the items' windows). Several at once are one.
inline constexpr const char* statusItemsMovedNotification = "NSWindowDidMoveNotification";

/// The length that means "as wide as the content".
inline constexpr double variableStatusItemLength = -1.0;

}  // namespace nevo
