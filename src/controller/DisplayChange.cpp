#include <fmt/format.h>

#include <cmath>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

namespace {

struct WakeReason {
    const char* notification;
    const char* reason;
};
constexpr WakeReason wakeReasons[] = {
    {"NSWorkspaceDidWakeNotification", "didWake"},
    {"NSWorkspaceScreensDidWakeNotification", "screensDidWake"},
    {"NSWorkspaceSessionDidBecomeActiveNotification", "sessionDidBecomeActive"},
};

constexpr int lastAttempt = 19;
constexpr double pollInterval = 0.3;
constexpr double stableDistance = 1.0;
constexpr double itemsSettle = 0.5;
/// The window server goes on rearranging for a while after a wake.
constexpr double wakeRepairDelays[] = {0.5, 1.5};

}  // namespace

void StatusBarController::observeWake() {
    auto weak = weak_from_this();
    for (const WakeReason& wake : wakeReasons) {
        notificationObservers.push_back(platform.workspaceNotifications.addObserver(
            wake.notification, [weak, reason = wake.reason](const Notification&) {
                if (auto self = weak.lock()) self->recompensatePositionAfterWake(reason);
            }));
    }
}

void StatusBarController::observeScreens() {
    screenChangeObserver = platform.notifications.addObserver(
        screenParametersChangedNotification, [weak = weak_from_this()](const Notification&) {
            if (auto self = weak.lock()) self->screenChanged();
        });
}

void StatusBarController::screenChanged() {
    std::size_t count = platform.screens.screens().size();
    auto main = platform.screens.mainScreen();
    Rect frame = main ? main->frame : Rect{};
    bool same = count == lastScreenCount && frame == lastMainScreenFrame;
    lastScreenCount = count;
    lastMainScreenFrame = frame;
    if (same) {
        debugLog("[Nevo] Menu bar layout changed, re-enforcing alpha");
        services.scanner.invalidateScanCache();
        auto ownIDs = sectionManager.ownWindowIDs();
        enforceAlwaysHide(ownIDs);
        reassertAlpha(ownIDs);
        decoyController->update();
        spawn(platform.runLoop, takeInRow(weak_from_this()));
        return;
    }
    debugLog("[Nevo] Screen configuration changed, isExpanded=" + describe(appState.isExpanded()));
    if (isDisplayTransitioning) {
        debugLog("[Nevo] Already handling screen change, skipping");
        return;
    }
    isDisplayTransitioning = true;
    bool wasExpanded = appState.isExpanded();
    if (sectionManager.isHiddenDividerCollapsed()) {
        refreshToggleButton();
        sectionManager.setDividerLength(*sectionManager.hiddenDivider, false);
        if (StatusItemButton* button = sectionManager.toggleItem->button()) button->setAlpha(1.0);
    }
    if (nevoBar->isPanelVisible()) nevoBar->dismiss();
    cachedHiddenItems.clear();
    services.scanner.invalidateScanCache();
    lastStableX = -1.0;
    waitForStableAfterScreenChange(0, !wasExpanded);
}

void StatusBarController::waitForStableAfterScreenChange(int attempt, bool reapplyHide) {
    if (attempt > lastAttempt) {
        debugLog("[Nevo] Screen change: gave up waiting for stable position after 20 attempts");
        isDisplayTransitioning = false;
        if (reapplyHide) startOwnCollapse();
        return;
    }
    platform.runLoop.postAfter(pollInterval, [weak = weak_from_this(), attempt, reapplyHide] {
        if (auto self = weak.lock()) self->pollAfterScreenChange(attempt, reapplyHide);
    });
}

void StatusBarController::pollAfterScreenChange(int attempt, bool reapplyHide) {
    if (auto frame = toggleButtonScreenFrame()) {
        bool usable = isPlausibleToggleFrame(*frame);
        debugLog(fmt::format(
            "[Nevo] Screen change attempt {}: x={}, lastStableX={}, usable={}, frame={}", attempt,
            describe(frame->x), describe(lastStableX), describe(usable), describe(*frame)));
        if (usable && std::abs(frame->x - lastStableX) < stableDistance) {
            debugLog(fmt::format(
                "[Nevo] Screen change: toggle stable at x={}, waiting 500ms for items to settle",
                describe(frame->x)));
            savedItemFrame = *frame;
            decoyController->update();
            platform.runLoop.postAfter(itemsSettle, [weak = weak_from_this(), reapplyHide] {
                if (auto self = weak.lock()) self->finishScreenChange(reapplyHide);
            });
            return;
        }
        lastStableX = usable ? frame->x : -1.0;
    } else {
        lastStableX = -1.0;
    }
    waitForStableAfterScreenChange(attempt + 1, reapplyHide);
}

void StatusBarController::finishScreenChange(bool reapplyHide) {
    services.scanner.invalidateScanCache();
    isDisplayTransitioning = false;
    if (!reapplyHide) return;
    debugLog("[Nevo] Screen change: re-applying hide");
    if (appState.isExpanded()) appState.setIsExpanded(false);
    startOwnCollapse();
}

void StatusBarController::recompensatePositionAfterWake(const std::string& reason) {
    // There is no restore panel; the line keeps its form for whoever compares logs.
    debugLog(fmt::format(
        "[Nevo] recompensatePositionAfterWake reason={} restorePanelExists=false isShelfMode={}",
        reason, describe(isShelfMode())));
    for (double delay : wakeRepairDelays) afterDelay(delay, &StatusBarController::repairAfterWake);
}

void StatusBarController::repairAfterWake() {
    postWakeRepair();
    verifyAfterCollapse();
}

void StatusBarController::postWakeRepair() {
    sectionManager.reapplyDividerVisibilityAfterWake();
    if (appState.isExpanded()) {
        StatusItemButton* button = sectionManager.toggleItem->button();
        double alpha = button ? button->alpha() : 1.0;
        if (alpha < 1.0) {
            refreshToggleButton();
            debugLog("[Nevo] post-wake (expanded) force toggleItem alphaValue " + describe(alpha));
        }
        return;
    }
    refreshToggleButton();
    debugLog(
        isShelfMode()
            ? "[Nevo] post-wake (collapsed shelf) dismiss restorePanel + force toggleItem alpha=1"
            : "[Nevo] post-wake (collapsed push) dismiss restorePanel + force real toggle visible");
}

}  // namespace nevo
