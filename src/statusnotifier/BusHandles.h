#pragma once

#include <systemd/sd-bus.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

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

/// For what may be refused: without an own handler of the answer the library would end the
/// connection.
inline int ignoreAnswer(sd_bus_message*, void*, sd_bus_error*) { return 1; }

/// Whether the bus itself says it. A match by sender doesn't tell: any program may send the same
/// signal to us alone.
inline bool isFromBus(sd_bus_message* message) {
    const char* sender = sd_bus_message_get_sender(message);
    return sender != nullptr && std::string_view(sender) == "org.freedesktop.DBus";
}

/// The match of what the bus says of a name: its signal `member` ("NameAcquired",
/// "NameOwnerChanged").
inline std::string ruleOfBusSignal(const std::string& member, const std::string& name) {
    return "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
           "interface='org.freedesktop.DBus',member='" +
           member + "',arg0='" + name + "'";
}

/// Whom a name belongs to now, by a "NameOwnerChanged"; empty when to nobody. Nothing where it
/// isn't the bus that says so.
inline std::optional<std::string> ownerNow(sd_bus_message* message) {
    const char* name = nullptr;
    const char* before = nullptr;
    const char* after = nullptr;
    if (!isFromBus(message)) return std::nullopt;
    if (sd_bus_message_read(message, "sss", &name, &before, &after) < 0) return std::nullopt;
    return after;
}

}  // namespace nevo::statusnotifier
