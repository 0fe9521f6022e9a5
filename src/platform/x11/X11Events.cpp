#include "platform/x11/X11Events.h"

#include <unistd.h>
#include <xcb/xfixes.h>

#include <QGuiApplication>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace nevo {

namespace {
constexpr int motionMilliseconds = 8;
}

X11Events::X11Events(XServer& x, EventPump& pump, Keyboard& keyboard, BarClient& client,
                     Screens& theScreens, LocalMonitors& monitors)
    : server(x),
      bar(client),
      screens(theScreens),
      localMonitors(monitors),
      synthetic(x, client, keyboard),
      itemClick(x, client, synthetic),
      raw(x, pump, [this](RawInput::Kind kind, std::uint32_t button) { noteRaw(kind, button); }),
      listeners(raw) {
    motionTimer.setSingleShot(true);
    motionTimer.setInterval(motionMilliseconds);
    QObject::connect(&motionTimer, &QTimer::timeout, &motionTimer, [this] { tellMotion(); });
    itemClick.clicked = [this](int count) { unheard = raw.listens() ? 2 * count : 0; };
    releaseSyntheticDevices(server);
    const auto* fixes = xcb_get_extension_data(server.get(), &xcb_xfixes_id);
    if (fixes == nullptr || fixes->present == 0) return;
    xcb::Reply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        server.get(), xcb_xfixes_query_version(server.get(), 4, 0), nullptr));
    canHideCursor = version && version->major_version >= 4;
}

Point X11Events::mouseLocation() const {
    auto state = queryPointer(server);
    if (!state) return {};
    return server.coordinates.flipped(server.coordinates.fromRoot(state->root));
}

ModifierFlags X11Events::modifierFlags() const {
    if (localMonitors.modifiersOfEvent) return *localMonitors.modifiersOfEvent;
    auto state = queryPointer(server);
    return state ? modifiersFromState(state->mask) : 0;
}

Registration X11Events::addGlobalMonitor(EventMask mask,
                                         std::function<void(const Event&)> handler) {
    if (!raw.isAvailable()) return {};
    return listeners.addMonitor(mask, std::move(handler));
}

Registration X11Events::addLocalMonitor(EventMask mask, std::function<bool(const Event&)> handler) {
    return localMonitors.add(mask, std::move(handler));
}

std::unique_ptr<EventTap> X11Events::createEventTap(EventMask mask,
                                                    std::function<void(const Event&)> callback) {
    if (!raw.isAvailable()) return nullptr;
    return listeners.createTap(mask, std::move(callback));
}

// Raw events may carry relative values or none: the server is asked where the pointer is.

void X11Events::noteRaw(RawInput::Kind kind, std::uint32_t button) {
    if (kind == RawInput::Kind::motion) {
        // A mouse tells of each move up to a thousand times a second; where it stands now is
        // enough.
        if (!motionTimer.isActive()) motionTimer.start();
        return;
    }
    if (unheard > 0) {
        --unheard;
        return;
    }
    bool isLeft = button == XCB_BUTTON_INDEX_1;
    if (!isLeft && button != XCB_BUTTON_INDEX_3) return;
    auto state = queryPointer(server);
    if (!state) return;
    bool isPress = kind == RawInput::Kind::press;
    if (motionTimer.isActive()) {
        // What moved before goes first: a quick drag would have no motion otherwise. The button was
        // then as it isn't any more.
        motionTimer.stop();
        bool wasDown = isLeft ? !isPress : (state->mask & XCB_BUTTON_MASK_1) != 0;
        tell(wasDown ? EventType::leftMouseDragged : EventType::mouseMoved, *state);
    }
    if (isLeft) {
        tell(isPress ? EventType::leftMouseDown : EventType::leftMouseUp, *state);
    } else {
        tell(isPress ? EventType::rightMouseDown : EventType::rightMouseUp, *state);
    }
}

void X11Events::tellMotion() {
    auto state = queryPointer(server);
    if (!state) return;
    bool isDrag = (state->mask & XCB_BUTTON_MASK_1) != 0;
    tell(isDrag ? EventType::leftMouseDragged : EventType::mouseMoved, *state);
}

void X11Events::tell(EventType type, const PointerState& state) {
    Event event;
    event.type = type;
    event.location = server.coordinates.flipped(server.coordinates.fromRoot(state.root));
    event.modifiers = modifiersFromState(state.mask);
    listeners.tellTaps(event);
    bool isPress = type == EventType::leftMouseDown || type == EventType::rightMouseDown;
    if (isPress) pressedOwnWindow = isOverOwnWindow(state.root);
    if (!listeners.isWantedByMonitors(type) || isForOwn(type, state.root)) return;
    listeners.tellMonitors(event);
}

