#pragma once

#include <limits>
#include <map>
#include <optional>
#include <vector>

#include "platform/Platform.h"
#include "platform/Task.h"

namespace nevo {

/// Pictures of single windows, also off the screen, and the user's permission for them. One for the
/// process, which outlives every task. No error leaves it: what failed is missing from the result
/// and stands in the log.
class ScreenCaptureService {
public:
    explicit ScreenCaptureService(const Platform& platform);

    /// Whether screen recording is granted now. Never prompts.
    bool hasPermission() const;

    /// Pictures in pixels by window number, taken one after the other.
    Task<std::map<WindowNumber, Image>> capture(std::vector<WindowNumber> windowIDs);

    /// Prompts once a launch, and leads to the system's settings where that doesn't help.
    void requestPermission();
    void openScreenRecordingSettings();

private:
    using WindowMap = std::map<WindowNumber, ShareableWindow>;
    Task<std::optional<WindowMap>> shareableContent();
    Task<std::optional<Image>> captureWindow(ShareableWindow window);

    RunLoop& loop;
    Workspace& workspace;
    ScreenCapture& platformCapture;

    std::optional<std::vector<ShareableWindow>> cachedShareableContent;
    double cachedShareableContentAt = -std::numeric_limits<double>::infinity();
    double shareableContentMaxAge = 5.0;
    bool hasRequestedPermissionThisLaunch = false;
};

}  // namespace nevo
