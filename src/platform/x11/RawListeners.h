#pragma once

#include <memory>

#include "platform/Events.h"
#include "platform/x11/RawInput.h"

namespace nevo {

/// Who wants to hear what the user's devices do: global monitors, and taps. The devices are
/// listened to only while somebody hears them.
class RawListeners {
public:
    explicit RawListeners(RawInput& input);
    ~RawListeners();
    RawListeners(const RawListeners&) = delete;
    RawListeners& operator=(const RawListeners&) = delete;

    Registration addMonitor(EventMask mask, std::function<void(const Event&)> handler);
    std::unique_ptr<EventTap> createTap(EventMask mask, std::function<void(const Event&)> callback);

    bool isWantedByMonitors(EventType type) const;
    void tellMonitors(const Event& event);
    void tellTaps(const Event& event);

private:
    class OwnedTap;
    struct State;
    /// Registrations and taps find the input gone when the desktop is.
    std::shared_ptr<State> state;
};

}  // namespace nevo
