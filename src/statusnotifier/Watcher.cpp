#include "statusnotifier/Watcher.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

namespace nevo::statusnotifier {

namespace {
constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";
constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* usualPath = "/StatusNotifierItem";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";
/// Longer than any name on a bus and any path that somebody would write.
constexpr std::size_t longestService = 512;
/// At the same time, for one program and for all.
constexpr std::ptrdiff_t mostLookupsOfAProgram = 32;
constexpr std::size_t mostLookups = 1000;
/// Answers of RequestName.
constexpr std::uint32_t isPrimaryOwner = 1;
constexpr std::uint32_t isQueued = 2;

bool isError(sd_bus_message* answer) { return sd_bus_message_is_method_error(answer, nullptr) > 0; }
}  // namespace

// A toolkit that doesn't find these properties by introspection takes it that there is no host.
const sd_bus_vtable Watcher::table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", onRegisterItem,
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("RegisterStatusNotifierHost", "s", "", onRegisterHost,
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("RegisteredStatusNotifierItems", "as", readItems, 0, 0),
    SD_BUS_PROPERTY("IsStatusNotifierHostRegistered", "b", readConstant, 0, 0),
    SD_BUS_PROPERTY("ProtocolVersion", "i", readConstant, 0, 0),
    SD_BUS_SIGNAL("StatusNotifierItemRegistered", "s", 0),
    SD_BUS_SIGNAL("StatusNotifierItemUnregistered", "s", 0),
    SD_BUS_SIGNAL("StatusNotifierHostRegistered", "", 0),
    SD_BUS_SIGNAL("StatusNotifierHostUnregistered", "", 0),
    SD_BUS_VTABLE_END};

Watcher::Watcher(SessionBus& of, Registry& items, std::function<void(const std::string&)> log)
    : bus(of), registry(items), say(std::move(log)) {
    sd_bus_slot* slot = nullptr;
    sd_bus_add_object_vtable(bus.get(), &slot, watcherPath, watcherName, table, this);
    object.reset(std::exchange(slot, nullptr));
    std::string rule = ruleOfBusSignal("NameAcquired", watcherName);
    sd_bus_add_match_async(bus.get(), &slot, rule.c_str(), onAcquired, ignoreAnswer, this);
    acquired.reset(slot);
    requestNames();
}

Watcher::~Watcher() = default;

void Watcher::requestNames() {
    sd_bus_slot* slot = nullptr;
    std::string host = "org.kde.StatusNotifierHost-" + std::to_string(::getpid());
    sd_bus_request_name_async(bus.get(), &slot, host.c_str(), 0, ignoreAnswer, nullptr);
    hostRequest.reset(std::exchange(slot, nullptr));
    // In the queue, the name comes to us when its owner goes.
    sd_bus_request_name_async(bus.get(), &slot, watcherName, SD_BUS_NAME_QUEUE, onRequested, this);
    request.reset(slot);
}

int Watcher::onRequested(sd_bus_message* answer, void* data, sd_bus_error*) {
    auto& watcher = *static_cast<Watcher*>(data);
    std::uint32_t result = 0;
    if (isError(answer) || sd_bus_message_read_basic(answer, 'u', &result) <= 0) {
        watcher.say(
            "the session bus refuses the tray's name: programs without a tray window of "
            "their own can't be shown.");
        return 0;
    }
    if (result == isPrimaryOwner) watcher.becomeWatcher();
    if (result == isQueued) watcher.join();
    return 0;
}

int Watcher::onAcquired(sd_bus_message* message, void* data, sd_bus_error*) {
    if (!isFromBus(message)) return 0;
    auto& watcher = *static_cast<Watcher*>(data);
    if (watcher.otherChanges && !watcher.isWatcher) {
        watcher.say("the other tray on the session bus is gone; its items are kept here now.");
        watcher.otherChanges.reset();
    }
    watcher.becomeWatcher();
    return 0;
}

void Watcher::becomeWatcher() {
    if (std::exchange(isWatcher, true)) return;
    sd_bus_emit_signal(bus.get(), watcherPath, watcherName, "StatusNotifierHostRegistered", "");
    askForOthers();
}

/// Items of programs that don't register again with a new watcher.
void Watcher::askForOthers() {
    sd_bus_slot* slot = nullptr;
    sd_bus_call_method_async(bus.get(), &slot, busName, busPath, busName, "ListNames", onNames,
                             this, "");
    names.reset(slot);
}

int Watcher::onNames(sd_bus_message* answer, void* data, sd_bus_error*) {
    if (!isError(answer)) static_cast<Watcher*>(data)->probeAll(answer);
    return 0;
}

void Watcher::probeAll(sd_bus_message* list) {
    const char* name = nullptr;
    if (sd_bus_message_enter_container(list, 'a', "s") <= 0) return;
    while (sd_bus_message_read_basic(list, 's', &name) > 0) {
        if (*name != ':' || name == bus.uniqueName()) continue;
        Probe& probe = probes.emplace_back(Probe{this, {name, usualPath}, nullptr});
        sd_bus_slot* slot = nullptr;
        int error = sd_bus_call_method_async(bus.get(), &slot, name, usualPath, propertiesInterface,
                                             "Get", onProbed, &probe, "ss", itemInterface, "Id");
        probe.slot.reset(slot);
        if (error < 0) probes.pop_back();
    }
}

int Watcher::onProbed(sd_bus_message* answer, void* data, sd_bus_error*) {
    auto& probe = *static_cast<Probe*>(data);
    Watcher& watcher = *probe.watcher;
    if (!isError(answer)) watcher.registry.add(probe.address, probe.address.owner);
    watcher.probes.remove_if([&](const Probe& each) { return &each == &probe; });
    return 0;
}

void Watcher::join() {
    say("another tray keeps the items on the session bus; showing what it knows.");
    sd_bus_slot* slot = nullptr;
    sd_bus_match_signal_async(bus.get(), &slot, watcherName, watcherPath, watcherName, nullptr,
                              onOtherChanged, ignoreAnswer, this);
    otherChanges.reset(std::exchange(slot, nullptr));
    std::string rule = ruleOfBusSignal("NameOwnerChanged", watcherName);
    sd_bus_add_match_async(bus.get(), &slot, rule.c_str(), onOwnerChanged, ignoreAnswer, this);
    ownerChanges.reset(slot);
    follow();
    askForOthers();
}

void Watcher::follow() {
    std::string host = "org.kde.StatusNotifierHost-" + std::to_string(::getpid());
    sd_bus_call_method_async(bus.get(), nullptr, watcherName, watcherPath, watcherName,
                             "RegisterStatusNotifierHost", nullptr, nullptr, "s", host.c_str());
    sd_bus_slot* slot = nullptr;
    // Before the list, so that nothing is missed between the two.
    sd_bus_call_method_async(bus.get(), &slot, busName, busPath, busName, "GetNameOwner",
                             onOtherFound, this, "s", watcherName);
    otherFound.reset(std::exchange(slot, nullptr));
    sd_bus_call_method_async(bus.get(), &slot, watcherName, watcherPath, propertiesInterface, "Get",
                             onOthers, this, "ss", watcherName, "RegisteredStatusNotifierItems");
    others.reset(slot);
}

int Watcher::onOthers(sd_bus_message* answer, void* data, sd_bus_error*) {
    auto& watcher = *static_cast<Watcher*>(data);
    const char* service = nullptr;
    if (isError(answer) || sd_bus_message_enter_container(answer, 'v', "as") <= 0) return 0;
    if (sd_bus_message_enter_container(answer, 'a', "s") <= 0) return 0;
    while (sd_bus_message_read_basic(answer, 's', &service) > 0) {
        watcher.take(service, "", true);
    }
    return 0;
}

int Watcher::onOtherFound(sd_bus_message* answer, void* data, sd_bus_error*) {
    const char* owner = nullptr;
    if (isError(answer) || sd_bus_message_read_basic(answer, 's', &owner) <= 0) return 0;
    static_cast<Watcher*>(data)->otherOwner = owner;
    return 0;
}

/// One that stood before us in the queue may have the name now.
int Watcher::onOwnerChanged(sd_bus_message* message, void* data, sd_bus_error*) {
    auto& watcher = *static_cast<Watcher*>(data);
    auto owner = ownerNow(message);
    bool isOther = owner && !owner->empty() && *owner != watcher.bus.uniqueName();
    if (isOther && *owner != watcher.otherOwner) watcher.follow();
    return 0;
}

int Watcher::onOtherChanged(sd_bus_message* message, void* data, sd_bus_error*) {
    // Anybody may send us the same signal.
    const char* sender = sd_bus_message_get_sender(message);
    if (sender == nullptr || static_cast<Watcher*>(data)->otherOwner != sender) return 0;
    std::string_view member = sd_bus_message_get_member(message);
    bool isThere = member == "StatusNotifierItemRegistered";
    if (!isThere && member != "StatusNotifierItemUnregistered") return 0;
    const char* service = nullptr;
    if (sd_bus_message_read_basic(message, 's', &service) <= 0) return 0;
    static_cast<Watcher*>(data)->take(service, "", isThere);
    return 0;
}

int Watcher::onRegisterItem(sd_bus_message* message, void* data, sd_bus_error* error) {
    const char* service = nullptr;
    if (sd_bus_message_read_basic(message, 's', &service) <= 0) return -EINVAL;
    auto& watcher = *static_cast<Watcher*>(data);
    if (!watcher.take(service, sd_bus_message_get_sender(message), true)) {
        return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS,
                                "Neither a bus name nor an object path, or too many at once.");
    }
    return sd_bus_reply_method_return(message, "");
}

