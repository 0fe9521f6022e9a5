#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

void StatusBarController::displayModeChanged() {
    debugLog("[Nevo] Display mode changed to shelfMode=" + describe(isShelfMode()));
    itemMonitorTimer.reset();
    if (shelfController) shelfController->resetForDisplayModeChange();
    nevoBar->dismiss();
    cachedHiddenItems.clear();
    refreshToggleButton();
    sectionManager.expand(true);
    appState.setIsExpanded(true);
    if (isShelfMode()) {
        shelf().bindBarCallbacks();
    } else {
        bindBarForPushMode();
    }
    startItemMonitor();
    services.scanner.invalidateScanCache();
    lastStableX = -1.0;
    // In the new mode the section begins closed, as at the start.
    hasUserToggled = isFirstCollapseHeld = false;
    startFirstCollapse();
}

}  // namespace nevo
