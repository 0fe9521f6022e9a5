#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "platform/Geometry.h"
#include "platform/Registration.h"

namespace nevo {

/// Kinds of events, with the numbers that the event system gives them (`NSEventType`,
/// `CGEventType`).
enum class EventType : std::uint32_t {
    leftMouseDown = 1,
    leftMouseUp = 2,
    rightMouseDown = 3,
    rightMouseUp = 4,
    mouseMoved = 5,
    leftMouseDragged = 6,
    scrollWheel = 22,
    /// Of the middle button.
    otherMouseDown = 25,
    otherMouseUp = 26,
    /// A tap hears these when the system has disabled it, for being slow or at a person's wish.
    tapDisabledByTimeout = 0xFFFFFFFE,
    tapDisabledByUserInput = 0xFFFFFFFF
};

/// A set of kinds: the sum of 1 << number.
using EventMask = std::uint32_t;
constexpr EventMask maskOf(EventType type) { return 1U << static_cast<unsigned>(type); }

/// Modifier keys as bits (`NSEventModifierFlags`, `CGEventFlags`).
using ModifierFlags = std::uint32_t;
inline constexpr ModifierFlags shiftModifier = 0x20000;
inline constexpr ModifierFlags controlModifier = 0x40000;
inline constexpr ModifierFlags optionModifier = 0x80000;
inline constexpr ModifierFlags commandModifier = 0x100000;

/// An event as a monitor sees it.
struct Event {
    EventType type = EventType::mouseMoved;
    /// Points, origin at the bottom left of the main display.
    Point location;
    ModifierFlags modifiers = 0;
    /// The window of this program that the event is for; 0 for another program's.
    WindowNumber window = 0;
    /// Of scrollWheel: whole notches, up and to the left above 0.
    Point scroll = {};
};

/// Fields of a synthetic event (`CGEventField`).
enum class EventField {
    clickState = 1,
    /// Notches of the wheel, up and to the left above 0.
    scrollDeltaY = 11,
    scrollDeltaX = 12,
    targetProcess = 40,
    windowNumber = 51,
    windowUnderPointer = 91,
    windowUnderPointerThatCanHandle = 92
};

/// A synthetic mouse event, not yet posted. Location: points, origin at the top left of the main
/// display. One of another button than the left, or of the wheel, has to name a window of the bar.
struct MouseEvent {
    EventType type = EventType::leftMouseDown;
    Point location;
    ModifierFlags flags = 0;
    std::map<EventField, std::int64_t> fields;
};

/// Where synthetic events come from (`CGEventSourceCreate`). Opaque.
class EventSource {
public:
    virtual ~EventSource() = default;
};

/// A listen-only tap on the events of all programs, before they are given out (`CGEventTapCreate`).
/// It hears nothing before it is on the run loop and enabled; it ends when it is destroyed.
class EventTap {
public:
    virtual ~EventTap() = default;
    /// `CGEventTapEnable`. The system may disable a tap, and tells its callback so.
    virtual void setEnabled(bool enabled) = 0;
    /// Puts the tap's source on the main run loop, in the common modes, until the registration ends
    /// (`CFMachPortCreateRunLoopSource`, `CFRunLoopAddSource`, `CFRunLoopRemoveSource`). The
    /// registration may outlive the tap.
    virtual Registration addToMainRunLoop() = 0;
};

/// The pointer, the event stream of all programs, and synthetic events.
class Events {
public:
    virtual ~Events() = default;

    /// `NSEvent.mouseLocation`: points, origin at the bottom left of the main display.
    virtual Point mouseLocation() const = 0;
    /// `NSEvent.modifierFlags`: the keys that are down now.
    virtual ModifierFlags modifierFlags() const = 0;

    /// `NSEvent addGlobalMonitorForEventsMatchingMask:`: events that go to other programs. Empty on
    /// failure.
    virtual Registration addGlobalMonitor(EventMask mask,
                                          std::function<void(const Event&)> handler) = 0;
    /// `NSEvent addLocalMonitorForEventsMatchingMask:`: events for this program's own windows; a
    /// handler that returns true swallows the event. Empty on failure.
    virtual Registration addLocalMonitor(EventMask mask,
                                         std::function<bool(const Event&)> handler) = 0;

    /// `CGEventTapCreate(0, 0, 1, mask, callback, none)`: the HID tap, head insert, listen only.
    /// The callback runs on the main run loop; an event's window is left 0. nullptr where the
    /// desktop doesn't allow it.
    virtual std::unique_ptr<EventTap> createEventTap(
        EventMask mask, std::function<void(const Event&)> callback) = 0;

    /// `CGEventSourceCreate(1)`, the HID system state; nullptr on failure.
    virtual std::unique_ptr<EventSource> createEventSource() = 0;
    /// `CGEventCreateMouseEvent`, `CGEventCreateScrollWheelEvent`; nothing on failure.
    virtual std::optional<MouseEvent> createMouseEvent(EventSource& source, EventType type,
                                                       Point location) = 0;
    /// `CGEventPost(0, event)`, the HID tap: what the window server does with an event of a hand.
    virtual void post(const MouseEvent& event) = 0;

    /// `CGWarpMouseCursorPosition`: moves the cursor without making events; origin at the top left.
    virtual void warpCursor(Point location) = 0;
    /// `CGDisplayHideCursor` and `CGDisplayShowCursor` on the main display; each hide needs one
    /// show.
    virtual void hideCursor() = 0;
    virtual void showCursor() = 0;
};

}  // namespace nevo
