#include <fmt/format.h>

#include <algorithm>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/notificationNames.h"

namespace nevo {

namespace {
constexpr const char* didActivateApplication = "NSWorkspaceDidActivateApplicationNotification";
}

void StatusBarController::observeFrontApplication() {
    frontApplicationObserver = platform.workspaceNotifications.addObserver(
        didActivateApplication, [weak = weak_from_this()](const Notification& notification) {
            if (auto self = weak.lock()) self->handleAppActivation(notification);
        });
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
    auto bundleID = notification.userInfo.find("bundleIdentifier");
    if (bundleID == notification.userInfo.end() || bundleID->second.empty()) return;
    appState.setActiveAppBundleID(bundleID->second);
    restoreAppRuleOverrides();
    AppRules rules = appState.rules.loadAppRules();
    auto rule = rules.find(bundleID->second);
    if (rule == rules.end()) return;
    spawn(platform.runLoop, applyAppRule(weak_from_this(), appRuleGeneration,
                                         rule->second.visibleIcons, rule->second.hiddenIcons));
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
    for (const AlphaOverride& changed : appRuleAlphaOverrides) {
        bool wasOpened = changed.alphaRestoreCount != sectionManager.alphaRestoreCount;
        // Had the rule not shown it, the section's opening would have.
        if (changed.wasAlphaHidden && wasOpened) continue;
        platform.windows.setWindowAlpha(changed.windowID, changed.previousAlpha);
        // Whatever is transparent is in a set that makes it opaque again one day.
        sectionManager.passinglyTransparentWindows.erase(changed.windowID);
        if (changed.wasAlphaHidden) {
            sectionManager.alphaHiddenWindows.insert(changed.windowID);
        } else if (changed.previousAlpha < 1) {
            sectionManager.passinglyTransparentWindows.insert(changed.windowID);
        }
    }
    if (nevoBar->isPanelVisible()) nevoBar->dismiss();
    for (WindowNumber window : appRuleProtectedWIDs) alwaysShowProtectedWIDs.erase(window);
    appRuleAlphaOverrides.clear();
    appRuleProtectedWIDs.clear();
    appRuleActiveForBundleID.reset();
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
    for (const ScannedBarItem& item : items) {
        if (item.bundleID.empty()) continue;
        if (itemMatchesRule(item, hiddenIcons)) {
            self->hideByAppRule(item);
        } else if (itemMatchesRule(item, visibleIcons)) {
            self->showByAppRule(item);
        }
    }
    self->alwaysShowProtectedWIDs.insert(self->appRuleProtectedWIDs.begin(),
                                         self->appRuleProtectedWIDs.end());
    self->appRuleActiveForBundleID = self->appState.activeAppBundleID();
    debugLog(fmt::format("[AppRule] Applied: hide={} show={} overrides={}", hiddenIcons.size(),
                         visibleIcons.size(), self->appRuleAlphaOverrides.size()));
}

/// What the divider hides can't be seen in its place: it goes to the floating bar.
void StatusBarController::showInBar(const ScannedBarItems& items,
                                    const std::set<std::string>& visibleIcons) {
    SectionSnapshot sections = sectionManager.classify(items);
    if (!sectionManager.isHiddenDividerCollapsed()) return;
    std::vector<BarItem> toShow;
    for (const ScannedBarItem& item : sections[SectionName::hidden]) {
        if (itemMatchesRule(item, visibleIcons)) toShow.emplace_back(item);
    }
    if (toShow.empty()) return;
    if (auto frame = toggleButtonScreenFrame()) savedItemFrame = *frame;
    nevoBar->animationsEnabled = appState.animationsEnabled();
    nevoBar->nevoIconX = savedItemFrame.x;
    nevoBar->show(toShow);
    debugLog(fmt::format("[AppRule] Showing {} divider-hidden items in NevoBar", toShow.size()));
}

float StatusBarController::lastingAlpha(WindowNumber window) const {
    // In a blanked bar every item reads as transparent; it won't be in a moment.
    if (sectionManager.blankedWindows.contains(window) &&
        !sectionManager.alphaHiddenWindows.contains(window))
        return 1.0F;
    return platform.windows.windowAlpha(window).value_or(1.0F);
}

bool StatusBarController::isHiddenByAppRule(WindowNumber window) const {
    return !appRuleProtectedWIDs.contains(window) &&
           std::any_of(appRuleAlphaOverrides.begin(), appRuleAlphaOverrides.end(),
                       [window](const auto& changed) { return changed.windowID == window; });
}

void StatusBarController::hideByAppRule(const ScannedBarItem& item) {
    float alpha = lastingAlpha(item.windowID);
    if (alpha <= 0) return;
    appRuleAlphaOverrides.push_back({item.windowID, alpha});
    sectionManager.passinglyTransparentWindows.insert(item.windowID);
    platform.windows.setWindowAlpha(item.windowID, 0.0F);
    debugLog(
        fmt::format("[AppRule] Hide {} ({}) wid={}", item.label, item.bundleID, item.windowID));
}

void StatusBarController::showByAppRule(const ScannedBarItem& item) {
    if (appRuleProtectedWIDs.contains(item.windowID)) return;
    float alpha = lastingAlpha(item.windowID);
    if (alpha >= 1) return;
    bool wasHidden = sectionManager.alphaHiddenWindows.erase(item.windowID) > 0;
    bool wasPassing = sectionManager.passinglyTransparentWindows.erase(item.windowID) > 0;
    // One that was transparent without being kept so has no reason to become so again.
    if (wasHidden || !wasPassing) {
        appRuleAlphaOverrides.push_back(
            {item.windowID, alpha, wasHidden, sectionManager.alphaRestoreCount});
    }
    platform.windows.setWindowAlpha(item.windowID, 1.0F);
    appRuleProtectedWIDs.insert(item.windowID);
    debugLog(fmt::format("[AppRule] Show alpha-hidden {} ({}) wid={}", item.label, item.bundleID,
                         item.windowID));
}

}  // namespace nevo
