#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/Geometry.h"

namespace nevo {

/// A display (`NSScreen`). Frames in points, origin at the bottom left of the main display.
struct Screen {
    std::uint32_t id = 0;
    Rect frame;
    Rect visibleFrame;
    /// The top of `safeAreaInsets`: above 0 on a display with a notch.
    double safeAreaTop = 0;
    /// Pixels per point (`backingScaleFactor`).
    double backingScale = 1;
    bool operator==(const Screen&) const = default;
};

/// Posted on the default centre after a change of them
/// (`NSApplication.didChangeScreenParametersNotification`).
inline constexpr const char* screenParametersChangedNotification =
    "NSApplicationDidChangeScreenParametersNotification";

class Screens {
public:
    virtual ~Screens() = default;
    /// `NSScreen.screens`, the main display first.
    virtual std::vector<Screen> screens() const = 0;
    /// `NSScreen.mainScreen`; nothing without a display.
    virtual std::optional<Screen> mainScreen() const = 0;
};

}  // namespace nevo
