#include "platform/sim/SimEvents.h"

#include <fmt/format.h>

namespace nevo {

namespace {
class SimEventSource : public EventSource {};

bool onAnyDisplay(const SimScreens& screens, Point place) {
    for (const SimDisplay& display : screens.displays()) {
        if (display.frame.contains(place)) return true;
    }
    return false;
}

bool isPress(EventType type) {
    return type == EventType::leftMouseDown || type == EventType::rightMouseDown ||
           type == EventType::otherMouseDown;
}

bool isRelease(EventType type) {
    return type == EventType::leftMouseUp || type == EventType::rightMouseUp ||
           type == EventType::otherMouseUp;
}

/// What a program does something at.
bool isClick(EventType type) { return isPress(type) || type == EventType::scrollWheel; }

std::string kindOf(EventType type) {
    if (type == EventType::scrollWheel) return "wheel";
    if (type == EventType::otherMouseDown) return "middle";
    return type == EventType::rightMouseDown ? "right" : "left";
}
}  // namespace

SimEvents::SimEvents(SimRunLoop& runLoop, SimBar& row, SimStatusBar& ownItems, SimPanels& ownPanels,
                     SimScreens& allScreens, SimFaults& scripted, SimTrace& to)
    : loop(runLoop),
      bar(row),
      statusBar(ownItems),
      panels(ownPanels),
      screens(allScreens),
      faults(scripted),
      trace(to),
      monitors(std::make_shared<Monitors>()) {}

Registration SimEvents::addGlobalMonitor(EventMask mask,
                                         std::function<void(const Event&)> handler) {
    if (faults.strikes(SimOperation::globalMonitor)) return {};
    std::size_t id = monitors->nextId++;
    monitors->global.emplace(id, GlobalMonitor{mask, std::move(handler)});
    return Registration([weak = std::weak_ptr(monitors), id] {
        if (auto held = weak.lock()) held->global.erase(id);
    });
}

Registration SimEvents::addLocalMonitor(EventMask mask, std::function<bool(const Event&)> handler) {
    if (faults.strikes(SimOperation::localMonitor)) return {};
    std::size_t id = monitors->nextId++;
    monitors->local.emplace(id, LocalMonitor{mask, std::move(handler)});
    return Registration([weak = std::weak_ptr(monitors), id] {
        if (auto held = weak.lock()) held->local.erase(id);
    });
}

class SimEvents::OwnedTap : public EventTap {
public:
    OwnedTap(std::shared_ptr<Monitors> all, std::size_t number)
        : monitors(std::move(all)), id(number) {}
    ~OwnedTap() override { monitors->taps.erase(id); }
    OwnedTap(const OwnedTap&) = delete;
    OwnedTap& operator=(const OwnedTap&) = delete;

