#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Image.h"

namespace nevo {

/// `NSApplicationActivationPolicy`.
enum class ActivationPolicy { regular = 0, accessory = 1, prohibited = 2 };

/// A running program as it was when it was asked for (`NSRunningApplication`).
struct RunningApplication {
    ProcessId pid = 0;
    /// The stable application identifier; empty when it has none.
    std::string bundleIdentifier;
    std::optional<std::string> localizedName;
    std::optional<Image> icon;
    ActivationPolicy activationPolicy = ActivationPolicy::regular;
    bool isFinishedLaunching = true;
    bool isTerminated = false;
};

/// The other programs of the session (`NSWorkspace`, `NSRunningApplication`, `NSFileManager`).
///
/// The workspace's notification centre tells which one is in front:
/// "NSWorkspaceDidActivateApplicationNotification" when another one comes there, and
/// "NSWorkspaceDidDeactivateApplicationNotification" when one has gone from there and none has come
/// instead. Both carry its process id, in decimal, under "NSWorkspaceApplicationKey" and its
/// identifier under "bundleIdentifier". The menu bar's program is never in front.
class Workspace {
public:
    virtual ~Workspace() = default;

    virtual std::vector<RunningApplication> runningApplications() const = 0;
    /// `runningApplicationWithProcessIdentifier:`.
    virtual std::optional<RunningApplication> runningApplication(ProcessId pid) const = 0;
    /// The first running instance (`runningApplicationsWithBundleIdentifier:`).
    virtual std::optional<RunningApplication> runningApplication(
        const std::string& bundleIdentifier) const = 0;
    /// The one whose windows take the keys (`frontmostApplication`); nothing when that is unknown.
    virtual std::optional<RunningApplication> frontmostApplication() const = 0;
    /// `activateWithOptions:` 0. False when it is gone.
    virtual bool activate(ProcessId pid) = 0;

    /// The path of the installed application, or nothing
    /// (`URLForApplicationWithBundleIdentifier:`).
    virtual std::optional<std::string> applicationPath(
        const std::string& bundleIdentifier) const = 0;
    /// The name that a file manager would show (`displayNameAtPath:`).
    virtual std::string displayName(const std::string& path) const = 0;
    /// `openURL:`. False when nothing opens it.
    virtual bool openUrl(const std::string& url) = 0;
};

}  // namespace nevo
