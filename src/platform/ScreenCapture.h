#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Image.h"
#include "platform/Result.h"

namespace nevo {

/// A window that can be captured (`SCWindow`). Top-left origin.
struct ShareableWindow {
    WindowNumber windowID = 0;
    Rect frame;
};

/// How one window is captured (`SCStreamConfiguration`).
struct CaptureConfiguration {
    int width = 0;   ///< pixels
    int height = 0;  ///< pixels
    bool scalesToFit = true;
    bool showsCursor = true;
    bool capturesAudio = true;
};

/// Pictures of windows that may be off the screen, behind the user's permission. Callbacks come on
/// the main thread, during the call or later.
class ScreenCapture {
public:
    virtual ~ScreenCapture() = default;
    /// `CGPreflightScreenCaptureAccess`. Never prompts.
    virtual bool preflightAccess() const = 0;
    /// `CGRequestScreenCaptureAccess`: shows the system's prompt.
    virtual void requestAccess() = 0;
    /// `SCShareableContent getShareableContentExcludingDesktopWindows:onScreenWindowsOnly:`.
    virtual void shareableContent(
        bool excludingDesktopWindows, bool onScreenWindowsOnly,
        std::function<void(Result<std::vector<ShareableWindow>>)> completion) = 0;
    /// `SCScreenshotManager captureImageWithFilter:configuration:`, the filter being that one
    /// window.
    virtual void captureImage(WindowNumber window, CaptureConfiguration configuration,
                              std::function<void(Result<Image>)> completion) = 0;
};

}  // namespace nevo
