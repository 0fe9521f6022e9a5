#pragma once

#include "platform/ScreenCapture.h"
#include "platform/sim/SimWindowServer.h"

namespace nevo {

/// Captures answer after `delay`, through the program's queue.
class SimScreenCapture : public ScreenCapture {
public:
    SimScreenCapture(SimRunLoop& runLoop, const SimWindows& allWindows,
                     const SimWindowServer& pictures, const SimPermissions& permitted,
                     SimFaults& scripted, SimTrace& to)
        : loop(runLoop),
          windows(allWindows),
          server(pictures),
          permissions(permitted),
          faults(scripted),
          trace(to) {}

    bool preflightAccess() const override { return permissions.screenRecording; }
    /// Shows the prompt; a script grants the permission if it wants to.
    void requestAccess() override;
    void shareableContent(
        bool excludingDesktopWindows, bool onScreenWindowsOnly,
        std::function<void(Result<std::vector<ShareableWindow>>)> completion) override;
    void captureImage(WindowNumber window, CaptureConfiguration configuration,
                      std::function<void(Result<Image>)> completion) override;

    int promptCount() const { return prompts; }

    /// Seconds.
    double delay = 0.01;

private:
    SimRunLoop& loop;
    const SimWindows& windows;
    const SimWindowServer& server;
    const SimPermissions& permissions;
    SimFaults& faults;
    SimTrace& trace;
    int prompts = 0;
};

}  // namespace nevo
