#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Color.h"
#include "platform/Events.h"
#include "platform/Image.h"
#include "platform/Screens.h"

namespace nevo {

/// What shines through a layer that blurs what is behind its window (`NSVisualEffectMaterial`).
enum class Material { menu = 5, popover = 6, hudWindow = 13 };

/// `CAMediaTimingFunction`'s names.
enum class TimingFunction { linear, easeOut, easeInEaseOut };

struct Animation {
    double seconds = 0;
    TimingFunction timing = TimingFunction::linear;
};

struct LayerShadow {
    Color color;
    double opacity = 0;
    double radius = 0;
    /// Upwards and to the right.
    Point offset;
    bool operator==(const LayerShadow&) const = default;
};

/// One view of a panel, with everything that a desktop needs to draw it. Views lie one upon the
/// other in the order of the list, the first at the back. From the back of one view: material,
/// background, border, image, text.
struct PanelView {
    /// Tells it from its panel's others.
    std::string key;
    /// In the panel: points, origin at its bottom left.
    Rect frame;
    double alpha = 1;
    std::optional<Material> material;
    Color background;
    double cornerRadius = 0;
    double borderWidth = 0;
    Color borderColor;
    /// Scaled down in proportion where it is larger than the view, and centred.
    std::optional<Image> image;
    /// What a template image is drawn in; the desktop's text colour with nothing.
    std::optional<Color> contentTintColor;
    /// One line, centred, cut off where it is too long.
    std::string text;
    double fontSize = 0;
    Color textColor;
    std::string toolTip;
    LayerShadow shadow;
    /// Whether the pointer's events go to it; else they go to what lies below.
    bool takesMouse = false;
};

/// What the pointer does in a view. A view in which a button went down hears of everything until it
/// comes up, wherever the pointer is.
struct PanelEvent {
    /// leftMouseDown, leftMouseDragged, leftMouseUp, rightMouseDown, rightMouseUp, otherMouseDown,
    /// otherMouseUp or scrollWheel.
    EventType type = EventType::leftMouseDown;
    std::string view;
    /// In the panel: points, origin at its bottom left.
    Point location;
    ModifierFlags modifiers = 0;
    /// Of scrollWheel: whole notches, up and to the left above 0.
    Point scroll = {};
};

/// Keys that a panel hears of, by what they do in it.
enum class PanelKey {
    left,
    right,
    up,
    down,
    first,   ///< Home
    last,    ///< End
    press,   ///< Return, Enter or the space bar
    menu,    ///< the menu key, or Shift and F10
    cancel,  ///< Escape
};

/// How a panel is made (`NSPanel initWithContentRect:styleMask:backing:defer:` and its setters).
struct PanelConfiguration {
    /// Points, origin at the bottom left of the main display.
    Rect frame;
    /// Bits of `NSWindowStyleMask`.
    unsigned styleMask = 0;
    int level = 0;
    Color background;
    bool hasShadow = false;
    bool isFloatingPanel = false;
    bool isMovableByBackground = false;
    bool ignoresMouseEvents = false;
    int animationBehavior = 0;
    /// Bits of `NSWindowCollectionBehavior`.
    unsigned collectionBehavior = 0;
    bool canBecomeKey = false;
};

/// A window of this program without a title bar, drawn from views. Out of sight at first; gone
/// from the screen when it is destroyed.
class Panel {
public:
    virtual ~Panel() = default;

    /// Points, origin at the bottom left of the main display.
    virtual Rect frame() const = 0;
    virtual void setFrame(Rect frame) = 0;
    /// The screen that it is on, or nothing.
    virtual std::optional<Screen> screen() const = 0;

    /// Replaces all views.
    virtual void setViews(std::vector<PanelView> views) = 0;
    /// Puts `view` in place of the one with its key; without such a one nothing happens. Its frame
    /// and its alpha go over within `animation`.
    virtual void setView(const PanelView& view, std::optional<Animation> animation = {}) = 0;
    /// Brings the view before the others.
    virtual void bringViewToFront(const std::string& key) = 0;

    /// Of the whole panel (`alphaValue`). `done` runs on the main thread when it has got there,
    /// unless the panel is gone by then.
    virtual void setAlpha(double alpha) = 0;
    virtual void animateAlpha(double alpha, Animation animation,
                              std::function<void()> done = nullptr) = 0;

    /// `orderFront:`, which takes no focus from the window in use.
    virtual void orderFront() = 0;
    /// `makeKeyWindow`: from now on the panel hears keys, until `resignKey` or until it is out of
    /// sight; then they go to the window in use again, which has kept the focus. A menu of this
    /// program has them while it is open. False when they can't be had now.
    virtual bool makeKey() = 0;
    virtual void resignKey() = 0;
    virtual void orderOut() = 0;
    virtual bool isVisible() const = 0;

    /// Hears what the pointer does in the views that take it. Called on the main thread; may
    /// destroy the panel.
    std::function<void(const PanelEvent&)> onEvent;
    /// Hears keys. Called on the main thread; may destroy the panel.
    std::function<void(PanelKey)> onKey;
};

class Panels {
public:
    virtual ~Panels() = default;
    /// Never nullptr.
    virtual std::unique_ptr<Panel> create(const PanelConfiguration& configuration) = 0;
};

}  // namespace nevo
