#pragma once

#include "platform/Events.h"
#include "platform/sim/SimPanels.h"
#include "platform/sim/SimStatusBar.h"

namespace nevo {

/// The pointer and the keys, as the window server knows them.
struct SimPointer {
    /// Origin at the top left.
    Point location{700, 450};
    ModifierFlags modifiers = 0;
    bool leftDown = false;
    bool rightDown = false;
    /// Above 0 while the cursor is hidden.
    int hideCount = 0;
};

/// Mouse events from their source, a hand or the program, to whom they are for.
///
/// The window server takes its part at once: pointer, Command-drags in the bar, clicks on other
/// programs' items. What the program hears (monitors, its items' actions) goes through its queue,
/// so it comes later while the program blocks.
class SimEvents : public Events {
public:
    SimEvents(SimRunLoop& runLoop, SimBar& row, SimStatusBar& ownItems, SimPanels& ownPanels,
              SimScreens& allScreens, SimFaults& scripted, SimTrace& to);

    Point mouseLocation() const override { return screens.flipped(pointer.location); }
    ModifierFlags modifierFlags() const override { return pointer.modifiers; }
    Registration addGlobalMonitor(EventMask mask,
                                  std::function<void(const Event&)> handler) override;
    Registration addLocalMonitor(EventMask mask,
                                 std::function<bool(const Event&)> handler) override;
    std::unique_ptr<EventTap> createEventTap(EventMask mask,
                                             std::function<void(const Event&)> callback) override;
    std::unique_ptr<EventSource> createEventSource() override;
    std::optional<MouseEvent> createMouseEvent(EventSource& source, EventType type,
                                               Point location) override;
    void post(const MouseEvent& event) override;
    void warpCursor(Point location) override { pointer.location = location; }
    void hideCursor() override { ++pointer.hideCount; }
    void showCursor() override { --pointer.hideCount; }

    // The hand of a person. Places have their origin at the top left.
    /// Moves the pointer, and drags with a button held.
    void move(Point location);
    void press(bool right);
    void release(bool right);
    void clickMiddle();
    /// Turns the wheel by so many notches, up and to the left above 0.
    void scroll(Point notches);
    void setModifiers(ModifierFlags modifiers) { pointer.modifiers = modifiers; }

    /// The system disables all taps and tells their callbacks by an event of this kind.
    void disableTaps(EventType reason);

    const SimPointer& state() const { return pointer; }
    /// How often another program's item was clicked, by label, and by what if that is told: left,
    /// right, middle or wheel.
    int clickCount(const std::string& label, const std::string& kind = {}) const;
    /// Monitors and taps that are installed.
    std::size_t monitorCount() const;

    /// Told of each press outside the program's own windows.
    std::function<void()> pressedElsewhere;

private:
    template <typename Handler>
    struct Monitor {
        EventMask mask;
        Handler handler;
    };
    using GlobalMonitor = Monitor<std::function<void(const Event&)>>;
    using LocalMonitor = Monitor<std::function<bool(const Event&)>>;
    struct Tap {
        EventMask mask;
        std::function<void(const Event&)> callback;
        bool enabled = false;
        bool onRunLoop = false;
    };
    struct Monitors {
        std::map<std::size_t, GlobalMonitor> global;
        std::map<std::size_t, LocalMonitor> local;
        std::map<std::size_t, Tap> taps;
        std::size_t nextId = 1;
    };
    class OwnedTap;

    /// What the window server does with one event; `named` is the window that it was made for.
    void handle(EventType type, ModifierFlags flags, WindowNumber named, Point notches = {});
    void handleBar(EventType type, ModifierFlags flags, WindowNumber named, Point place,
                   bool usesPointer);
    void noteClick(const SimBar::Item& item, EventType type);
    /// The program's own window under the pointer, or 0.
    WindowNumber ownWindowUnder() const;
    void deliver(const Event& event);
    void hear(const Event& event);
    void hearByTaps(const Event& event);

    SimRunLoop& loop;
    SimBar& bar;
    SimStatusBar& statusBar;
    SimPanels& panels;
    SimScreens& screens;
    SimFaults& faults;
    SimTrace& trace;
    SimPointer pointer;
    std::shared_ptr<Monitors> monitors;
    std::map<std::string, std::map<std::string, int>> clicks;
    /// The own window that a button went down on: it gets the release too.
    WindowNumber pressedWindow = 0;
};

}  // namespace nevo
