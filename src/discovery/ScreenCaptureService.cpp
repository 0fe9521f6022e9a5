#include "discovery/ScreenCaptureService.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/debugLog.h"

namespace nevo {

namespace {

constexpr const char* screenRecordingSettingsUrl =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";
constexpr const char* systemSettingsBundleID = "com.apple.systempreferences";

/// Two pixels a point whatever the screen's scale, never less than two; a frame beyond all sense is
/// cut.
int pixels(double points) {
    constexpr double most = 32768;
    return points * 2 >= 2 ? static_cast<int>(std::min(points * 2, most)) : 2;
}

}  // namespace

ScreenCaptureService::ScreenCaptureService(const Platform& platform)
    : loop(platform.runLoop),
      workspace(platform.workspace),
      platformCapture(platform.screenCapture) {}

bool ScreenCaptureService::hasPermission() const { return platformCapture.preflightAccess(); }

Task<std::map<WindowNumber, Image>> ScreenCaptureService::capture(
    std::vector<WindowNumber> windowIDs) {
    std::map<WindowNumber, Image> pictures;
    if (windowIDs.empty()) co_return pictures;
    if (!hasPermission()) {
        debugLog(
            "[SCK] hasPermission=false — Screen Recording not granted for this CDHash. Skipping "
            "SCK capture.");
        co_return pictures;
    }
    debugLog(fmt::format("[SCK] capture begin: {} windows", windowIDs.size()));
    std::optional<WindowMap> content = co_await shareableContent();
    if (!content) co_return pictures;

    int notInSCContent = 0;
    for (WindowNumber number : windowIDs) {
        auto window = content->find(number);
        if (window == content->end()) {
            ++notInSCContent;
            continue;
        }
        std::optional<Image> picture = co_await captureWindow(window->second);
        if (picture) pictures[number] = *picture;
    }
    debugLog(fmt::format("[SCK] capture done: requested={} success={} notInSCContent={}",
                         windowIDs.size(), pictures.size(), notInSCContent));
    co_return pictures;
}

Task<std::optional<ScreenCaptureService::WindowMap>> ScreenCaptureService::shareableContent() {
    bool fresh =
        cachedShareableContent && loop.now() - cachedShareableContentAt < shareableContentMaxAge;
    if (!fresh) {
        OneShot<Result<std::vector<ShareableWindow>>> answer;
        platformCapture.shareableContent(false, false, answer.callback());
        Result<std::vector<ShareableWindow>> content = co_await answer;
        if (!content.value) {
            debugLog("[SCK] SCShareableContent failed: " + content.error);
            co_return std::nullopt;
        }
        cachedShareableContent = std::move(content.value);
        cachedShareableContentAt = loop.now();
    }
    WindowMap windows;
    for (const ShareableWindow& window : *cachedShareableContent) windows[window.windowID] = window;
    co_return windows;
}

Task<std::optional<Image>> ScreenCaptureService::captureWindow(ShareableWindow window) {
    CaptureConfiguration configuration;
    configuration.width = pixels(window.frame.width);
    configuration.height = pixels(window.frame.height);
    configuration.scalesToFit = false;
    configuration.showsCursor = false;
    configuration.capturesAudio = false;
    OneShot<Result<Image>> answer;
    platformCapture.captureImage(window.windowID, configuration, answer.callback());
    Result<Image> picture = co_await answer;
    if (!picture.value) {
        debugLog(
            fmt::format("[SCK] captureImage failed wid={} {}", window.windowID, picture.error));
    }
    co_return std::move(picture.value);
}

void ScreenCaptureService::requestPermission() {
    if (hasPermission() || hasRequestedPermissionThisLaunch) {
        openScreenRecordingSettings();
        return;
    }
    hasRequestedPermissionThisLaunch = true;
    platformCapture.requestAccess();
    loop.postAfter(0.8, [this] {
        if (!hasPermission()) openScreenRecordingSettings();
    });
}

void ScreenCaptureService::openScreenRecordingSettings() {
    workspace.openUrl(screenRecordingSettingsUrl);
    loop.postAfter(0.3, [this] {
        if (auto settings = workspace.runningApplication(std::string(systemSettingsBundleID))) {
            workspace.activate(settings->pid);
        }
    });
}

}  // namespace nevo