int Watcher::onRegisterHost(sd_bus_message* message, void* data, sd_bus_error*) {
    auto& watcher = *static_cast<Watcher*>(data);
    sd_bus_emit_signal(watcher.bus.get(), watcherPath, watcherName, "StatusNotifierHostRegistered",
                       "");
    return sd_bus_reply_method_return(message, "");
}

bool Watcher::take(const std::string& service, const std::string& sender, bool isThere) {
    if (service.empty() || service.size() > longestService) return false;
    std::size_t slash = service.find('/');
    std::string name = service.substr(0, slash);
    std::string path = slash == std::string::npos ? usualPath : service.substr(slash);
    if (name.empty()) name = sender;
    if (!sd_bus_object_path_is_valid(path.c_str()) || !sd_bus_service_name_is_valid(name.c_str())) {
        return false;
    }
    if (name.front() == ':') {
        put({name, path}, sender, isThere);
        return true;
    }
    auto underWay = std::count_if(lookups.begin(), lookups.end(),
                                  [&](const Lookup& each) { return each.sender == sender; });
    bool isTooMuch = !sender.empty() && underWay >= mostLookupsOfAProgram;
    if (isTooMuch || lookups.size() >= mostLookups) return false;
    Lookup& lookup = lookups.emplace_back(Lookup{this, path, sender, isThere, nullptr});
    sd_bus_slot* slot = nullptr;
    int error = sd_bus_call_method_async(bus.get(), &slot, busName, busPath, busName,
                                         "GetNameOwner", onOwnerFound, &lookup, "s", name.c_str());
    lookup.slot.reset(slot);
    if (error < 0) lookups.pop_back();
    return true;
}