bool X11Events::isForOwn(EventType type, Point root) const {
    const auto& items = bar.items();
    bool isOverOwnItem = std::any_of(items.begin(), items.end(), [&](const BarItemInfo* item) {
        // Not its slot: a divider's may take up the whole bar, with nothing of it to be seen.
        return item->pid == getpid() && item->geometry.contains(root);
    });
    if (isOverOwnItem) return true;
    // What began in a window goes on there, wherever the pointer is, and if that window has gone.
    bool goesOn = type == EventType::leftMouseDragged || type == EventType::leftMouseUp ||
                  type == EventType::rightMouseUp;
    return goesOn ? pressedOwnWindow : isOverOwnWindow(root);
}

/// Asks the server, which knows where a window takes no input.
bool X11Events::isOverOwnWindow(Point root) const {
    auto x = static_cast<std::int16_t>(root.x);
    auto y = static_cast<std::int16_t>(root.y);
    xcb_window_t window = server.root();
    while (window != XCB_NONE) {
        xcb::Reply<xcb_translate_coordinates_reply_t> inside(xcb_translate_coordinates_reply(
            server.get(), xcb_translate_coordinates(server.get(), server.root(), window, x, y),
            nullptr));
        window = inside ? inside->child : static_cast<xcb_window_t>(XCB_NONE);
        if (window != XCB_NONE && QWidget::find(window) != nullptr) return true;
    }
    return false;
}

std::unique_ptr<EventSource> X11Events::createEventSource() {
    // While a hand holds the button, the server takes no other press: a drag would only move the
    // hand's own along. What it pressed in a window of ours is a wish that may need events.
    auto state = queryPointer(server);
    // The bar may stand above that window by now; Qt still knows of the press.
    bool isHeld = state && (state->mask & XCB_BUTTON_MASK_1) != 0 &&
                  !QGuiApplication::mouseButtons().testFlag(Qt::LeftButton) &&
                  !isOverOwnWindow(state->root);
    return synthetic.isAvailable() && !isHeld ? std::make_unique<EventSource>() : nullptr;
}

std::optional<MouseEvent> X11Events::createMouseEvent(EventSource&, EventType type,
                                                      Point location) {
    if (!std::isfinite(location.x) || !std::isfinite(location.y)) return std::nullopt;
    return MouseEvent{type, location, 0, {}};
}

const BarItemInfo* X11Events::itemNamedBy(const MouseEvent& event) const {
    auto field = event.fields.find(EventField::windowNumber);
    if (field == event.fields.end()) return nullptr;
    return bar.itemOfNumber(static_cast<WindowNumber>(field->second));
}

void X11Events::clickItem(WindowNumber item, const MouseEvent& event) {
    auto notches = [&](EventField field) {
        auto found = event.fields.find(field);
        return found == event.fields.end() ? 0.0 : static_cast<double>(found->second);
    };
    switch (event.type) {
        case EventType::leftMouseDown:
            return itemClick.press(item, XCB_BUTTON_INDEX_1);
        case EventType::otherMouseDown:
            return itemClick.press(item, XCB_BUTTON_INDEX_2);
        case EventType::rightMouseDown:
            return itemClick.press(item, XCB_BUTTON_INDEX_3);
        case EventType::leftMouseUp:
        case EventType::otherMouseUp:
        case EventType::rightMouseUp:
            return itemClick.release();
        case EventType::scrollWheel:
            return itemClick.scroll(
                item, {notches(EventField::scrollDeltaX), notches(EventField::scrollDeltaY)});
        default:
            return;
    }
}

void X11Events::post(const MouseEvent& event) {
    const auto* item = itemNamedBy(event);
    // With Command it is dragged.
    if (item != nullptr && (event.flags & commandModifier) == 0) {
        clickItem(item->number, event);
        return;
    }
    // An item that has gone leaves its place to another, which isn't meant.
    bool isGone = item == nullptr && event.fields.contains(EventField::windowNumber);
    if (isGone && event.type == EventType::leftMouseDown) return;
    auto monitors = screens.screens();
    bool isOnScreen = std::any_of(monitors.begin(), monitors.end(), [&](const Screen& screen) {
        return server.coordinates.flipped(screen.frame).contains(event.location);
    });
    synthetic.post(event.type, server.coordinates.toRoot(event.location), event.flags,
                   item != nullptr ? item->frame : 0, isOnScreen);
}

void X11Events::warpCursor(Point location) {
    Point root = server.coordinates.toRoot(location);
    auto coordinate = [](double value) {
        return static_cast<std::int16_t>(std::clamp(std::round(value), -32768.0, 32767.0));
    };
    xcb_warp_pointer(server.get(), XCB_NONE, server.root(), 0, 0, 0, 0, coordinate(root.x),
                     coordinate(root.y));
    server.flush();
}

void X11Events::hideCursor() {
    if (!canHideCursor) return;
    xcb_xfixes_hide_cursor(server.get(), server.root());
    server.flush();
}

void X11Events::showCursor() {
    if (!canHideCursor) return;
    xcb_xfixes_show_cursor(server.get(), server.root());
    server.flush();
}

}  // namespace nevo
