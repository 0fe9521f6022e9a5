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
    dismissBar();
    cachedHiddenItems.clear();
    refreshToggleButton();
    sectionManager.expand(true);
    appState.setIsExpanded(true);
    startItemMonitor();
    services.scanner.invalidateScanCache();
    lastStableX = -1.0;
    startFirstCollapse();
}

}  // namespace nevo
