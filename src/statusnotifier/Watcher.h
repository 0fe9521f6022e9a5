#pragma once

#include <functional>
#include <list>
#include <string>

#include "statusnotifier/Registry.h"

namespace nevo::statusnotifier {

/// The service that programs register their items with (`org.kde.StatusNotifierWatcher`), and the
/// host that shows them. Where another program is the watcher already, this one only learns from it
/// what items there are, and follows it when it goes.
class Watcher {
public:
    /// `log` is told one sentence for people, when it becomes the watcher or joins one.
    Watcher(SessionBus& of, Registry& items, std::function<void(const std::string&)> log);
    ~Watcher();
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    /// Tells programs that ask that an item has come or gone.
    void announce(const ItemAddress& address, bool isThere);

private:
    /// A registration by a name whose owner isn't known yet.
    struct Lookup {
        Watcher* watcher;
        std::string path;
        /// Who said it; empty for another watcher.
        std::string sender;
        bool isThere;
        Slot slot;
    };
    /// A program that may have an item that it registered with an earlier watcher.
    struct Probe {
        Watcher* watcher;
        ItemAddress address;
        Slot slot;
    };

    void requestNames();
    void becomeWatcher();
    void join();
    /// Asks the watcher that there is for its items.
    void follow();
    void askForOthers();
    void probeAll(sd_bus_message* names);
    /// What a program or another watcher calls an item: a bus name, an object's path, or both
    /// together. `sender`: who says so; empty for another watcher. False when it is none of these,
    /// or when that program has said too much at once.
    bool take(const std::string& service, const std::string& sender, bool isThere);
    void put(const ItemAddress& address, const std::string& sender, bool isThere);

    static int onRegisterItem(sd_bus_message* message, void* watcher, sd_bus_error* error);
    static int onRegisterHost(sd_bus_message* message, void* watcher, sd_bus_error* error);
    static int onRequested(sd_bus_message* answer, void* watcher, sd_bus_error*);
    static int onAcquired(sd_bus_message* message, void* watcher, sd_bus_error*);
    static int onNames(sd_bus_message* answer, void* watcher, sd_bus_error*);
    static int onProbed(sd_bus_message* answer, void* probe, sd_bus_error*);
    static int onOthers(sd_bus_message* answer, void* watcher, sd_bus_error*);
    static int onOtherFound(sd_bus_message* answer, void* watcher, sd_bus_error*);
    static int onOwnerChanged(sd_bus_message* message, void* watcher, sd_bus_error*);
    static int onOtherChanged(sd_bus_message* message, void* watcher, sd_bus_error*);
    static int onOwnerFound(sd_bus_message* answer, void* lookup, sd_bus_error*);
    static int readItems(sd_bus* bus, const char* path, const char* interface, const char* property,
                         sd_bus_message* reply, void* watcher, sd_bus_error* error);
    static int readConstant(sd_bus* bus, const char* path, const char* interface,
                            const char* property, sd_bus_message* reply, void* watcher,
                            sd_bus_error* error);
    static const sd_bus_vtable table[];

    SessionBus& bus;
    Registry& registry;
    std::function<void(const std::string&)> say;
    bool isWatcher = false;
    std::list<Lookup> lookups;
    std::list<Probe> probes;
    Slot object;
    Slot request;
    Slot hostRequest;
    Slot acquired;
    Slot names;
    /// The other watcher's own name on the bus.
    std::string otherOwner;
    Slot otherFound;
    Slot others;
    Slot otherChanges;
    Slot ownerChanges;
};

}  // namespace nevo::statusnotifier
