#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <optional>

#include "Probes.h"
#include "desktop/BarView.h"

namespace nevo::bench {

namespace {

using namespace std::chrono_literals;
using desktoptest::BarView;

constexpr const char* itemPath = "/StatusNotifierItem";
constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* watcher = "org.kde.StatusNotifierWatcher";
/// A click that hasn't arrived by then went elsewhere.
constexpr auto missedAfter = 500ms;

void require(int result, const char* what) {
    if (result < 0) giveUp(std::string("The session bus fails: ") + what + ".");
}

/// A program that offers one item over the session bus, and answers at once.
class BusItem {
public:
    BusItem() {
        require(sd_bus_open_user(&bus), "open");
        require(sd_bus_add_object_vtable(bus, nullptr, itemPath, itemInterface, table, this),
                "object");
        require(sd_bus_call_method(bus, watcher, "/StatusNotifierWatcher", watcher,
                                   "RegisterStatusNotifierItem", nullptr, nullptr, "s", itemPath),
                "register");
    }
    ~BusItem() { sd_bus_flush_close_unref(bus); }
    BusItem(const BusItem&) = delete;
    BusItem& operator=(const BusItem&) = delete;

    /// Answers what comes in that time; ends early with the next click, and gives its moment.
    std::optional<Clock::time_point> answer(std::chrono::microseconds time) {
        auto end = Clock::now() + time;
        clicked.reset();
        while (!clicked && Clock::now() < end) {
            if (sd_bus_process(bus, nullptr) > 0) continue;
            auto left =
                std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now()).count();
            require(sd_bus_wait(bus, static_cast<std::uint64_t>(std::max<long>(left, 0))), "wait");
        }
        return clicked;
    }

private:
    static int onActivate(sd_bus_message* call, void* item, sd_bus_error*) {
        static_cast<BusItem*>(item)->clicked = Clock::now();
        return sd_bus_reply_method_return(call, "");
    }

    static int readText(sd_bus*, const char*, const char*, const char* property,
                        sd_bus_message* reply, void*, sd_bus_error*) {
        bool isStatus = std::string(property) == "Status";
        return sd_bus_message_append(reply, "s", isStatus ? "Active" : "bench-probe");
    }

    static const sd_bus_vtable table[];
    sd_bus* bus = nullptr;
    std::optional<Clock::time_point> clicked;
};

const sd_bus_vtable BusItem::table[] = {
    SD_BUS_VTABLE_START(0), SD_BUS_PROPERTY("Id", "s", readText, 0, 0),
    SD_BUS_PROPERTY("Status", "s", readText, 0, 0),
    SD_BUS_METHOD("Activate", "ii", "", onActivate, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};

std::optional<Point> ownPlace(const BarView& view) {
    for (const auto& item : view.items()) {
        if (item.pid == ::getpid() && item.onScreen) return item.place.center();
    }
    return std::nullopt;
}

}  // namespace

void timeActivations(const Server& server, int count) {
    BusItem item;
    BarView view(server.server());
    waitFor("the bar shows the item", [&] {
        item.answer(1ms);
        return ownPlace(view).has_value();
    });
    int missed = 0;
    for (int hits = 0; hits < count;) {
        if (auto place = ownPlace(view)) server.moveTo(*place);
        server.press();
        server.settle();
        auto released = server.release();
        if (auto clicked = item.answer(missedAfter)) {
            std::printf("click %.3f\n", milliseconds(released, *clicked));
            ++hits;
        } else if (++missed > count) {
            giveUp("Most clicks miss the item.");
        }
        // No multiple of the bar's rhythm, so that clicks fall into every part of it.
        item.answer(37ms);
    }
    std::printf("missed %d\n", missed);
}

}  // namespace nevo::bench
