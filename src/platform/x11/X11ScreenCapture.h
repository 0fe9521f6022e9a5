#pragma once

#include "platform/ScreenCapture.h"
#include "platform/WindowServer.h"

namespace nevo {

/// Pictures of the bar's items; every client of the server may take them.
class X11ScreenCapture : public ScreenCapture {
public:
    explicit X11ScreenCapture(const WindowServer& windowServer) : windows(windowServer) {}

    bool preflightAccess() const override { return true; }
    void requestAccess() override {}
    void shareableContent(
        bool excludingDesktopWindows, bool onScreenWindowsOnly,
        std::function<void(Result<std::vector<ShareableWindow>>)> completion) override;
    void captureImage(WindowNumber window, CaptureConfiguration configuration,
                      std::function<void(Result<Image>)> completion) override;

private:
    const WindowServer& windows;
};

}  // namespace nevo
