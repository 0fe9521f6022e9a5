#pragma once

#include <compare>
#include <functional>
#include <list>
#include <optional>
#include <set>
#include <string>

#include "platform/Geometry.h"
#include "statusnotifier/ItemProperties.h"
#include "statusnotifier/SessionBus.h"

namespace nevo::statusnotifier {

/// Where an item is: its program's own name on the bus (":1.42"), and the object's path.
struct ItemAddress {
    std::string owner;
    std::string path;
    auto operator<=>(const ItemAddress&) const = default;
};

/// An item of another program. Knows only what that program has answered; nobody ever waits for it.
class Item {
public:
    struct Events {
        /// It is known for the first time, or says something else.
        std::function<void(Item&)> changed;
        /// Its program has left the bus, or has no such object. The item may be destroyed here.
        std::function<void(Item&)> gone;
    };

    /// `side`: of its pictures, pixels. The bus outlives the item.
    Item(SessionBus& bus, ItemAddress place, int side, Events told);
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;

    const ItemAddress& address() const { return where; }
    const ItemProperties& properties() const { return shown; }
    std::optional<ProcessId> pid() const { return process; }
    /// How often its program has said that a picture is new, and then named the one it had: what
    /// has that name may look different now.
    unsigned timesRepeated() const { return repetitions; }
    /// It has answered.
    bool isKnown() const { return hasAnswered && knowsProcess; }

    /// Whether there are news to be asked for.
    bool isStale() const {
        if (isWholeStale) return !isAsking;
        return !staleProperties.empty() && reads.empty() && (hasAnswered || asksSingly);
    }
    /// Everything is to be asked for anew.
    void outdate() { isWholeStale = true; }
    /// Asks for them. However often its program says that something is new, it is asked only here,
    /// and only when it has answered what it was asked before.
    void refresh();
    /// There was no such object when it was asked last; after a few times the item is `gone`.
    bool isMissing() const { return timesMissing > 0 && !isAsking; }
    /// Asks for everything anew.
    void askForAll();

    // What a person does with it; places in root coordinates.
    /// `refused` is called when its program knows of no such thing.
    void activate(int x, int y, std::function<void()> refused);
    void secondaryActivate(int x, int y) { click("SecondaryActivate", x, y); }
    void contextMenu(int x, int y) { click("ContextMenu", x, y); }
    /// `steps` of a wheel, positive for down and right.
    void scroll(int steps, bool isHorizontal);

private:
    struct Read {
        Item* item;
        std::string name;
        Slot slot;
    };

    void subscribe();
    void askSingly();
    void askForProcess();
    void click(const char* method, int x, int y);
    void noteSignal(const char* member);
    void finishRead(Read& read, sd_bus_message* answer);
    void tell();

    static int onSignal(sd_bus_message* message, void* item, sd_bus_error*);
    static int onOwnerChanged(sd_bus_message* message, void* item, sd_bus_error*);
    static int onAll(sd_bus_message* answer, void* item, sd_bus_error*);
    static int onProcess(sd_bus_message* answer, void* item, sd_bus_error*);
    static int onRead(sd_bus_message* answer, void* read, sd_bus_error*);
    static int onActivated(sd_bus_message* answer, void* item, sd_bus_error*);

    SessionBus& bus;
    ItemAddress where;
    int side;
    Events events;
    ItemProperties shown;
    std::optional<ProcessId> process;
    bool hasAnswered = false;
    int timesMissing = 0;
    /// For everything.
    bool isAsking = false;
    bool isWholeStale = false;
    /// All at once was too much, or took too long.
    bool asksSingly = false;
    /// Something of what was asked singly has come.
    bool hasSpoken = false;
    /// In a row.
    int timesLate = 0;
    bool knowsProcess = false;

    std::set<std::string> staleProperties;
    std::list<Read> reads;
    bool hasNews = false;
    unsigned repetitions = 0;
    std::function<void()> refusedActivation;
    Slot signals;
    Slot ownerChanges;
    Slot firstAnswer;
    Slot processAnswer;
    Slot activation;
};

}  // namespace nevo::statusnotifier