    void setEnabled(bool enabled) override { monitors->taps.at(id).enabled = enabled; }
    Registration addToMainRunLoop() override {
        monitors->taps.at(id).onRunLoop = true;
        return Registration([weak = std::weak_ptr(monitors), number = id] {
            auto held = weak.lock();
            if (!held) return;
            auto found = held->taps.find(number);
            if (found != held->taps.end()) found->second.onRunLoop = false;
        });
    }

private:
    std::shared_ptr<Monitors> monitors;
    std::size_t id;
};

std::unique_ptr<EventTap> SimEvents::createEventTap(EventMask mask,
                                                    std::function<void(const Event&)> callback) {
    if (faults.strikes(SimOperation::eventTap)) return nullptr;
    std::size_t id = monitors->nextId++;
    monitors->taps.emplace(id, Tap{mask, std::move(callback)});
    return std::make_unique<OwnedTap>(monitors, id);
}

void SimEvents::disableTaps(EventType reason) {
    trace.note("tap", "disabled");
    for (auto& [id, tap] : monitors->taps) {
        if (!tap.enabled) continue;
        tap.enabled = false;
        Event event;
        event.type = reason;
        // The callback is the tap's last word: it hears of this although it is disabled now.
        loop.post([weak = std::weak_ptr(monitors), number = id, event] {
            auto held = weak.lock();
            auto found = held ? held->taps.find(number) : decltype(held->taps.end()){};
            if (!held || found == held->taps.end() || !found->second.onRunLoop) return;
            auto callback = found->second.callback;
            callback(event);
        });
    }
}

std::unique_ptr<EventSource> SimEvents::createEventSource() {
    if (faults.strikes(SimOperation::eventSource)) return nullptr;
    return std::make_unique<SimEventSource>();
}

std::optional<MouseEvent> SimEvents::createMouseEvent(EventSource&, EventType type,
                                                      Point location) {
    if (faults.strikes(SimOperation::mouseEvent)) return std::nullopt;
    MouseEvent event;
    event.type = type;
    event.location = location;
    return event;
}

void SimEvents::post(const MouseEvent& event) {
    auto field = event.fields.find(EventField::windowNumber);
    auto named =
        field == event.fields.end() ? WindowNumber{0} : static_cast<WindowNumber>(field->second);
    const SimBar::Item* turnedOver = bar.find(named);
    if (event.type == EventType::scrollWheel && turnedOver != nullptr) {
        noteClick(*turnedOver, event.type);
        return;
    }
    // Outside every display there is no place for the pointer: the event goes to the window that it
    // names, and to nobody else. A drag that begins so goes on without the pointer.
    bool isUnseenDrag = bar.isDragging() && !bar.isPointerDragging() &&
                        bar.draggedWindow() == named && !isPress(event.type);
    if (isUnseenDrag || !onAnyDisplay(screens, event.location)) {
        WindowNumber draggedBefore = bar.draggedWindow();
        // A drag of another window goes on as if nothing had come.
        if (draggedBefore == 0 || draggedBefore == named)
            handleBar(event.type, event.flags, named, event.location, false);
        const SimBar::Item* item = bar.find(named);
        bool isFree = draggedBefore != named && bar.draggedWindow() != named;
        if (isClick(event.type) && isFree && item != nullptr && !item->own)
            noteClick(*item, event.type);
        return;
    }
    pointer.location = event.location;
    if (event.type == EventType::leftMouseDown) pointer.leftDown = true;
    if (event.type == EventType::leftMouseUp) pointer.leftDown = false;
    handle(event.type, event.flags, named);
}

void SimEvents::move(Point location) {
    pointer.location = location;
    handle(pointer.leftDown ? EventType::leftMouseDragged : EventType::mouseMoved,
           pointer.modifiers, 0);
}

void SimEvents::press(bool right) {
    (right ? pointer.rightDown : pointer.leftDown) = true;
    handle(right ? EventType::rightMouseDown : EventType::leftMouseDown, pointer.modifiers, 0);
}

void SimEvents::release(bool right) {
    (right ? pointer.rightDown : pointer.leftDown) = false;
    handle(right ? EventType::rightMouseUp : EventType::leftMouseUp, pointer.modifiers, 0);
}

void SimEvents::clickMiddle() {
    handle(EventType::otherMouseDown, pointer.modifiers, 0);
    handle(EventType::otherMouseUp, pointer.modifiers, 0);
}

void SimEvents::scroll(Point notches) {
    handle(EventType::scrollWheel, pointer.modifiers, 0, notches);
}

void SimEvents::handle(EventType type, ModifierFlags flags, WindowNumber named, Point notches) {
    bool draggingBefore = bar.isPointerDragging();
    // A panel covers the bar, but not from what was made for one of its windows.
    bool covered = named == 0 && panels.at(pointer.location) != nullptr;
    if (draggingBefore || !covered) handleBar(type, flags, named, pointer.location, true);
    bool barTookIt = draggingBefore || bar.isPointerDragging();

    // A drag belongs to the bar, whoever's item it moves.
    WindowNumber own = barTookIt ? 0 : ownWindowUnder();
    if (isPress(type)) pressedWindow = own;
    const SimBar::Item* under = bar.itemAt(pointer.location);
    if (!barTookIt && own == 0 && under != nullptr && isClick(type)) noteClick(*under, type);
    if (isPress(type) && own == 0 && pressedElsewhere) pressedElsewhere();

    Event event;
    event.type = type;
    event.location = screens.flipped(pointer.location);
    event.modifiers = flags;
    event.scroll = notches;
    bool follows = isRelease(type) || type == EventType::leftMouseDragged;
    event.window = follows ? pressedWindow : own;
    if (isRelease(type)) pressedWindow = 0;
    deliver(event);
}

WindowNumber SimEvents::ownWindowUnder() const {
    if (const SimPanel* panel = panels.at(pointer.location)) return panel->window();
    const SimBar::Item* item = bar.itemAt(pointer.location);
    return item != nullptr && item->own ? item->window : 0;
}

void SimEvents::handleBar(EventType type, ModifierFlags flags, WindowNumber named, Point place,
                          bool usesPointer) {
    bool isDragging = usesPointer ? bar.isPointerDragging() : bar.isDragging();
    if (type == EventType::leftMouseDown && (flags & commandModifier) != 0) {
        // An announced item that is gone is nobody's neighbour.
        const SimBar::Item* item = named != 0 ? bar.find(named) : bar.itemAt(place);
        if (item == nullptr) return;
        bool ignored = named != 0 && faults.strikes(SimOperation::drag, item->window);
        if (!ignored) bar.beginDrag(item->window, place, usesPointer);
        if (named == 0 && bar.draggedWindow() == item->window)
            trace.note("hand", "takes " + item->label);
    } else if (type == EventType::leftMouseDragged && isDragging) {
        bar.dragTo(place);
    } else if (type == EventType::leftMouseUp && isDragging) {
        bar.endDrag(place);
    }
}

void SimEvents::noteClick(const SimBar::Item& item, EventType type) {
    std::string kind = kindOf(type);
    ++clicks[item.label][kind];
    trace.note("click", item.label + (kind == "left" ? "" : " (" + kind + ")"));
}

void SimEvents::deliver(const Event& event) {
    loop.post([this, event] {
        hearByTaps(event);
        hear(event);
    });
}

void SimEvents::hearByTaps(const Event& event) {
    auto held = monitors;
    Event heard = event;
    heard.window = 0;
    std::vector<std::size_t> ids;
    for (const auto& [id, tap] : held->taps) ids.push_back(id);
    for (std::size_t id : ids) {
        auto found = held->taps.find(id);
        if (found == held->taps.end()) continue;
        const Tap& tap = found->second;
        if (!tap.enabled || !tap.onRunLoop || (tap.mask & maskOf(event.type)) == 0) continue;
        auto callback = tap.callback;
        callback(heard);
    }
}

void SimEvents::hear(const Event& event) {
    auto held = monitors;
    auto call = [&](auto& list, auto&& each) {
        std::vector<std::size_t> ids;
        for (const auto& [id, monitor] : list) {
            if ((monitor.mask & maskOf(event.type)) != 0) ids.push_back(id);
        }
        for (std::size_t id : ids) {
            auto found = list.find(id);
            if (found == list.end()) continue;
            auto handler = found->second.handler;
            if (each(handler)) return true;
        }
        return false;
    };
    if (event.window == 0) {
        call(held->global, [&](auto& handler) {
            handler(event);
            return false;
        });
        return;
    }
    bool swallowed = call(held->local, [&](auto& handler) { return handler(event); });
    if (swallowed) return;
    if (SimPanel* panel = panels.find(event.window)) {
        panel->deliver(event);
    } else if (event.type == EventType::leftMouseUp) {
        statusBar.click(event.window);
    }
}

int SimEvents::clickCount(const std::string& label, const std::string& kind) const {
    auto found = clicks.find(label);
    int count = 0;
    if (found == clicks.end()) return count;
    for (const auto& [each, times] : found->second) {
        if (kind.empty() || kind == each) count += times;
    }
    return count;
}

std::size_t SimEvents::monitorCount() const {
    return monitors->global.size() + monitors->local.size() + monitors->taps.size();
}

}  // namespace nevo
