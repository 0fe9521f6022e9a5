#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

namespace {

constexpr EventMask dragEvents = maskOf(EventType::leftMouseDown) | maskOf(EventType::leftMouseUp) |
                                 maskOf(EventType::leftMouseDragged);
constexpr double toggleMargin = 8.0;
/// The bar takes its new layout before anything is measured.
constexpr double layoutTurn = 0.08;
constexpr double smallestItem = 10.0;
constexpr double largestItem = 500.0;
/// A drag whose mouse-up was never seen ends by then.
constexpr double lostMouseUp = 10.0;
/// The window server has placed the dropped item by then.
constexpr double dropSettle = 0.15;
constexpr int lastDropAttempt = 4;
constexpr double toggleMoved = 20.0;
constexpr double snapshotSettle = 0.4;

bool isCommandDrag(const Event& event) {
    return event.type == EventType::leftMouseDragged && (event.modifiers & commandModifier) != 0;
}

}  // namespace

void StatusBarController::installDragDetection() {
    auto weak = weak_from_this();
    cmdDragTap = platform.events.createEventTap(dragEvents, [weak](const Event& event) {
        if (auto self = weak.lock()) self->handleTapEvent(event);
    });
    if (cmdDragTap) {
        cmdDragRunLoopSource = cmdDragTap->addToMainRunLoop();
        cmdDragTap->setEnabled(true);
        debugLog("[CmdDrag] event tap created OK");
    } else {
        debugLog("[CmdDrag] event tap FAILED");
    }
    cmdDragGlobalMonitor = platform.events.addGlobalMonitor(dragEvents, [weak](const Event& event) {
        if (auto self = weak.lock()) self->handleDragEvent(event, "global");
    });
    cmdDragLocalMonitor = platform.events.addLocalMonitor(dragEvents, [weak](const Event& event) {
        if (auto self = weak.lock()) self->handleDragEvent(event, "local");
        return false;
    });
    debugLog("[CmdDrag] global+local NSEvent monitors installed");
}

void StatusBarController::handleTapEvent(const Event& event) {
    if (event.type == EventType::tapDisabledByTimeout ||
        event.type == EventType::tapDisabledByUserInput) {
        debugLog(fmt::format("[CmdDrag] tap disabled (type={}), re-enabling",
                             static_cast<std::uint32_t>(event.type)));
        if (cmdDragTap) cmdDragTap->setEnabled(true);
        return;
    }
    // The program's own synthetic drags aren't the user's.
    if (services.mover.programmaticMoveCount() > 0) return;
    if (isStartOfDrag(event)) {
        debugLog("[CmdDrag] tap: dragged with cmd");
        laterOnMain(&StatusBarController::tapDragged);
    } else if (event.type == EventType::leftMouseUp) {
        laterOnMain(&StatusBarController::endDrag);
    }
}

void StatusBarController::tapDragged() {
    // A monitor may have followed it already, up to its end.
    if (!isDraggingMenuBarItem && isPressInMenuBar.value_or(false)) startDrag();
}

void StatusBarController::handleDragEvent(const Event& event, const char* monitor) {
    if (services.mover.programmaticMoveCount() >= 1) return;
    if (isStartOfDrag(event)) {
        debugLog(fmt::format("[CmdDrag] {}: dragged with cmd", monitor));
        startDrag();
    } else if (event.type == EventType::leftMouseUp) {
        endDrag();
    }
}

/// Takes note of each press: a drag that began below the bar is none of an item, wherever it goes.
bool StatusBarController::isStartOfDrag(const Event& event) {
    if (event.type == EventType::leftMouseDown) notePress(event.location);
    if (isDraggingMenuBarItem || !isCommandDrag(event)) return false;
    // Its press came while nobody was listening.
    if (!isPressInMenuBar) notePress(event.location);
    return *isPressInMenuBar;
}

/// What the hand takes is what it has pressed: at the first motion it may be elsewhere.
void StatusBarController::notePress(Point place) {
    isPressInMenuBar = isInMenuBar(place);
    if (isDraggingMenuBarItem || !*isPressInMenuBar) return;
    auto toggle = sectionManager.shownFrame(*sectionManager.toggleItem);
    pressedItem = itemUnder(place);
    // A small item beside the toggle has its own press.
    isPressOnToggle = toggle && (toggle->contains(place) ||
                                 (!pressedItem && toggle->grownBy(toggleMargin).contains(place)));
}

bool StatusBarController::isInMenuBar(Point place) const {
    auto screens = platform.screens.screens();
    auto under = std::find_if(screens.begin(), screens.end(),
                              [place](const Screen& each) { return each.frame.contains(place); });
    auto screen = under == screens.end() ? platform.screens.mainScreen() : std::optional(*under);
    return screen && place.y > screen->frame.maxY() - platform.statusBar.thickness();
}

