#pragma once

#include "platform/NotificationCenter.h"
#include "platform/sim/SimApplications.h"
#include "platform/sim/SimFaults.h"
#include "platform/sim/SimStatusBar.h"
#include "platform/sim/SimWindowServer.h"

namespace nevo {

/// The running programs as the program sees them, itself first, and the one in front.
/// Notifications about a program's start and end carry what those about the front do.
class SimWorkspace : public Workspace {
public:
    SimWorkspace(SimRunLoop& runLoop, NotificationCenter& workspaceCentre, SimApplications& others,
                 SimProgram& self, SimFaults& scripted, SimTrace& to)
        : loop(runLoop),
          notifications(workspaceCentre),
          applications(others),
          program(self),
          faults(scripted),
          trace(to) {}

    std::vector<RunningApplication> runningApplications() const override;
    std::optional<RunningApplication> runningApplication(ProcessId pid) const override;
    std::optional<RunningApplication> runningApplication(
        const std::string& bundleIdentifier) const override;
    std::optional<RunningApplication> frontmostApplication() const override {
        return runningApplication(active);
    }
    bool activate(ProcessId pid) override;
    /// Every program that the scenario knows is installed, running or not.
    std::optional<std::string> applicationPath(const std::string& bundleIdentifier) const override;
    std::string displayName(const std::string& path) const override;
    bool openUrl(const std::string& url) override;

    /// Starts and ends programs, and tells the program so. False when there is nothing to do.
    bool launch(const std::string& handle);
    bool kill(const std::string& handle);
    /// Posts a notification about a program on the workspace's centre, at a later turn.
    void tell(const std::string& notification, const RunningApplication& about);

    ProcessId activePid() const { return active; }
    const std::vector<std::string>& openedUrls() const { return urls; }

    ActivationPolicy ownPolicy = ActivationPolicy::accessory;
    bool ownProgramRuns = false;

private:
    RunningApplication self() const;

    SimRunLoop& loop;
    NotificationCenter& notifications;
    SimApplications& applications;
    SimProgram& program;
    SimFaults& faults;
    SimTrace& trace;
    ProcessId active = 0;
    std::vector<std::string> urls;
};

/// What assistive programs may read of the others' status items.
class SimAccessibility : public Accessibility {
public:
    SimAccessibility(SimApplications& others, SimWindows& allWindows, SimFaults& scripted,
                     const SimPermissions& permitted)
        : applications(others), windows(allWindows), faults(scripted), permissions(permitted) {}

    bool isTrustUserControlled() const override { return true; }
    bool isProcessTrusted() const override { return permissions.accessibility; }
    void promptForTrust() override { ++prompts; }
    std::optional<std::vector<AccessibilityElement>> extrasMenuBarChildren(
        ProcessId pid) const override;

    /// How often the program has had the user asked.
    int promptCount() const { return prompts; }

private:
    SimApplications& applications;
    SimWindows& windows;
    SimFaults& faults;
    const SimPermissions& permissions;
    int prompts = 0;
};

}  // namespace nevo
