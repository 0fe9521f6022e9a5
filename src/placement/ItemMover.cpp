#include "placement/ItemMover.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

namespace {

constexpr int maxAttempts = 4;
constexpr double mouseDownDelay = 0.020;
constexpr double dragStepDelay = 0.015;
constexpr double completionDelay = 0.100;
constexpr double warpSettle = 0.005;
constexpr double cursorRestoreSettle = 0.010;
constexpr double successDistance = 100.0;
/// How long after a move its late events may still arrive.
constexpr double moveCountLinger = 0.3;

constexpr double directMoveSettle = 0.100;
constexpr double arrivalDistance = 50.0;
constexpr double offscreenStepDelay = 0.020;
constexpr Point parkingPoint{20000.0, 20000.0};

}  // namespace

ItemMover::ItemMover(const Platform& desktop) : platform(desktop) {}

void ItemMover::beginProgrammaticMove() { ++moveCount; }

void ItemMover::endProgrammaticMove() {
    platform.runLoop.postAfter(moveCountLinger, [this] { moveCount = std::max(0, moveCount - 1); });
}

bool ItemMover::setWindowAlpha(WindowNumber windowID, double alpha) {
    return platform.windows.setWindowAlpha(windowID, static_cast<float>(alpha));
}

Task<bool> ItemMover::moveItem(WindowNumber windowID, Point target) {
    auto frame = readableFrame(windowID);
    if (!frame) co_return false;
    auto source = platform.events.createEventSource();
    if (!source) co_return false;

    beginProgrammaticMove();
    Point cursor = cursorAtTopLeftOrigin();
    Point start = frame->center();
    Point mid{(start.x + target.x) * 0.5, target.y};
    platform.windows.setSetsCursorInBackground(true);
    platform.events.hideCursor();

    bool moved = false;
    bool mayFallBack = true;
    for (int number = 1; number <= maxAttempts; ++number) {
        Attempt outcome = dragOnce(*source, windowID, number, start, mid, target);
        moved = outcome == Attempt::moved;
        bool cancelled = co_await isCancelled();
        if (moved) break;
        if (outcome == Attempt::eventFailed || cancelled) {
            mayFallBack = false;
            break;
        }
    }
    if (!moved && mayFallBack) moved = moveByFallback(windowID, target);
    restoreCursor(cursor);
    endProgrammaticMove();
    co_return moved;
}

ItemMover::Attempt ItemMover::dragOnce(EventSource& source, WindowNumber windowID, int number,
                                       Point start, Point mid, Point target) {
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
    bool moved = before && after && std::abs(after->x - before->x) > successDistance;
    return moved ? Attempt::moved : Attempt::notMoved;
}

bool ItemMover::moveByFallback(WindowNumber windowID, Point target) {
    auto frame = readableFrame(windowID);
    if (!frame) return false;
    Point to{target.x, frame->y};
    bool ok = platform.windows.moveWindow(windowID, to);
    debugLog(fmt::format("[SBC] moveItem SLSMoveWindow fallback wid={} to={} ok={}", windowID,
                         describe(to), describe(ok)));
    return ok;
}

Task<bool> ItemMover::moveForShelf(BarItem item, Point target) {
    auto frame = readableFrame(item.windowID);
    if (!frame) co_return false;
    if (moveWindowDirectly(item.windowID, "direct", *frame, target.x)) co_return true;
    bool dragged = co_await offscreenSyntheticDrag(item, *frame, target);
    co_return dragged;
}

bool ItemMover::moveWindowDirectly(WindowNumber windowID, const std::string& label, Rect frame,
                                   double targetCenterX) {
    Point to{targetCenterX - frame.width * 0.5, frame.y};
    bool ok = platform.windows.moveWindow(windowID, to);
    debugLog(fmt::format("[Shelf] moveItem SLSMoveWindow {} wid={} to={} ok={}", label, windowID,
                         describe(to), describe(ok)));
    platform.runLoop.blockFor(directMoveSettle);
    if (!ok) return false;
    auto after = readableFrame(windowID);
    return after && std::abs(after->midX() - targetCenterX) < arrivalDistance;
}

Task<bool> ItemMover::offscreenSyntheticDrag(BarItem item, Rect frame, Point target) {
    auto source = platform.events.createEventSource();
    if (!source) co_return false;
    beginProgrammaticMove();

    Point mid{(target.x + parkingPoint.x) * 0.5, target.y};
    std::array<std::optional<MouseEvent>, 4> events{
        moveEvent(*source, EventType::leftMouseDown, parkingPoint, item.windowID),
        moveEvent(*source, EventType::leftMouseDragged, mid, item.windowID),
        moveEvent(*source, EventType::leftMouseDragged, target, item.windowID),
        moveEvent(*source, EventType::leftMouseUp, target, item.windowID),
    };
    for (auto& event : events) {
        if (!event) {
            endProgrammaticMove();
            co_return false;
        }
        event->fields[EventField::targetProcess] = item.ownerPID;
    }
    debugLog(
        fmt::format("[Shelf] direct move failed; safe synthetic drag wid={} "
                    "fromOffscreen=(20000,20000) dest=({},{})",
                    item.windowID, describeWhole(target.x), describeWhole(target.y)));
    for (auto& event : events) {
        platform.events.post(*event);
        // Blocking, so that a cancelled task can't leave the button pressed or hurry the drag.
        platform.runLoop.blockFor(offscreenStepDelay);
    }
    co_await sleep(completionDelay);

    auto after = readableFrame(item.windowID);
    bool arrived = after && std::abs(after->x - (target.x - frame.width * 0.5)) < arrivalDistance;
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

Point ItemMover::cursorAtTopLeftOrigin() const {
    Point place = platform.events.mouseLocation();
    auto screens = platform.screens.screens();
    if (screens.empty()) return place;
    const Screen* under = &screens.front();
    for (const Screen& screen : screens) {
        if (screen.frame.contains(place)) {
            under = &screen;
            break;
        }
    }
    return {place.x, under->frame.maxY() - place.y};
}

void ItemMover::restoreCursor(Point place) {
    platform.events.warpCursor(place);
    platform.runLoop.blockFor(cursorRestoreSettle);
    platform.events.showCursor();
}

}  // namespace nevo