void StatusBarController::startDrag() {
    // From here on, since the loop is turned below: the drag's next events come in there.
    isDraggingMenuBarItem = true;
    isDraggingNevoToggle = isPressOnToggle;
    draggedWindow = pressedItem;
    preDragToggleFrame.reset();
    preDragPositions.clear();
    if (sectionManager.isHiddenDividerCollapsed()) {
        hasDragOpenedSection = true;
        sectionManager.setDividerLength(*sectionManager.hiddenDivider, false);
        if (StatusItemButton* button = sectionManager.toggleItem->button()) button->setAlpha(1.0);
        auto self = shared_from_this();
        platform.runLoop.turnFor(layoutTurn);
        // A drag that was over before the bar had its new layout has nothing to be measured.
        if (!isDraggingMenuBarItem) return;
    }

    preDragToggleFrame = SectionManager::frame(*sectionManager.toggleItem);
    for (WindowNumber window : otherMenuBarWindows()) {
        auto frame = services.mover.readableFrame(window);
        if (frame && frame->width > smallestItem) preDragPositions[window] = frame->midX();
    }
    debugLog(fmt::format(
        "[CmdDrag] started: divider restored, captured {} baseline positions, draggingToggle={}",
        preDragPositions.size(), describe(isDraggingNevoToggle)));
    cmdDragSafetyTimer = platform.runLoop.timer(lostMouseUp, false, [weak = weak_from_this()] {
        if (auto held = weak.lock()) held->endDrag();
    });
}

void StatusBarController::endDrag() {
    isPressInMenuBar.reset();
    if (!isDraggingMenuBarItem) return;
    bool wasDraggingToggle = isDraggingNevoToggle;
    std::optional<Rect> preFrame = preDragToggleFrame;
    isDraggingMenuBarItem = false;
    isDragSettling = true;
    isDraggingNevoToggle = false;
    preDragToggleFrame.reset();
    cmdDragSafetyTimer.reset();
    debugLog("[CmdDrag] ended");
    platform.runLoop.postAfter(dropSettle, [weak = weak_from_this(), wasDraggingToggle, preFrame] {
        if (auto self = weak.lock()) self->settleDrag(wasDraggingToggle, preFrame, 0);
    });
}

void StatusBarController::settleDrag(bool wasDraggingToggle, std::optional<Rect> preFrame,
                                     int attempt) {
    // A drag that has begun meanwhile does this at its own end.
    if (isDraggingMenuBarItem) return;
    // A slow bar hasn't dropped it yet.
    bool isInHand = draggedWindow && services.mover.isFloating(*draggedWindow);
    if (isInHand && attempt < lastDropAttempt) {
        platform.runLoop.postAfter(
            dropSettle, [weak = weak_from_this(), wasDraggingToggle, preFrame, attempt] {
                if (auto self = weak.lock())
                    self->settleDrag(wasDraggingToggle, preFrame, attempt + 1);
            });
        return;
    }
    isDragSettling = false;
    if (wasDraggingToggle) {
        hasDragOpenedSection = false;
        leaveExpandedAfterDrag();
        return;
    }
    // The hot key may have opened the section for good meanwhile.
    if (appState.isExpanded() && !isShelfMode()) hasDragOpenedSection = false;
    bool wasHoldingItem = draggedWindow.has_value();
    bool changed = reconcileDrag();
    if (shelfController) shelfController->endLostPresentation();
    // A section that was open stays so.
    if (!std::exchange(hasDragOpenedSection, false)) {
        spawn(platform.runLoop, takeInRow(weak_from_this()));
        return;
    }
    auto frame = SectionManager::frame(*sectionManager.toggleItem);
    // Beside an item that a hand has put elsewhere the toggle moves by itself.
    bool moved = !wasHoldingItem && preFrame && frame &&
                 (std::abs(frame->midX() - preFrame->midX()) > toggleMoved ||
                  std::abs(frame->midY() - preFrame->midY()) > toggleMoved);
    if (!changed && moved) {
        leaveExpandedAfterDrag();
        return;
    }
    performCollapse();
    debugLog("[CmdDrag] reconciled and divider re-collapsed");
    spawn(platform.runLoop, refreshAfterDrag(weak_from_this()));
}

Task<> StatusBarController::refreshAfterDrag(std::weak_ptr<StatusBarController> owner) {
    co_await sleep(snapshotSettle);
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& scanner = self->services.scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    self.reset();
    ScannedBarItems items = co_await scanner.scanCached(own, 3.0);
    self = owner.lock();
    if (!self) co_return;
    self->updateSnapshot(items, false);
    const ScannedBarItems& hidden = self->sectionManager.lastExpandedSnapshot[SectionName::hidden];
    debugLog(fmt::format("[CmdDrag] post-drag snapshot refreshed hidden={}", hidden.size()));
    self->cachedHiddenItems = barItems(hidden);
    if (self->isShelfMode()) self->shelf().updateCachedItemsAfterDrag(hidden);
}

/// After the toggle has moved the section stays open, so that the program can't trap itself behind
/// its own divider.
void StatusBarController::leaveExpandedAfterDrag() {
    sectionManager.expand(true);
    refreshToggleButton();
    nevoBar->dismiss();
    cachedHiddenItems.clear();
    appState.setIsExpanded(true);
    hasUserToggled = true;
    if (auto frame = toggleButtonScreenFrame()) savedItemFrame = *frame;
    recordCanonicalToggleX();
    services.scanner.invalidateScanCache();
    debugLog(
        "[CmdDrag] toggle item dragged; left hidden section expanded so Nevo cannot trap itself");
}

