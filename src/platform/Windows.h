#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Controls.h"
#include "platform/Geometry.h"

namespace nevo {

struct WindowConfiguration {
    /// How tests name the window.
    std::string name;
    std::string title;
    /// Of the content, in points. A content that needs more, since a language or a font takes more
    /// room, gets it.
    Size size;
    /// `NSWindow.StyleMask`: 1 titled, 2 closable.
    unsigned styleMask = 3;
    /// `NSWindow.level`: 3 floats above those of all programs.
    int level = 0;
    unsigned collectionBehavior = 0;
    /// The frame shows neither title nor buttons: the content closes the window itself.
    bool isBare = false;
    bool isMovableByBackground = false;
};

/// How what a window shows comes in place of what it showed.
enum class Transition {
    none,
    /// One fades while the other appears, in place.
    crossFade,
    /// The new comes from the right, slightly small at first, as a spring of response 0.5 seconds
    /// and damping fraction 0.85 would pull it, and the old fades.
    move,
};

/// An ordinary window of this program with a tree of controls in it (`NSWindow` with a hosted
/// view), of a fixed size, in the middle of the main screen, closed at first.
class Window {
public:
    virtual ~Window() = default;
    /// Replaces what it shows. What comes can be operated at once, whatever moves.
    virtual void setContent(Control content, Transition transition = Transition::none) = 0;
    virtual bool isVisible() const = 0;
    /// `makeKeyAndOrderFront:`.
    virtual void makeKeyAndOrderFront() = 0;
    /// `orderBack:`.
    virtual void orderBack() = 0;
    virtual void setLevel(int level) = 0;
    virtual void close() = 0;
    /// A person has closed it. It may be destroyed here.
    std::function<void()> didClose;
};

class Windows {
public:
    virtual ~Windows() = default;
    /// Never nullptr.
    virtual std::unique_ptr<Window> create(const WindowConfiguration& configuration) = 0;
    /// Whether the user wants less motion (`accessibilityDisplayShouldReduceMotion`).
    virtual bool prefersReducedMotion() const = 0;
    /// Told when that changes (`accessibilityOptionsDidChange`); one listener.
    std::function<void()> reducedMotionDidChange;
};

}  // namespace nevo
