#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"
#include "core/screenOf.h"
#include "discovery/ItemIdentity.h"

namespace nevo {

namespace {
constexpr double monitorInterval = 2.0;
/// Narrower is a sliver in the middle of a layout, wider is no item.
constexpr double smallestStray = 10.0;
constexpr double largestStray = 500.0;
}  // namespace

void StatusBarController::startItemMonitor() {
    itemMonitorTimer = platform.runLoop.timer(monitorInterval, true, [weak = weak_from_this()] {
        if (auto self = weak.lock()) self->laterOnMain(&StatusBarController::monitorPass);
    });
}

void StatusBarController::monitorPass() {
    if (isBarInMotion() || isShelfIn(ShelfState::Kind::presentingItem)) return;
    auto ownIDs = sectionManager.ownWindowIDs();
    enforceAlwaysShow(ownIDs);
    if (!isShelfMode()) return;
    if (sectionManager.isHiddenDividerCollapsed()) alphaHideStrays(ownIDs);
    enforceAlwaysHide(ownIDs);
    reassertAlpha(ownIDs);
}

/// Items read in mid-flight would be taken for drifted ones.
bool StatusBarController::isBarInMotion() const {
    return isDraggingMenuBarItem || isDisplayTransitioning ||
           services.mover.programmaticMoveCount() >= 1;
}

void StatusBarController::enforceAlwaysShow(const std::set<WindowNumber>& ownIDs) {
    if (isBarInMotion()) return;
    ScannedBarItems all = snapshotItems({SectionName::hidden, SectionName::visible});
    IconRules rules = appState.rules.loadIconRules();
    bool anyRule = std::any_of(rules.begin(), rules.end(), [](const auto& entry) {
        return entry.second == IconRule::alwaysShow;
    });
    if (all.empty() || !anyRule) return;
    auto toggle = SectionManager::frame(*sectionManager.toggleItem);
    double nevoX = toggle ? toggle->x : 0.0;
    bool drift = false;
    for (const ScannedBarItem& item : all) {
        if (ownIDs.contains(item.windowID) || isPhantomID(item.persistedID)) continue;
        auto match = matchIconRule(item, rules, all);
        if (!match || match->second != IconRule::alwaysShow) continue;
        drift = enforceAlwaysShow(item, nevoX) || drift;
    }
    if (!drift || isEnforcingAlwaysShow) return;
    isEnforcingAlwaysShow = true;
    spawn(platform.runLoop, repairDrift(weak_from_this()));
}

/// True when the item has come to stand left of the toggle.
bool StatusBarController::enforceAlwaysShow(const ScannedBarItem& item, double nevoX) {
    preferences.restoreAndLog(item.bundleID, item.persistedID);
    bool isTransparent = sectionManager.alphaHiddenWindows.contains(item.windowID) ||
                         sectionManager.passinglyTransparentWindows.contains(item.windowID);
    if (isTransparent) showByAlpha(item.windowID);
    bool isProtected = alwaysShowProtectedWIDs.contains(item.windowID);
    auto frame = services.mover.readableFrame(item.windowID);
    bool inHiddenZone = nevoX > 0 && frame && frame->x < nevoX;
    if (inHiddenZone) {
        debugLog(fmt::format(
            "[ItemMonitor] alwaysShow drift wid={} protected={} inHiddenZone=true id={}",
            item.windowID, describe(isProtected), item.persistedID));
    } else if (!isProtected) {
        alwaysShowProtectedWIDs.insert(item.windowID);
        debugLog(fmt::format("[ItemMonitor] alwaysShow protected already-visible wid={} id={}",
                             item.windowID, item.persistedID));
    }
    return inHiddenZone;
}

Task<> StatusBarController::repairDrift(std::weak_ptr<StatusBarController> owner) {
    co_await moveAlwaysShowItems(owner);
    if (auto self = owner.lock()) self->isEnforcingAlwaysShow = false;
}

void StatusBarController::alphaHideStrays(const std::set<WindowNumber>& ownIDs) {
    auto toggle = SectionManager::frame(*sectionManager.toggleItem);
    if (!toggle) return;
    auto screen = screenOf(platform.screens, *toggle);
    std::map<WindowNumber, std::string> ids = snapshotIDs();
    IconRules rules = appState.rules.loadIconRules();
    for (WindowNumber window : services.scanner.menuBarWindowIDs()) {
        if (ownIDs.contains(window)) continue;
        auto frame = services.mover.readableFrame(window);
        if (!frame || !(frame->width > smallestStray) || !(frame->width < largestStray)) continue;
        if (screen &&
            !(frame->maxX() > screen->frame.minX() && frame->minX() < screen->frame.maxX()))
            continue;
        if (!(frame->x < toggle->x) || alwaysShowProtectedWIDs.contains(window)) continue;
        auto id = ids.find(window);
        auto rule = id == ids.end() ? rules.end() : rules.find(id->second);
        if (rule != rules.end() && rule->second == IconRule::alwaysShow) continue;
        if (!sectionManager.alphaHiddenWindows.contains(window)) {
            debugLog(fmt::format("[ItemMonitor] alpha-hide wid={} origin.x={} toggleX={}", window,
                                 describe(frame->x), describe(toggle->x)));
        }
        hideByAlpha(window);
    }
}

void StatusBarController::enforceAlwaysHide(const std::set<WindowNumber>& ownIDs) {
    IconRules rules = appState.rules.loadIconRules();
    for (const ScannedBarItem& item : snapshotItems({SectionName::visible})) {
        // What the program in front wants to be seen isn't hidden under its eyes.
        bool isShownByAppRule = appRuleProtectedWIDs.contains(item.windowID);
        if (ownIDs.contains(item.windowID) || isShownByAppRule) continue;
        if (sectionManager.alphaHiddenWindows.contains(item.windowID)) {
            services.mover.setWindowAlpha(item.windowID, 0.0);
            continue;
        }
        auto rule = rules.find(item.persistedID);
        bool hides = rule != rules.end() && rule->second == IconRule::alwaysHide;
        // Nobody would take back what is done for the sake of a phantom's rule.
        if (!hides || isPhantomID(item.persistedID)) continue;
        hideByAlpha(item.windowID);
        debugLog(fmt::format("[ItemMonitor] alwaysHide enforced wid={} id={}", item.windowID,
                             item.persistedID));
    }
}

void StatusBarController::reassertAlpha(const std::set<WindowNumber>& ownIDs) {
    if (isDraggingMenuBarItem) return;
    if (!sectionManager.isHiddenDividerCollapsed() && isShelfIn(ShelfState::Kind::presentingItem))
        return;
    for (WindowNumber window : sectionManager.alphaHiddenWindows) {
        if (ownIDs.contains(window) || alwaysShowProtectedWIDs.contains(window)) continue;
        services.mover.setWindowAlpha(window, 0.0);
    }
}

}  // namespace nevo
