#pragma once

#include <functional>

#include "platform/Platform.h"

namespace nevo {

/// The accessibility permission, and where the program is installed. One for the process; main
/// thread only, so that nothing needs a lock.
class AccessibilityService {
public:
    explicit AccessibilityService(const Platform& platform);

    bool isTrusted() const { return platform.accessibility.isProcessTrusted(); }
    /// Has the system ask the user, once in the life of the process.
    void promptIfNeeded();
    void resetHasPrompted() { hasPrompted = false; }
    /// Clears a grant that the system keeps for an earlier build of the program. Waits for the
    /// system's tool; false when it fails or can't be started.
    bool resetAccessibilityGrant();
    /// Opens the system's settings page of this permission.
    void openSettings();

    /// Offers to move the program to where the system expects applications, unless it is there or
    /// the user has said not to ask again. Shows alerts; the loop turns meanwhile.
    void promptMoveToApplicationsIfNeeded();

    /// Starts the program again, a moment after this process has gone, and ends it. Stays when that
    /// can't be started.
    void restart();

private:
    void moveToApplications(const std::string& bundlePath);

    const Platform& platform;
    bool hasPrompted = false;
};

}  // namespace nevo
