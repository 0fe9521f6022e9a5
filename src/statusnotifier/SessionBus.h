#pragma once

#include <poll.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "statusnotifier/BusHandles.h"
#include "statusnotifier/MessageGate.h"

namespace nevo::statusnotifier {

/// A connection to the user's message bus that never waits: everything happens in `process`, and no
/// message from the bus is larger than a fixed limit.
class SessionBus {
public:
    /// Connects to the bus of `$DBUS_SESSION_BUS_ADDRESS`, else the one in `$XDG_RUNTIME_DIR`.
    /// Nullptr on failure, with one plain sentence in `failure`.
    static std::unique_ptr<SessionBus> open(std::string& failure);
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    sd_bus* get() const { return bus.get(); }
    /// Once the bus has answered; empty before.
    std::string uniqueName() const;

    /// What to wait for before the next `process`.
    void appendTo(std::vector<pollfd>& descriptors) const;
    /// When `process` is to be called at the latest: microseconds of CLOCK_MONOTONIC.
    std::optional<std::uint64_t> deadline() const;
    /// Does what there is to be done, or some of it, where there is much. False when the connection
    /// has ended.
    bool process();

private:
    /// Bytes on their way through one end to the other.
    struct Flow {
        std::vector<std::uint8_t> waiting;
        std::size_t sent = 0;
        bool isEmpty() const { return sent == waiting.size(); }
    };

    SessionBus(int bus, int near, int far);
    bool start(std::string& failure);
    bool pump();
    static bool write(int descriptor, Flow& flow);

    /// To the bus itself.
    int socket;
    /// The library talks to the other end of this one.
    int inner;
    MessageGate gate;
    Flow incoming;
    Flow outgoing;
    BusHandle bus;
};

}  // namespace nevo::statusnotifier
