#include <fmt/format.h>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"

namespace nevo {

namespace {

/// Clicks that come faster than this are one click.
constexpr double toggleGuardTime = 0.1;
/// The bar's layout needs a moment before the toggle's new place can be read.
constexpr double collapseSettleTime = 0.08;

}  // namespace

void StatusBarController::toggle(bool byKeys) {
    if (!platform.accessibility.isProcessTrusted()) {
        auto weak = weak_from_this();
        auto ready = [weak] {
            if (auto self = weak.lock()) self->permissionsAnswered();
        };
        auto complete = [weak] {
            auto self = weak.lock();
            if (self && self->platform.accessibility.isProcessTrusted())
                self->permissionsAnswered();
        };
        services.onboarding.showPermissions(ready, complete);
        return;
    }
    if (isShelfMode() && !services.screenCapture.hasPermission()) {
        showShelfScreenRecordingPrompt();
        return;
    }
    hasUserToggled = true;
    if (isShelfMode()) {
        toggleShelfMode(byKeys);
    } else {
        togglePushMode();
    }
}

void StatusBarController::permissionsAnswered() {
    startFirstCollapse();
    if (platform.accessibility.isProcessTrusted()) services.accessibilityGranted();
}

void StatusBarController::togglePushMode() {
    if (isToggling) return;
    isToggling = true;
    if (!appState.isExpanded()) {
        expandHiddenSection();
        resetAutoHideTimer();
    } else {
        startCollapse(nullptr);
    }
    afterDelay(toggleGuardTime, &StatusBarController::clearIsToggling);
}

void StatusBarController::toggleShelfMode(bool byKeys) {
    if (!services.screenCapture.hasPermission()) {
        showShelfScreenRecordingPrompt();
        return;
    }
    // A change of displays may have put the shelf in force.
    shelf().bindBarCallbacks();
    auto weak = weak_from_this();
    if (appState.isExpanded() || !sectionManager.isHiddenDividerCollapsed()) {
        debugLog("[Shelf] toggle repairing expanded shelf section before opening");
        startCollapse([weak, byKeys] {
            if (auto self = weak.lock()) self->shelf().toggle("repairShelf", byKeys);
        });
        return;
    }
    shelf().toggle("toggleShelf", byKeys);
    settleShelfSoon();
}

void StatusBarController::startCollapse(std::function<void()> completion) {
    // Without a frame the last known one serves.
    if (auto frame = toggleButtonScreenFrame()) savedItemFrame = *frame;
    spawn(platform.runLoop,
          collapseAfterScan(weak_from_this(), std::move(completion), savedItemFrame.minX()));
}

Task<> StatusBarController::collapseAfterScan(std::weak_ptr<StatusBarController> owner,
                                              std::function<void()> completion, double toggleX) {
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& scanner = self->services.scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    bool shelfMode = self->isShelfMode();
    self.reset();

    ScannedBarItems items;
    if (shelfMode) {
        items = co_await scanner.scanCached(own, 3.0);
    } else {
        items = co_await scanner.scan(own, false, toggleX);
    }
    self = owner.lock();
    if (!self) co_return;

    if (shelfMode) {
        self->updateSnapshot(items, false);
        const ScannedBarItems hidden =
            self->sectionManager.lastExpandedSnapshot[SectionName::hidden];
        self->cachedHiddenItems = barItems(hidden);
        if (hidden.empty())
            debugLog("[Nevo] No shelf items found; collapsing shelf boundary anyway.");
        self->appState.setIsExpanded(false);
        self->performCollapse();
        self->shelf().onItemsPushed(hidden, self->savedItemFrame);
        if (!hidden.empty() && completion) completion();
        co_return;
    }
    if (items.empty()) {
        self->cachedHiddenItems.clear();
        debugLog(
            "[Nevo] No items to hide (≡ is leftmost). Cmd+drag ≡ to the right to set divider "
            "position.");
        co_return;
    }
    self->collapsePushSection(barItems(items));
}

/// A program whose item comes later finds the section closed.
void StatusBarController::startOwnCollapse() {
    if (auto frame = toggleButtonScreenFrame()) savedItemFrame = *frame;
    if (isShelfMode()) {
        spawn(platform.runLoop,
              collapseAfterScan(weak_from_this(), nullptr, savedItemFrame.minX()));
    } else {
        spawn(platform.runLoop, collapseUnasked(weak_from_this(), savedItemFrame.minX()));
    }
}

Task<> StatusBarController::collapseUnasked(std::weak_ptr<StatusBarController> owner,
                                            double toggleX) {
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& scanner = self->services.scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    bool hadToggled = self->hasUserToggled;
    self.reset();
    ScannedBarItems items = co_await scanner.scan(own, false, toggleX);
    self = owner.lock();
    // A click meanwhile counts.
    if (!self || self->hasUserToggled != hadToggled) co_return;
    self->collapsePushSection(barItems(items));
}

void StatusBarController::collapsePushSection(std::vector<BarItem> hiding) {
    cachedHiddenItems = std::move(hiding);
    appState.setIsExpanded(false);
    performCollapse();
}

void StatusBarController::performCollapse() {
    preferences.syncSeparatorPosition();
    sectionManager.setDividerLength(*sectionManager.hiddenDivider, true);
    refreshToggleButton();
    showFrontRuleInBar();
    afterDelay(collapseSettleTime, &StatusBarController::verifyAfterCollapse);
}

void StatusBarController::verifyAfterCollapse() {
    compensateDrift();
    rescueTogglePosition();
}

void StatusBarController::expandHiddenSection() {
    // What a rule of the front application has put there is in the row now.
    nevoBar->dismiss();
    refreshToggleButton();
    cachedHiddenItems.clear();
    appState.setIsExpanded(true);
    refreshToggleButton();
    sectionManager.expand(true);
    showFrontRuleInBar();
}

void StatusBarController::expandAndClickItem(const BarItem& item) {
    // No open section shows it.
    if (pinnedWindows().contains(item.windowID)) {
        bringOut(item.persistedID);
        return;
    }
    debugLog(fmt::format("[Nevo] expandAndClickItem wid={} — expanding for user interaction",
                         item.windowID));
    hasUserToggled = true;
    autoHideTimer.reset();
    expandHiddenSection();
    resetAutoHideTimer();
}

}  // namespace nevo
