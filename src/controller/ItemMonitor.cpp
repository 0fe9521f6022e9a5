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
    if (isBarInMotion()) return;
    if (shelfController) shelfController->endLostPresentation();
    watchRow();
    if (!isShelfIn(ShelfState::Kind::presentingItem)) enforceRules();
    // By what can be seen from now on.
    decoyController->update();
}

void StatusBarController::enforceRules() {
    auto ownIDs = sectionManager.ownWindowIDs();
    enforceAlwaysShow(ownIDs);
    if (!isShelfMode()) return;
    if (sectionManager.isHiddenDividerCollapsed()) alphaHideStrays(ownIDs);
    enforceAlwaysHide(ownIDs);
    reassertAlpha(ownIDs);
}

/// Items read in mid-flight would be taken for drifted ones.
bool StatusBarController::isBarInMotion() const {
    return isDraggingMenuBarItem || isDragSettling || isDisplayTransitioning ||
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
    bool isProtected = sectionManager.opacity.has(ItemOpacity::Reason::shownByRule, item.windowID);
    if (!isProtected || sectionManager.opacity.isTransparent(item.windowID))
        showByRule(item.windowID);
    auto frame = services.mover.readableFrame(item.windowID);
    bool inHiddenZone = nevoX > 0 && frame && frame->x < nevoX;
    if (inHiddenZone) {
        debugLog(fmt::format(
            "[ItemMonitor] alwaysShow drift wid={} protected={} inHiddenZone=true id={}",
            item.windowID, describe(isProtected), item.persistedID));
    } else if (!isProtected) {
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
    ItemOpacity& opacity = sectionManager.opacity;
    std::set<WindowNumber> isProtected = opacity.alwaysShowProtectedWIDs();
    for (WindowNumber window : services.scanner.menuBarWindowIDs()) {
        bool isOut = opacity.has(ItemOpacity::Reason::broughtOut, window);
        if (ownIDs.contains(window) || isOut) continue;
        auto frame = services.mover.readableFrame(window);
        // What has come to stand right of the toggle is no stray any more.
        if (frame && !(frame->x < toggle->x)) opacity.remove(ItemOpacity::Reason::stray, window);
        if (!frame || !(frame->width > smallestStray) || !(frame->width < largestStray)) continue;
        if (screen &&
            !(frame->maxX() > screen->frame.minX() && frame->minX() < screen->frame.maxX()))
            continue;
        if (!(frame->x < toggle->x) || isProtected.contains(window)) continue;
        auto id = ids.find(window);
        auto rule = id == ids.end() ? rules.end() : rules.find(id->second);
        if (rule != rules.end() && rule->second == IconRule::alwaysShow) continue;
        if (!opacity.alphaHiddenWindows().contains(window)) {
            debugLog(fmt::format("[ItemMonitor] alpha-hide wid={} origin.x={} toggleX={}", window,
                                 describe(frame->x), describe(toggle->x)));
        }
        opacity.add(ItemOpacity::Reason::stray, window);
    }
}

void StatusBarController::enforceAlwaysHide(const std::set<WindowNumber>& ownIDs) {
    IconRules rules = appState.rules.loadIconRules();
    ItemOpacity& opacity = sectionManager.opacity;
    for (const ScannedBarItem& item : snapshotItems({SectionName::visible})) {
        if (ownIDs.contains(item.windowID)) continue;
        if (opacity.isTransparent(item.windowID)) {
            opacity.reassert(item.windowID);
            continue;
        }
        auto rule = rules.find(item.persistedID);
        bool hides = rule != rules.end() && rule->second == IconRule::alwaysHide;
        // Nobody would take back what is done for the sake of a phantom's rule.
        bool isKnown = opacity.has(ItemOpacity::Reason::hiddenByRule, item.windowID);
        if (!hides || isKnown || isPhantomID(item.persistedID)) continue;
        // Before the item is known as hidden: whoever sees it next takes its place for a rule's
        // doing.
        rulePlaces.remember(item.windowID, snapshotIDs());
        opacity.setRule(item.windowID, true, false);
        debugLog(fmt::format("[ItemMonitor] alwaysHide enforced wid={} id={}", item.windowID,
                             item.persistedID));
    }
}

void StatusBarController::reassertAlpha(const std::set<WindowNumber>& ownIDs) {
    if (isDraggingMenuBarItem) return;
    if (!sectionManager.isHiddenDividerCollapsed() && isShelfIn(ShelfState::Kind::presentingItem))
        return;
    for (WindowNumber window : sectionManager.opacity.alphaHiddenWindows()) {
        if (!ownIDs.contains(window)) sectionManager.opacity.reassert(window);
    }
}

}  // namespace nevo
