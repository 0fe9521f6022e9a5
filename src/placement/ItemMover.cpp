#include "placement/ItemMover.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "core/debugLog.h"
#include "core/describe.h"
#include "placement/RowSlots.h"

namespace nevo {

namespace {

constexpr int maxAttempts = 4;
constexpr double mouseDownDelay = 0.020;
constexpr double dragStepDelay = 0.015;
constexpr double completionDelay = 0.100;
/// A bar may take its time to lay out; after so many looks it has refused.
constexpr int mostLooks = 8;
constexpr double warpSettle = 0.005;
constexpr double cursorRestoreSettle = 0.010;
/// How long after a move its late events may still arrive.
constexpr double moveCountLinger = 0.3;

constexpr double directMoveSettle = 0.100;
/// Points; frames come in whole pixels.
constexpr double floatTolerance = 1.0;
constexpr double offscreenStepDelay = 0.020;
constexpr Point parkingPoint{20000.0, 20000.0};

}  // namespace

ItemMover::ItemMover(const Platform& desktop) : platform(desktop) {}

void ItemMover::beginProgrammaticMove() { ++moveCount; }

void ItemMover::endProgrammaticMove() {
    platform.runLoop.postAfter(moveCountLinger, [this] { moveCount = std::max(0, moveCount - 1); });
}

Task<bool> ItemMover::moveItem(WindowNumber windowID, Point target) {
    auto frame = readableFrame(windowID);
    if (!frame) co_return false;
    auto source = platform.events.createEventSource();
    if (!source) co_return false;
    Place place = placeAt(windowID, target.x);
    if (hasArrived(place)) co_return true;

    beginProgrammaticMove();
    Point cursor = cursorAtTopLeftOrigin();
    Point start = frame->center();
    Point mid{(start.x + target.x) * 0.5, target.y};
    platform.windows.setSetsCursorInBackground(true);
    platform.events.hideCursor();

    bool moved = false;
    bool mayFallBack = true;
    for (int number = 1; number <= maxAttempts; ++number) {
        Attempt outcome = dragOnce(*source, place, number, start, mid, target);
        moved = outcome == Attempt::moved;
        bool cancelled = co_await isCancelled();
        if (moved) break;
        if (outcome == Attempt::eventFailed || cancelled) {
            mayFallBack = false;
            break;
        }
    }
    if (!moved && mayFallBack) moved = moveByFallback(place, target);
    restoreCursor(cursor);
    endProgrammaticMove();
    co_return moved;
}

ItemMover::Place ItemMover::placeAt(WindowNumber windowID, double targetX) const {
    Place place{windowID, {}};
    // The row's rule at a drop: before the first that isn't further left. What has given way is
    // where the order has it, not where it stands.
    bool isLeft = true;
    for (const RowSlot& slot : rowSlots(platform.windows)) {
        if (slot.window == windowID) continue;
        isLeft = isLeft && (slot.hasGivenWay || slot.frame.midX() < targetX);
        place.isLeft[slot.window] = isLeft;
    }
    return place;
}

/// Items that have come or gone meanwhile don't count.
bool ItemMover::hasArrived(const Place& place) const {
    bool isLeft = true;
    bool asWanted = true;
    for (const RowSlot& slot : rowSlots(platform.windows)) {
        if (slot.window == place.windowID) isLeft = false;
        auto wanted = place.isLeft.find(slot.window);
        if (wanted != place.isLeft.end()) asWanted = asWanted && wanted->second == isLeft;
    }
    return asWanted && !isLeft;
}

ItemMover::Attempt ItemMover::dragOnce(EventSource& source, const Place& place, int number,
                                       Point start, Point mid, Point target) {
    WindowNumber windowID = place.windowID;
    RunLoop& loop = platform.runLoop;
    Events& events = platform.events;
    auto before = readableFrame(windowID);
    events.warpCursor(start);
    loop.blockFor(warpSettle);

    auto down = moveEvent(source, EventType::leftMouseDown, start, windowID);
    if (!down) return Attempt::eventFailed;
    events.post(*down);
    loop.blockFor(mouseDownDelay);
    for (Point step : {mid, target}) {
        auto drag = moveEvent(source, EventType::leftMouseDragged, step, windowID);
        if (!drag) continue;
        events.warpCursor(step);
        events.post(*drag);
        loop.blockFor(dragStepDelay);
    }
    auto up = moveEvent(source, EventType::leftMouseUp, target, windowID);
    if (!up) return Attempt::eventFailed;
    events.post(*up);
    loop.blockFor(completionDelay);

    auto after = readableFrame(windowID);
    auto origin = [](const std::optional<Rect>& frame) {
        return frame ? describe(Point{frame->x, frame->y}) : "(0, 0)";
    };
    debugLog(fmt::format("[SBC] moveItem attempt={} wid={} before={} after={}", number, windowID,
                         origin(before), origin(after)));
    return after && hasArrived(place) ? Attempt::moved : Attempt::notMoved;
}

/// A bar may only let the item float at the target, where it would cover others and be lost with
/// the next layout.
bool ItemMover::moveByFallback(const Place& place, Point target) {
    WindowNumber windowID = place.windowID;
    auto frame = readableFrame(windowID);
    if (!frame) return false;
    Point to{target.x, frame->y};
    bool ok = platform.windows.moveWindow(windowID, to);
    debugLog(fmt::format("[SBC] moveItem SLSMoveWindow fallback wid={} to={} ok={}", windowID,
                         describe(to), describe(ok)));
    if (ok && hasArrived(place)) return true;
    if (auto slot = platform.windows.slotFrame(windowID))
        platform.windows.moveWindow(windowID, {slot->x, slot->y});
    return false;
}

Task<bool> ItemMover::reorderInPlace(WindowNumber windowID, Point target) {
    Place place = placeAt(windowID, target.x);
    if (hasArrived(place)) co_return true;
    bool moved = co_await offscreenSyntheticDrag(windowID, target);
    co_return moved;
}

Task<bool> ItemMover::moveForShelf(BarItem item, Point target) {
    auto frame = readableFrame(item.windowID);
    if (!frame) co_return false;
    if (standsInSight(item.windowID)) co_return true;
    moveWindowDirectly(item.windowID, "direct", *frame, target.x);
    // A slow bar has its time.
    for (int looks = 1; looks < mostLooks && !isFloating(item.windowID); ++looks)
        co_await sleep(directMoveSettle);
    co_return isFloating(item.windowID);
}

bool ItemMover::isFloating(WindowNumber windowID) const {
    auto frame = readableFrame(windowID);
    auto slot = platform.windows.slotFrame(windowID);
    return frame && slot && std::abs(frame->x - slot->x) > floatTolerance;
}

bool ItemMover::standsInSight(WindowNumber windowID) const {
    auto slot = platform.windows.slotFrame(windowID);
    auto end = platform.statusBar.systemAreaLeft();
    auto screens = platform.screens.screens();
    return slot && end && !screens.empty() && slot->width > 0 &&
           slot->x >= screens.front().frame.minX() && slot->maxX() <= *end;
}

void ItemMover::moveWindowDirectly(WindowNumber windowID, const std::string& label, Rect frame,
                                   double targetCenterX) {
    Point to{targetCenterX - frame.width * 0.5, frame.y};
    bool ok = platform.windows.moveWindow(windowID, to);
    debugLog(fmt::format("[Shelf] moveItem SLSMoveWindow {} wid={} to={} ok={}", label, windowID,
                         describe(to), describe(ok)));
    platform.runLoop.blockFor(directMoveSettle);
}

Task<bool> ItemMover::offscreenSyntheticDrag(WindowNumber windowID, Point target) {
    auto source = platform.events.createEventSource();
    if (!source) co_return false;
    beginProgrammaticMove();

    Place place = placeAt(windowID, target.x);
    Point mid{(target.x + parkingPoint.x) * 0.5, target.y};
    std::array<std::optional<MouseEvent>, 4> events{
        moveEvent(*source, EventType::leftMouseDown, parkingPoint, windowID),
        moveEvent(*source, EventType::leftMouseDragged, mid, windowID),
        moveEvent(*source, EventType::leftMouseDragged, target, windowID),
        moveEvent(*source, EventType::leftMouseUp, target, windowID),
    };
    auto owner = platform.windows.windowDescription(windowID);
    for (auto& event : events) {
        if (!event) {
            endProgrammaticMove();
            co_return false;
        }
        if (owner && owner->ownerPid) event->fields[EventField::targetProcess] = *owner->ownerPid;
    }
    debugLog(
        fmt::format("[Shelf] direct move failed; safe synthetic drag wid={} "
                    "fromOffscreen=(20000,20000) dest=({},{})",
                    windowID, describeWhole(target.x), describeWhole(target.y)));
    for (auto& event : events) {
        platform.events.post(*event);
        // Blocking, so that a cancelled task can't leave the button pressed or hurry the drag.
        platform.runLoop.blockFor(offscreenStepDelay);
    }
    bool arrived = false;
    for (int look = 0; look < mostLooks && !arrived; ++look) {
        co_await sleep(completionDelay);
        arrived = hasArrived(place);
    }
    endProgrammaticMove();
    co_return arrived;
}

std::optional<MouseEvent> ItemMover::moveEvent(EventSource& source, EventType type, Point at,
                                               WindowNumber windowID) {
    auto event = platform.events.createMouseEvent(source, type, at);
    if (!event) return std::nullopt;
    event->flags = commandModifier;
    event->fields[EventField::windowUnderPointer] = windowID;
    event->fields[EventField::windowUnderPointerThatCanHandle] = windowID;
    event->fields[EventField::windowNumber] = windowID;
    return event;
}

std::optional<Rect> ItemMover::readableFrame(WindowNumber windowID) const {
    auto frame = platform.windows.windowFrame(windowID);
    return frame && !frame->isEmpty() ? frame : std::nullopt;
}

/// Both origins are corners of the main display, which is the first, wherever the pointer is.
Point ItemMover::cursorAtTopLeftOrigin() const {
    Point place = platform.events.mouseLocation();
    auto screens = platform.screens.screens();
    return screens.empty() ? place : Point{place.x, screens.front().frame.maxY() - place.y};
}

void ItemMover::restoreCursor(Point place) {
    platform.events.warpCursor(place);
    platform.runLoop.blockFor(cursorRestoreSettle);
    platform.events.showCursor();
}

}  // namespace nevo
