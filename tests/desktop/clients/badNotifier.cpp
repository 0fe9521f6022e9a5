// A program that offers status items over the session bus and behaves badly, for tests and
// benchmarks of tray hosts: bad-notifier KIND with one of the kinds below. Says "registered" when a
// watcher has taken what it offers, and runs until it is ended. SIGUSR1 makes its items passive,
// and active again.

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* itemPath = "/StatusNotifierItem";
constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char* menuPath = "/Menu";
/// Of an animation.
constexpr int frames = 7;
constexpr const char* watcher = "org.kde.StatusNotifierWatcher";

struct Behaviour {
    const char* path = itemPath;
    int items = 1;
    /// Register at paths of their own even if there is one.
    bool hasOddPath = false;
    /// Seconds that an answer takes; below 0 for one that never comes.
    int answerTime = 0;
    int pixmapSide = 0;
    /// Of the pixmap; 0 for as many as its size takes.
    std::size_t pixmapBytes = 0;
    std::string title = "Bad";
    int signalsPerSecond = 0;
    /// Whether each of those signals is about another pixmap.
    bool isAnimated = false;
    bool leavesAtMenu = false;
    /// Says in the bus's words that everybody else has left it.
    bool forges = false;
};

sd_bus* bus = nullptr;
Behaviour behaviour;
std::int64_t signalsSent = 0;
volatile std::sig_atomic_t isPassive = 0;

void require(int result, const char* what) {
    if (result >= 0) return;
    std::fprintf(stderr, "bad-notifier: %s: error %d\n", what, -result);
    std::exit(1);
}

int readText(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply, void*,
             sd_bus_error*) {
    std::string name = property;
    std::string value = name == "Title" ? behaviour.title : "";
    if (name == "Id") value = "bad";
    if (name == "Status") value = isPassive != 0 ? "Passive" : "Active";
    return sd_bus_message_append(reply, "s", value.c_str());
}

int readPixmap(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
               sd_bus_error*) {
    require(sd_bus_message_open_container(reply, 'a', "(iiay)"), "pixmaps");
    if (behaviour.pixmapSide > 0) {
        auto side = static_cast<std::size_t>(behaviour.pixmapSide);
        auto frame = behaviour.isAnimated ? signalsSent % frames : 0;
        auto shade = static_cast<std::uint8_t>(0xC0 - frame * 0x10);
        std::vector<std::uint8_t> bytes(
            behaviour.pixmapBytes > 0 ? behaviour.pixmapBytes : side * side * 4, shade);
        require(sd_bus_message_open_container(reply, 'r', "iiay"), "pixmap");
        require(sd_bus_message_append(reply, "ii", behaviour.pixmapSide, behaviour.pixmapSide),
                "size");
        require(sd_bus_message_append_array(reply, 'y', bytes.data(), bytes.size()), "bytes");
        require(sd_bus_message_close_container(reply), "pixmap");
    }
    return sd_bus_message_close_container(reply);
}

int readMenu(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
             sd_bus_error*) {
    return sd_bus_message_append(reply, "o", menuPath);
}

const sd_bus_vtable itemTable[] = {SD_BUS_VTABLE_START(0),
                                   SD_BUS_PROPERTY("Id", "s", readText, 0, 0),
                                   SD_BUS_PROPERTY("Title", "s", readText, 0, 0),
                                   SD_BUS_PROPERTY("Status", "s", readText, 0, 0),
                                   SD_BUS_PROPERTY("IconPixmap", "a(iiay)", readPixmap, 0, 0),
                                   SD_BUS_PROPERTY("Menu", "o", readMenu, 0, 0),
                                   SD_BUS_SIGNAL("NewIcon", "", 0),
                                   SD_BUS_SIGNAL("NewStatus", "s", 0),
                                   SD_BUS_VTABLE_END};

int onMenuCall(sd_bus_message*, void*, sd_bus_error*) { std::exit(0); }

