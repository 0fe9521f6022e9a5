#include "platform/x11/X11Events.h"

#include <unistd.h>
#include <xcb/xfixes.h>

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <cmath>

namespace nevo {

namespace {
constexpr int motionMilliseconds = 8;
}

/// The global monitors; a registration finds them gone when the desktop is.
struct X11Events::Globals {
    struct Entry {
        std::size_t id;
        EventMask mask;
        std::function<void(const Event&)> handler;
    };
    RawInput* raw = nullptr;
    std::vector<Entry> entries;
    std::size_t last = 0;

    void remove(std::size_t id) {
        std::erase_if(entries, [&](const Entry& entry) { return entry.id == id; });
        if (entries.empty() && raw != nullptr) raw->setListening(false);
    }
};

X11Events::X11Events(XServer& x, EventPump& pump, BarClient& client, Screens& theScreens,
                     LocalMonitors& monitors)
    : server(x),
      bar(client),
      screens(theScreens),
      localMonitors(monitors),
      keyboard(x, pump),
      synthetic(x, client, keyboard),
      raw(x, pump, [this](RawInput::Kind kind, std::uint32_t button) { noteRaw(kind, button); }),
      globals(std::make_shared<Globals>()) {
    globals->raw = &raw;
    motionTimer.setSingleShot(true);
    motionTimer.setInterval(motionMilliseconds);
    QObject::connect(&motionTimer, &QTimer::timeout, &motionTimer,
                     [this] { handleRaw(RawInput::Kind::motion, 0); });
    releaseSyntheticDevices(server);
    const auto* fixes = xcb_get_extension_data(server.get(), &xcb_xfixes_id);
    if (fixes == nullptr || fixes->present == 0) return;
    xcb::Reply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        server.get(), xcb_xfixes_query_version(server.get(), 4, 0), nullptr));
    canHideCursor = version && version->major_version >= 4;
}

X11Events::~X11Events() { globals->raw = nullptr; }

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
    raw.setListening(true);
    std::size_t id = ++globals->last;
    globals->entries.push_back({id, mask, std::move(handler)});
    return Registration([weak = std::weak_ptr(globals), id] {
        if (auto held = weak.lock()) held->remove(id);
    });
}

Registration X11Events::addLocalMonitor(EventMask mask, std::function<bool(const Event&)> handler) {
    return localMonitors.add(mask, std::move(handler));
}

/// A mouse tells of each move up to a thousand times a second; where it stands now is enough.
void X11Events::noteRaw(RawInput::Kind kind, std::uint32_t button) {
    if (kind != RawInput::Kind::motion) {
        handleRaw(kind, button);
    } else if (!motionTimer.isActive()) {
        motionTimer.start();
    }
}

void X11Events::handleRaw(RawInput::Kind kind, std::uint32_t button) {
    bool isMotion = kind == RawInput::Kind::motion;
    if (!isMotion && button != XCB_BUTTON_INDEX_1 && button != XCB_BUTTON_INDEX_3) return;
    // Raw events may carry relative values or none: the server is asked where the pointer is.
    auto state = queryPointer(server);
    if (!state) return;
    bool isLeft = button == XCB_BUTTON_INDEX_1;
    bool isPress = kind == RawInput::Kind::press;
    Event event;
    if (isMotion) {
        bool isDrag = (state->mask & XCB_BUTTON_MASK_1) != 0;
        event.type = isDrag ? EventType::leftMouseDragged : EventType::mouseMoved;
    } else if (isLeft) {
        event.type = isPress ? EventType::leftMouseDown : EventType::leftMouseUp;
    } else {
        event.type = isPress ? EventType::rightMouseDown : EventType::rightMouseUp;
    }
    event.location = server.coordinates.flipped(server.coordinates.fromRoot(state->root));
    event.modifiers = modifiersFromState(state->mask);

    auto held = globals;
    auto wanted = [&](const Globals::Entry& entry) { return entry.mask & maskOf(event.type); };
    if (std::none_of(held->entries.begin(), held->entries.end(), wanted)) return;
    if (isOverOwnWindow(state->root)) return;
    // Handlers may come and go meanwhile.
    auto before = held->entries;
    for (const auto& entry : before) {
        bool isThere = std::any_of(held->entries.begin(), held->entries.end(),
                                   [&](const auto& now) { return now.id == entry.id; });
        if (isThere && wanted(entry)) entry.handler(event);
    }
}

bool X11Events::isOverOwnWindow(Point root) const {
    const auto& items = bar.items();
    bool isOwnItem = std::any_of(items.begin(), items.end(), [&](const BarItemInfo* item) {
        // Not its slot: a divider's may take up the whole bar, with nothing of it to be seen.
        return item->pid == getpid() && item->geometry.contains(root);
    });
    QPoint place(static_cast<int>(root.x), static_cast<int>(root.y));
    return isOwnItem || QGuiApplication::topLevelAt(place) != nullptr;
}

std::unique_ptr<EventSource> X11Events::createEventSource() {
    // While a hand holds the button, the server takes no other press: a drag would only move the
    // hand's own along.
    auto state = queryPointer(server);
    bool isHeld = state && (state->mask & XCB_BUTTON_MASK_1) != 0;
    return synthetic.isAvailable() && !isHeld ? std::make_unique<EventSource>() : nullptr;
}

std::optional<MouseEvent> X11Events::createMouseEvent(EventSource&, EventType type,
                                                      Point location) {
    if (!std::isfinite(location.x) || !std::isfinite(location.y)) return std::nullopt;
    return MouseEvent{type, location, 0, {}};
}

xcb_window_t X11Events::frameNamedBy(const MouseEvent& event) const {
    auto field = event.fields.find(EventField::windowNumber);
    if (field == event.fields.end()) return 0;
    const auto* item = bar.itemOfNumber(static_cast<WindowNumber>(field->second));
    return item ? item->frame : 0;
}

void X11Events::post(const MouseEvent& event) {
    auto monitors = screens.screens();
    bool isOnScreen = std::any_of(monitors.begin(), monitors.end(), [&](const Screen& screen) {
        return server.coordinates.flipped(screen.frame).contains(event.location);
    });
    synthetic.post(event.type, server.coordinates.toRoot(event.location), event.flags,
                   frameNamedBy(event), isOnScreen);
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
