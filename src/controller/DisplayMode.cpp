#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

void StatusBarController::displayModeChanged() {
    debugLog("[Nevo] Display mode changed to shelfMode=" + describe(isShelfMode()));
    itemMonitorTimer.reset();
    for (WindowNumber window : sectionManager.alphaHiddenWindows)
        platform.windows.setWindowAlpha(window, 1.0F);
    sectionManager.alphaHiddenWindows.clear();
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
    startFirstCollapse();
}

}  // namespace nevo
