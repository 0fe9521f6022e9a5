#include <xcb/damage.h>

#include <algorithm>
#include <cstdio>
#include <map>

#include "Probes.h"
#include "desktop/BarView.h"
#include "platform/menubar/BarProtocol.h"
#include "platform/xcb/Properties.h"

namespace nevo::bench {

namespace {

using namespace std::chrono_literals;
using desktoptest::BarView;
using desktoptest::Item;

constexpr auto patience = 5s;
/// Quicker ones are double clicks to the manager.
constexpr auto betweenClicks = 450ms;

struct Times {
    double moved;
    double painted;
};

/// Nevo's toggle with the frames of the items left of it.
class ToggleWatch {
public:
    explicit ToggleWatch(const Server& display) : server(display), view(display.server()) {
        waitFor("Nevo's toggle hides items", [this] { return findHidden(); });
        auto c = server.get();
        firstDamageEvent = xcb_get_extension_data(c, &xcb_damage_id)->first_event;
        std::free(xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr));
        xcb_damage_create(c, xcb_generate_id(c), barWindow(),
                          XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
        for (auto& [frame, edge] : rightEdges)
            server.select(frame, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        server.moveTo(toggle.place.center());
        server.settle();
    }

    std::size_t size() const { return rightEdges.size(); }

    /// One click: from the release until all stand on the other side of the screen's edge.
    Times click() {
        while (server.next(0us)) {
        }
        bool wasHidden = areAll(true);
        if (!wasHidden && !areAll(false)) giveUp("Some items are hidden and some aren't.");
        server.press();
        server.settle();
        auto released = server.release();
        auto moved = until(released, [&](const xcb_generic_event_t& event) {
            return take(event) && areAll(!wasHidden);
        });
        auto painted = until(released, [&](const xcb_generic_event_t& event) {
            take(event);
            return (event.response_type & 0x7f) == firstDamageEvent;
        });
        return {moved, painted};
    }

private:
    /// Right after its start Nevo hides what is left of the toggle: those are the ones to watch.
    bool findHidden() {
        rightEdges.clear();
        for (const Item& item : view.items()) {
            bool isNevos = item.name.starts_with("Nevo_");
            if (item.name == "Nevo_Toggle") toggle = item;
            if (isNevos || item.slot.width == 0) continue;
            double right = item.place.maxX() - view.frame().x;
            if (right <= 0) rightEdges[item.frame] = right;
        }
        return toggle.frame != 0 && toggle.onScreen && !rightEdges.empty();
    }

    xcb_window_t barWindow() const {
        return xcb::PropertyRead(server.get(), view.control(), server.atom(barprotocol::barWindow))
            .number()
            .value_or(0);
    }

    template <class Condition>
    double until(Clock::time_point released, Condition condition) {
        while (Clock::now() - released < patience) {
            auto event = server.next(patience);
            if (event && condition(*event)) return milliseconds(released, Clock::now());
        }
        giveUp("A click on the toggle came to nothing.");
    }

    bool take(const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY) return false;
        auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        auto found = rightEdges.find(configured.window);
        if (found == rightEdges.end()) return false;
        found->second = configured.x + configured.width;
        return true;
    }

    bool areAll(bool hidden) const {
        return std::all_of(rightEdges.begin(), rightEdges.end(),
                           [&](const auto& edge) { return (edge.second <= 0) == hidden; });
    }

    const Server& server;
    BarView view;
    Item toggle;
    int firstDamageEvent = 0;
    /// Of the watched frames, in the bar.
    std::map<xcb_window_t, double> rightEdges;
};

}  // namespace

void timeToggle(const Server& server, int count) {
    ToggleWatch watch(server);
    std::printf("items %zu\n", watch.size());
    for (int i = 0; i < 2 * count; ++i) {
        rest(betweenClicks);
        Times times = watch.click();
        const char* way = i % 2 == 0 ? "expand" : "collapse";
        std::printf("%s %.3f\n%s-painted %.3f\n", way, times.moved, way, times.painted);
    }
}

}  // namespace nevo::bench
