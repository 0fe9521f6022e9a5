#pragma once

#include <systemd/sd-bus.h>

#include <memory>

namespace nevo::statusnotifier {

struct BusDeleter {
    /// Nothing is flushed: that could wait for a bus that doesn't read.
    void operator()(sd_bus* bus) const {
        sd_bus_close(bus);
        sd_bus_unref(bus);
    }
};
struct SlotDeleter {
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
struct MessageDeleter {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

using BusHandle = std::unique_ptr<sd_bus, BusDeleter>;
/// A call that waits for its answer, a subscription, an object: ends with the handle.
using Slot = std::unique_ptr<sd_bus_slot, SlotDeleter>;
using Message = std::unique_ptr<sd_bus_message, MessageDeleter>;

}  // namespace nevo::statusnotifier