const sd_bus_vtable menuTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("AboutToShow", "i", "b", onMenuCall, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", onMenuCall, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END};

/// Answers that are held back, with the time when they are due.
std::vector<std::pair<Clock::time_point, sd_bus_message*>> heldCalls;

int holdBack(sd_bus_message* call, void*, sd_bus_error*) {
    const char* interface = sd_bus_message_get_interface(call);
    bool isQuestion = interface != nullptr && std::string(interface) == propertiesInterface;
    if (!isQuestion || behaviour.answerTime == 0) return 0;
    auto due = behaviour.answerTime < 0 ? Clock::time_point::max()
                                        : Clock::now() + std::chrono::seconds(behaviour.answerTime);
    heldCalls.emplace_back(due, sd_bus_message_ref(call));
    return 1;
}

void answerHeld() {
    for (auto& [due, call] : heldCalls) {
        if (call == nullptr || Clock::now() < due) continue;
        sd_bus_message* reply = nullptr;
        require(sd_bus_message_new_method_return(call, &reply), "answer");
        const char* interface = nullptr;
        const char* property = nullptr;
        sd_bus_message_rewind(call, 1);
        if (std::string(sd_bus_message_get_member(call)) == "GetAll") {
            require(sd_bus_message_append(reply, "a{sv}", 2, "Id", "s", "late", "Status", "s",
                                          "Active"),
                    "answer");
        } else {
            require(sd_bus_message_read(call, "ss", &interface, &property), "question");
            bool isId = std::string(property) == "Id";
            require(sd_bus_message_append(reply, "v", "s", isId ? "late" : ""), "answer");
        }
        require(sd_bus_send(bus, reply, nullptr), "answer");
        sd_bus_message_unref(reply);
        sd_bus_message_unref(call);
        call = nullptr;
    }
}

void registerItems() {
    for (int i = 0; i < behaviour.items; ++i) {
        bool isUsual = behaviour.items == 1 && !behaviour.hasOddPath;
        std::string path = isUsual ? behaviour.path : "/Item" + std::to_string(i);
        if (path == itemPath || !isUsual) {
            require(sd_bus_add_object_vtable(bus, nullptr, path.c_str(), itemInterface, itemTable,
                                             nullptr),
                    "item");
        }
        sd_bus_call_method(bus, watcher, "/StatusNotifierWatcher", watcher,
                           "RegisterStatusNotifierItem", nullptr, nullptr, "s", path.c_str());
    }
    std::puts("registered");
    std::fflush(stdout);
}

void forge() {
    constexpr int mostConnections = 100;
    for (int i = 0; i < mostConnections; ++i) {
        std::string name = ":1." + std::to_string(i);
        sd_bus_message* lie = nullptr;
        require(sd_bus_message_new_signal(bus, &lie, "/org/freedesktop/DBus",
                                          "org.freedesktop.DBus", "NameOwnerChanged"),
                "forged signal");
        require(sd_bus_message_append(lie, "sss", name.c_str(), name.c_str(), ""), "names");
        require(sd_bus_send_to(bus, lie, watcher, nullptr), "sending it to the bar");
        sd_bus_message_unref(lie);
    }
}

void liveOn() {
    auto begin = Clock::now();
    auto wasPassive = isPassive;
    while (true) {
        while (sd_bus_process(bus, nullptr) > 0) {
        }
        answerHeld();
        if (behaviour.signalsPerSecond > 0) {
            auto passed =
                std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
            while (signalsSent < passed.count() * behaviour.signalsPerSecond / 1000) {
                ++signalsSent;
                sd_bus_emit_signal(bus, itemPath, itemInterface, "NewIcon", "");
            }
        }
        if (isPassive != wasPassive) {
            wasPassive = isPassive;
            sd_bus_emit_signal(bus, itemPath, itemInterface, "NewStatus", "s",
                               wasPassive != 0 ? "Passive" : "Active");
        }
        constexpr std::uint64_t pause = 10'000;
        int error = sd_bus_wait(bus, pause);
        if (error < 0 && error != -EINTR) return;
    }
}

const std::map<std::string, Behaviour>& kinds() {
    constexpr std::size_t megabyte = 1U << 20U;
    std::string longTitle(10 * megabyte, 'x');
    std::string trickyTitle = "<b>bold</b>\x1b[31m\n\u202Eeman";
    static const std::map<std::string, Behaviour> all{
        {"plain", {.pixmapSide = 22}},
        {"oddpath", {.hasOddPath = true, .pixmapSide = 22}},
        {"nopath", {.path = "/NoSuchThing"}},
        {"late", {.answerTime = 30}},
        {"silent", {.answerTime = -1}},
        {"animated", {.pixmapSide = 22, .signalsPerSecond = 10, .isAnimated = true}},
        {"flood", {.pixmapSide = 22, .signalsPerSecond = 10'000}},
        {"lying", {.pixmapSide = 10'000, .pixmapBytes = 100}},
        // As large as a message may carry.
        {"huge", {.pixmapSide = 4'000}},
        {"large", {.pixmapSide = 1'000}},
        {"long-title", {.pixmapSide = 22, .title = longTitle}},
        {"tricky-title", {.pixmapSide = 22, .title = trickyTitle}},
        {"thousand", {.items = 1'000}},
        {"forger", {.forges = true}},
        {"leaver", {.pixmapSide = 22, .leavesAtMenu = true}}};
    return all;
}

}  // namespace

int main(int argc, char** argv) {
    auto kind = argc == 2 ? kinds().find(argv[1]) : kinds().end();
    if (kind == kinds().end()) {
        std::fputs("Usage: bad-notifier KIND, which is one of:", stderr);
        for (const auto& [name, meant] : kinds()) std::fprintf(stderr, " %s", name.c_str());
        std::fputs("\n", stderr);
        return 2;
    }
    behaviour = kind->second;
    require(sd_bus_open_user(&bus), "the session bus");
    require(sd_bus_add_filter(bus, nullptr, holdBack, nullptr), "filter");
    if (behaviour.leavesAtMenu) {
        require(sd_bus_add_object_vtable(bus, nullptr, menuPath, "com.canonical.dbusmenu",
                                         menuTable, nullptr),
                "menu");
    }
    if (behaviour.forges) forge();
    std::signal(SIGUSR1, [](int) { isPassive = isPassive == 0; });
    registerItems();
    liveOn();
    return 0;
}