int Watcher::onOwnerFound(sd_bus_message* answer, void* data, sd_bus_error*) {
    auto& lookup = *static_cast<Lookup*>(data);
    Watcher& watcher = *lookup.watcher;
    const char* owner = nullptr;
    if (!isError(answer) && sd_bus_message_read_basic(answer, 's', &owner) > 0) {
        watcher.put({owner, lookup.path}, lookup.sender, lookup.isThere);
    } else if (!lookup.sender.empty()) {
        // In a sandbox programs may not own the name that they say.
        watcher.put({lookup.sender, lookup.path}, lookup.sender, lookup.isThere);
    }
    watcher.lookups.remove_if([&](const Lookup& each) { return &each == &lookup; });
    return 0;
}

void Watcher::put(const ItemAddress& address, const std::string& sender, bool isThere) {
    if (isThere) {
        registry.add(address, sender.empty() ? address.owner : sender);
    } else {
        registry.remove(address);
    }
}

void Watcher::announce(const ItemAddress& address, bool isThere) {
    if (!isWatcher) return;
    std::string service = address.owner + address.path;
    sd_bus_emit_signal(bus.get(), watcherPath, watcherName,
                       isThere ? "StatusNotifierItemRegistered" : "StatusNotifierItemUnregistered",
                       "s", service.c_str());
}

int Watcher::readItems(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply,
                       void* data, sd_bus_error*) {
    int error = sd_bus_message_open_container(reply, 'a', "s");
    for (const ItemAddress& address : static_cast<Watcher*>(data)->registry.addresses()) {
        std::string service = address.owner + address.path;
        if (error >= 0) error = sd_bus_message_append_basic(reply, 's', service.c_str());
    }
    return error < 0 ? error : sd_bus_message_close_container(reply);
}

int Watcher::readConstant(sd_bus*, const char*, const char*, const char* property,
                          sd_bus_message* reply, void*, sd_bus_error*) {
    bool isVersion = std::string_view(property) == "ProtocolVersion";
    return isVersion ? sd_bus_message_append(reply, "i", 0) : sd_bus_message_append(reply, "b", 1);
}

}  // namespace nevo::statusnotifier
