#include <fmt/format.h>

#include <algorithm>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

namespace {
constexpr double blankDwell = 0.5;
constexpr double hoverMargin = 2.0;
constexpr double openingClickTime = 0.2;
/// A narrower window in the status layer is no item that one could see.
constexpr double smallestItemWidth = 5.0;
}  // namespace

void StatusBarController::installTriggerMonitors() {
    auto weak = weak_from_this();
    auto later = [weak](void (StatusBarController::*action)()) {
        if (auto self = weak.lock()) self->laterOnMain(action);
    };
    EventMask moved = maskOf(EventType::mouseMoved);
    hoverMonitor = platform.events.addGlobalMonitor(
        moved, [later](const Event&) { later(&StatusBarController::mouseMoved); });
    localHoverMonitor = platform.events.addLocalMonitor(moved, [later](const Event&) {
        later(&StatusBarController::mouseMoved);
        return false;
    });
    clickOutsideMonitor = platform.events.addGlobalMonitor(
        maskOf(EventType::leftMouseDown) | maskOf(EventType::rightMouseDown),
        [later](const Event&) { later(&StatusBarController::clickedOutside); });
    // A press that closes the shelf doesn't open it again: what counts is what it found.
    blankClickMonitor = platform.events.addGlobalMonitor(
        maskOf(EventType::leftMouseDown), [weak, later](const Event&) {
            auto self = weak.lock();
            if (self && self->isBlankTriggerEligible()) later(&StatusBarController::blankClicked);
        });
}

/// A trigger in the blank area only opens: the hidden section is closed and nothing shows.
bool StatusBarController::isBlankTriggerEligible() const {
    if (!isShelfMode()) return !appState.isExpanded();
    return sectionManager.isHiddenDividerCollapsed() && !nevoBar->isPanelVisible();
}

bool StatusBarController::isBlankMenuBarPoint(Point point) const {
    auto systemArea = platform.statusBar.systemAreaLeft();
    auto screen = platform.screens.mainScreen();
    if (!screen || !systemArea) return false;
    double top = screen->frame.maxY();
    bool isInRow = point.x >= screen->frame.x && point.x < *systemArea && point.y <= top &&
                   point.y > top - platform.statusBar.thickness();
    if (!isInRow || decoyController->shows(point)) return false;
    auto windows = platform.windows.windowList(WindowListOption::onScreenOnly);
    if (!windows) return false;
    auto own = sectionManager.ownWindowIDs();
    if (auto toggleWindow = toggleWindowID()) own.erase(*toggleWindow);
    return std::none_of(windows->begin(), windows->end(), [&](const WindowDescription& window) {
        bool isItem = window.layer == statusItemWindowLevel && window.bounds && window.number &&
                      window.bounds->width > smallestItemWidth && !own.contains(*window.number);
        if (!isItem) return false;
        double shift = platform.windows.roomShift(*window.number);
        return window.bounds->contains({point.x - shift, top - point.y}) &&
               platform.windows.windowAlpha(*window.number).value_or(1.0F) > 0;
    });
}

void StatusBarController::blankClicked() {
    if (appState.triggerMode() != "clickBlank" || !isBlankTriggerEligible()) return;
    if (isBlankMenuBarPoint(platform.events.mouseLocation())) toggle();
}

void StatusBarController::clickedOutside() {
    if (!nevoBar->isPanelVisible()) return;
    bool shelfMode = isShelfMode();
    // The click that opened the bar isn't a click outside.
    if (shelfMode && !(platform.runLoop.now() - shelf().panelOpenedAt() > openingClickTime)) return;
    if (nevoBar->panelFrame().contains(platform.events.mouseLocation())) return;
    if (isShelfIn(ShelfState::Kind::panelVisible)) {
        shelf().dismissShelf();
    } else {
        // A rule of the front application has opened it.
        nevoBar->dismiss();
    }
}

void StatusBarController::mouseMoved() {
    if (isContextMenuShowing) return;
    Point mouse = platform.events.mouseLocation();
    if (appState.triggerMode() == "hoverBlank") {
        if (isBlankTriggerEligible() && isBlankMenuBarPoint(mouse)) {
            startBlankDwell();
            return;
        }
        blankHoverTimer.reset();
    }
    if (!appState.showOnHover() || appState.isExpanded()) return;
    auto window = sectionManager.shownFrame(*sectionManager.toggleItem);
    if (!window) return;
    Rect area = window->grownBy(hoverMargin);
    if (!area.contains(mouse)) return;
    double delay = appState.hoverDelay();
    debugLog(fmt::format("[Hover] mouse in button area, scheduling delay={}s frame={} mouse={}",
                         describe(delay), describe(area), describe(mouse)));
    platform.runLoop.postAfter(delay, [weak = weak_from_this(), area] {
        if (auto self = weak.lock()) self->checkHover(area);
    });
}

void StatusBarController::startBlankDwell() {
    if (blankHoverTimer) return;
    blankHoverTimer = platform.runLoop.timer(blankDwell, false, [weak = weak_from_this()] {
        if (auto self = weak.lock()) self->laterOnMain(&StatusBarController::blankDwellEnded);
    });
}

void StatusBarController::blankDwellEnded() {
    // The hot key may have opened the section while the pointer rested.
    if (isBlankTriggerEligible() && isBlankMenuBarPoint(platform.events.mouseLocation())) toggle();
    blankHoverTimer.reset();
}

void StatusBarController::checkHover(const Rect& area) {
    if (!appState.showOnHover() || appState.isExpanded()) {
        debugLog(fmt::format("[Hover] delayed guard failed: showOnHover={} isExpanded={}",
                             describe(appState.showOnHover()), describe(appState.isExpanded())));
    } else if (isShelfMode() && nevoBar->isPanelVisible()) {
        debugLog("[Hover] shelf guard failed: isShelfMode=true nevoBarVisible=true");
    } else if (area.contains(platform.events.mouseLocation())) {
        debugLog("[Hover] triggering toggle()");
        toggle();
    } else {
        debugLog("[Hover] mouse left button area before delay completed");
    }
}

}  // namespace nevo
