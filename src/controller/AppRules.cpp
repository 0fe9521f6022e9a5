#include <fmt/format.h>

#include <algorithm>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/notificationNames.h"

namespace nevo {

namespace {
constexpr const char* didActivateApplication = "NSWorkspaceDidActivateApplicationNotification";
constexpr const char* didDeactivateApplication = "NSWorkspaceDidDeactivateApplicationNotification";
/// A program that closes one window to open the next leaves nothing in front for a moment.
constexpr double emptyFrontTime = 1.0;
}  // namespace

void StatusBarController::observeFrontApplication() {
    auto weak = weak_from_this();
    notificationObservers.push_back(platform.workspaceNotifications.addObserver(
        didActivateApplication, [weak](const Notification& notification) {
            if (auto self = weak.lock()) self->handleAppActivation(notification);
        }));
    notificationObservers.push_back(platform.workspaceNotifications.addObserver(
        didDeactivateApplication, [weak](const Notification&) {
            if (auto self = weak.lock()) self->handleEmptyFront();
        }));
}

void StatusBarController::observeAppRules() {
    auto weak = weak_from_this();
    notificationObservers.push_back(platform.notifications.addObserver(
        nevoAppRulesChanged, [weak](const Notification& notification) {
            auto changed = notification.userInfo.find("appBundleID");
            std::string bundleID = changed == notification.userInfo.end() ? "" : changed->second;
            if (auto self = weak.lock())
                spawn(self->platform.runLoop, reapplyAppRule(weak, bundleID));
        }));
}

void StatusBarController::handleAppActivation(const Notification& notification) {
    bool wasFrontEmpty = static_cast<bool>(emptyFrontTimer);
    emptyFrontTimer.reset();
    auto bundleID = notification.userInfo.find("bundleIdentifier");
    if (bundleID == notification.userInfo.end() || bundleID->second.empty()) return;
    // Back in time: its rule has stayed in force.
    if (wasFrontEmpty && bundleID->second == appState.activeAppBundleID()) return;
    appState.setActiveAppBundleID(bundleID->second);
    restoreAppRuleOverrides();
    AppRules rules = appState.rules.loadAppRules();
    auto rule = rules.find(bundleID->second);
    if (rule == rules.end()) return;
    spawn(platform.runLoop, applyAppRule(weak_from_this(), appRuleGeneration,
                                         rule->second.visibleIcons, rule->second.hiddenIcons));
}

void StatusBarController::handleEmptyFront() {
    emptyFrontTimer = platform.runLoop.timer(emptyFrontTime, false, [weak = weak_from_this()] {
        auto self = weak.lock();
        if (!self) return;
        self->emptyFrontTimer.reset();
        self->appState.setActiveAppBundleID("");
        self->restoreAppRuleOverrides();
    });
}

Task<> StatusBarController::reapplyAppRule(std::weak_ptr<StatusBarController> owner,
                                           std::string bundleID) {
    auto self = owner.lock();
    if (!self || bundleID.empty() || bundleID != self->appState.activeAppBundleID()) co_return;
    self->restoreAppRuleOverrides();
    AppRules rules = self->appState.rules.loadAppRules();
    auto rule = rules.find(bundleID);
    if (rule == rules.end()) co_return;
    std::set<std::string> visible = rule->second.visibleIcons;
    std::set<std::string> hidden = rule->second.hiddenIcons;
    int generation = self->appRuleGeneration;
    self.reset();
    co_await applyAppRule(owner, generation, visible, hidden);
}

void StatusBarController::restoreAppRuleOverrides() {
    // Calls off an apply that still waits for its scan: it was for an application that has lost the
    // front, or for a rule that has changed. It has changed nothing yet, so nothing is lost.
    ++appRuleGeneration;
    if (!appRuleActiveForBundleID) return;
    debugLog("[AppRule] Restoring overrides for " + *appRuleActiveForBundleID);
    sectionManager.opacity.removeAll(ItemOpacity::Reason::hiddenInFront);
    sectionManager.opacity.removeAll(ItemOpacity::Reason::shownInFront);
    if (isShelfIn(ShelfState::Kind::panelVisible)) {
        shelfController->dismissShelf();
    } else if (nevoBar->isPanelVisible()) {
        nevoBar->dismiss();
    }
    appRuleActiveForBundleID.reset();
    decoyController->update();
}

/// To items that have come since the rule came into force. Does nothing without one.
void StatusBarController::applyFrontRule(const ScannedBarItems& items) {
    if (!appRuleActiveForBundleID) return;
    const ItemOpacity& opacity = sectionManager.opacity;
    bool showsMore = false;
    for (const ScannedBarItem& item : items) {
        if (item.bundleID.empty()) continue;
        if (itemMatchesRule(item, frontRule.hiddenIcons)) {
            if (!opacity.has(ItemOpacity::Reason::hiddenInFront, item.windowID))
                hideByAppRule(item);
        } else if (itemMatchesRule(item, frontRule.visibleIcons)) {
            if (opacity.has(ItemOpacity::Reason::shownInFront, item.windowID)) continue;
            showByAppRule(item);
            showsMore = true;
        }
    }
    if (isShelfIn(ShelfState::Kind::panelVisible)) return;
    if (nevoBar->isOpen()) {
        nevoBar->renew(itemsForBar(items, frontRule.visibleIcons), true);
    } else if (showsMore) {
        showInBar(items, frontRule.visibleIcons);
    }
}

void StatusBarController::showFrontRuleInBar() {
    if (appRuleActiveForBundleID)
        showInBar(snapshotItems({SectionName::hidden, SectionName::visible}),
                  frontRule.visibleIcons);
}

Task<> StatusBarController::applyAppRule(std::weak_ptr<StatusBarController> owner, int generation,
                                         std::set<std::string> visibleIcons,
                                         std::set<std::string> hiddenIcons) {
    if (visibleIcons.empty() && hiddenIcons.empty()) co_return;
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& scanner = self->services.scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    self.reset();
    ScannedBarItems items = co_await scanner.scan(own, true);
    self = owner.lock();
    // Two applies never both change something: the later one's restore has called this one off.
    if (!self || self->appRuleGeneration != generation) co_return;

    self->showInBar(items, visibleIcons);
    int overrides = 0;
    for (const ScannedBarItem& item : items) {
        if (item.bundleID.empty()) continue;
        if (itemMatchesRule(item, hiddenIcons)) {
            overrides += self->hideByAppRule(item) ? 1 : 0;
        } else if (itemMatchesRule(item, visibleIcons)) {
            overrides += self->showByAppRule(item) ? 1 : 0;
        }
    }
    self->appRuleActiveForBundleID = self->appState.activeAppBundleID();
    self->frontRule = {visibleIcons, hiddenIcons};
    self->decoyController->update();
    debugLog(fmt::format("[AppRule] Applied: hide={} show={} overrides={}", hiddenIcons.size(),
                         visibleIcons.size(), overrides));
}

/// What a divider hides can't be seen in its place. In an open section that is what its own rule
/// hides always.
std::vector<BarItem> StatusBarController::itemsForBar(
    const ScannedBarItems& items, const std::set<std::string>& visibleIcons) const {
    SectionSnapshot sections = sectionManager.classify(items);
    bool isClosed = sectionManager.isHiddenDividerCollapsed();
    std::set<WindowNumber> pinned = pinnedWindows();
    std::vector<BarItem> result;
    for (const ScannedBarItem& item : sections[SectionName::hidden]) {
        bool isOutOfSight = isClosed || pinned.contains(item.windowID);
        if (isOutOfSight && itemMatchesRule(item, visibleIcons)) result.emplace_back(item);
    }
    return result;
}

/// An open shelf has these items already, and whoever has opened it is using it.
void StatusBarController::showInBar(const ScannedBarItems& items,
                                    const std::set<std::string>& visibleIcons) {
    std::vector<BarItem> toShow = itemsForBar(items, visibleIcons);
    bool isShelfOpen = isShelfIn(ShelfState::Kind::panelVisible) && nevoBar->isOpen();
    if (toShow.empty() || isShelfOpen) return;
    if (auto frame = toggleButtonScreenFrame()) savedItemFrame = *frame;
    nevoBar->animationsEnabled = appState.animationsEnabled();
    nevoBar->nevoIconX = savedItemFrame.x;
    nevoBar->show(toShow);
    debugLog(fmt::format("[AppRule] Showing {} divider-hidden items in NevoBar", toShow.size()));
}

float StatusBarController::lastingAlpha(WindowNumber window) const {
    // In a blanked bar every item reads as transparent; it won't be in a moment.
    const ItemOpacity& opacity = sectionManager.opacity;
    if (opacity.has(ItemOpacity::Reason::blanked, window))
        return opacity.alphaHiddenWindows().contains(window) ? 0.0F : 1.0F;
    return platform.windows.windowAlpha(window).value_or(1.0F);
}

bool StatusBarController::hideByAppRule(const ScannedBarItem& item) {
    bool wasInSight = lastingAlpha(item.windowID) > 0;
    sectionManager.opacity.add(ItemOpacity::Reason::hiddenInFront, item.windowID);
    if (wasInSight) {
        debugLog(
            fmt::format("[AppRule] Hide {} ({}) wid={}", item.label, item.bundleID, item.windowID));
    }
    return wasInSight;
}

bool StatusBarController::showByAppRule(const ScannedBarItem& item) {
    bool wasHidden = lastingAlpha(item.windowID) < 1;
    sectionManager.opacity.add(ItemOpacity::Reason::shownInFront, item.windowID);
    if (wasHidden) {
        debugLog(fmt::format("[AppRule] Show alpha-hidden {} ({}) wid={}", item.label,
                             item.bundleID, item.windowID));
    }
    return wasHidden;
}

}  // namespace nevo