bool StatusBarController::reconcileDrag() {
    auto toggle = SectionManager::frame(*sectionManager.toggleItem);
    if (!toggle) return false;
    double dividerX = toggle->midX();
    std::map<WindowNumber, std::string> ids = snapshotIDs();
    bool changed = false;
    for (WindowNumber window : otherMenuBarWindows()) {
        auto frame = services.mover.readableFrame(window);
        if (frame) changed = hideIfDraggedAcross(window, *frame, dividerX, ids) || changed;
    }
    for (WindowNumber window : otherMenuBarWindows()) {
        auto frame = services.mover.readableFrame(window);
        bool isHidden = frame && frame->width > smallestItem && frame->midX() < dividerX;
        auto id = ids.find(window);
        // One that has only just come there isn't the hand's doing.
        auto start = preDragPositions.find(window);
        bool isDragged = window == draggedWindow ||
                         (start != preDragPositions.end() && start->second >= dividerX);
        if (!isDragged || !isHidden || id == ids.end() ||
            appState.iconRule(id->second) != IconRule::alwaysShow)
            continue;
        rulePlaces.forget(id->second);
        appState.setIconRule(IconRule::automatic, id->second);
        if (hasDragOpenedSection) hideDragged(window);
        debugLog(fmt::format("[CmdDrag] reconcile: clear alwaysShow for {} in hidden zone (x={})",
                             id->second, describe(frame->midX())));
        changed = true;
    }
    changed = endRuleOfDragged(ids) || changed;
    preDragPositions.clear();
    services.scanner.invalidateScanCache();
    return changed;
}

/// A hand has taken an always-hidden item out and dropped it among the others: it stays there.
bool StatusBarController::endRuleOfDragged(const std::map<WindowNumber, std::string>& ids) {
    auto window = std::exchange(draggedWindow, std::nullopt);
    auto id = window ? ids.find(*window) : ids.end();
    if (id == ids.end() || appState.iconRule(id->second) != IconRule::alwaysHide) return false;
    auto slot = platform.windows.slotFrame(*window);
    auto frame = services.mover.readableFrame(*window);
    bool isDropped = slot && frame && std::abs(slot->x - frame->x) <= 1.0;
    if (!isDropped || sectionManager.isBehindAlwaysHiddenDivider(slot->midX())) return false;
    rulePlaces.forget(id->second);
    sectionManager.opacity.setRule(*window, false, false);
    appState.setIconRule(IconRule::automatic, id->second);
    return true;
}

/// What a press at `mouse` (origin at the bottom left) takes into the hand: an item that has been
/// brought out lies above the others.
std::optional<WindowNumber> StatusBarController::itemUnder(Point mouse) const {
    auto screens = platform.screens.screens();
    if (screens.empty()) return std::nullopt;
    Point place{mouse.x, screens.front().frame.maxY() - mouse.y};
    std::optional<WindowNumber> hit;
    for (WindowNumber window : otherMenuBarWindows()) {
        auto frame = services.mover.readableFrame(window);
        Point inRow{place.x - platform.windows.roomShift(window), place.y};
        if (!frame || !frame->contains(inRow)) continue;
        bool isOut = sectionManager.opacity.has(ItemOpacity::Reason::broughtOut, window);
        if (!hit || isOut) hit = window;
    }
    return hit;
}

/// True when the item was dragged to the hidden side of the toggle.
bool StatusBarController::hideIfDraggedAcross(WindowNumber window, const Rect& frame,
                                              double dividerX,
                                              const std::map<WindowNumber, std::string>& ids) {
    auto start = preDragPositions.find(window);
    bool isMeasurable = frame.width > smallestItem && frame.width < largestItem && frame.x >= 0;
    if (!isMeasurable || start == preDragPositions.end() || start->second < 0) return false;
    double before = start->second;
    double now = frame.midX();
    bool crossed = now < dividerX && before >= dividerX;
    if (!crossed) return false;
    // An open section goes on showing it.
    if (hasDragOpenedSection) hideDragged(window);
    debugLog(fmt::format("[CmdDrag] reconcile: hide wid={} {}→{} dragged={}", window,
                         describe(before), describe(now), describe(before - now)));
    auto id = ids.find(window);
    if (id != ids.end() && appState.iconRule(id->second) == IconRule::alwaysShow) {
        rulePlaces.forget(id->second);
        appState.setIconRule(IconRule::automatic, id->second);
        debugLog("[CmdDrag] reconcile: clear alwaysShow rule for " + id->second);
    }
    return true;
}

/// The hand decides: no rule keeps in sight what it has put behind the divider.
void StatusBarController::hideDragged(WindowNumber window) {
    sectionManager.opacity.setRule(window, false, false);
    sectionManager.opacity.add(ItemOpacity::Reason::stray, window);
}

}  // namespace nevo
