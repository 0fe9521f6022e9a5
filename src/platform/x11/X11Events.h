#pragma once

#include <QTimer>

#include "platform/Events.h"
#include "platform/Screens.h"
#include "platform/x11/ItemClick.h"
#include "platform/x11/LocalMonitors.h"
#include "platform/x11/RawListeners.h"
#include "platform/x11/SyntheticInput.h"

namespace nevo {

class X11Events : public Events {
public:
    X11Events(XServer& x, EventPump& pump, Keyboard& keyboard, BarClient& client,
              Screens& theScreens, LocalMonitors& monitors);

    Point mouseLocation() const override;
    ModifierFlags modifierFlags() const override;
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
    void warpCursor(Point location) override;
    void hideCursor() override;
    void showCursor() override;

private:
    void noteRaw(RawInput::Kind kind, std::uint32_t button);
    void tellMotion();
    void tell(EventType type, const PointerState& state);
    bool isForOwn(EventType type, Point root) const;
    /// Whether one of this program's windows takes the mouse there.
    bool isOverOwnWindow(Point root) const;
    void clickItem(WindowNumber item, const MouseEvent& event);
    /// Nothing when it names none, or one that has gone.
    const BarItemInfo* itemNamedBy(const MouseEvent& event) const;

    XServer& server;
    BarClient& bar;
    Screens& screens;
    LocalMonitors& localMonitors;
    SyntheticInput synthetic;
    ItemClick itemClick;
    RawInput raw;
    QTimer motionTimer;
    RawListeners listeners;
    bool canHideCursor = false;
    /// Raw presses and releases to come from clicks on items: they are nobody's.
    int unheard = 0;
    /// Whether the last press was on one of this program's windows.
    bool pressedOwnWindow = false;
};

}  // namespace nevo
