#include "shelf/ClickableItemView.h"

#include <cmath>
#include <utility>

namespace nevo {

namespace {
/// A shorter way is the tremble of a click.
constexpr double dragThreshold = 5.0;

/// Calls a copy: the call may destroy the view.
template <typename... Arguments>
void call(std::function<void(Arguments...)> callback, Arguments... arguments) {
    if (callback) callback(arguments...);
}
}  // namespace

ClickableItemView::ClickableItemView(PanelView slot, Color normal, Color highlighted)
    : view(std::move(slot)),
      normalBackgroundColor(normal),
      highlightedBackgroundColor(highlighted) {
    view.takesMouse = true;
    paint();
}

void ClickableItemView::handle(const PanelEvent& event, const Rect& panelFrame,
                               const std::function<void(const PanelView&)>& repaint) {
    bool isPress =
        event.type == EventType::leftMouseDown || event.type == EventType::rightMouseDown;
    if (event.type != EventType::leftMouseDragged) {
        isHighlighted = isPress;
        paint();
        repaint(view);
    }
    Point onScreen{panelFrame.x + event.location.x, panelFrame.y + event.location.y};
    switch (event.type) {
        case EventType::leftMouseDown:
            mouseDown(event);
            break;
        case EventType::leftMouseDragged:
            mouseDragged(event);
            break;
        case EventType::leftMouseUp:
            mouseUp(event, onScreen);
            break;
        case EventType::rightMouseDown:
            pendingRightClick = false;
            break;
        case EventType::rightMouseUp:
            if (view.frame.contains(event.location)) call(onRightClick, onScreen);
            break;
        default:
            break;
    }
}

void ClickableItemView::mouseDown(const PanelEvent& event) {
    pendingRightClick = (event.modifiers & controlModifier) != 0;
    mouseDownPoint = event.location;
    didDrag = false;
}

void ClickableItemView::mouseDragged(const PanelEvent& event) {
    if (pendingRightClick || !onDrag || !mouseDownPoint) return;
    double way =
        std::hypot(event.location.x - mouseDownPoint->x, event.location.y - mouseDownPoint->y);
    if (!didDrag) {
        if (way < dragThreshold) return;
        call(onDragBegin);
    }
    didDrag = true;
    call(onDrag, event.location);
}

void ClickableItemView::mouseUp(const PanelEvent& event, Point onScreen) {
    bool wasRightClick = std::exchange(pendingRightClick, false);
    bool dragged = std::exchange(didDrag, false);
    mouseDownPoint.reset();
    // A drag ends wherever the button comes up, or the slot would stay lifted: a row is
    // low, and nobody keeps the pointer level for the whole way.
    if (dragged) {
        call(onDragEnd);
    } else if (view.frame.contains(event.location)) {
        wasRightClick ? call(onRightClick, onScreen) : call(onClick);
    }
}

}  // namespace nevo
