#include <xcb/xfixes.h>

#include <algorithm>
#include <cstdio>
#include <set>

#include "Probes.h"
#include "TrayIcon.h"
#include "platform/xcb/Properties.h"

namespace nevo::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 20s;

void report(const char* what) {
    auto now = std::chrono::duration<double>(Clock::now().time_since_epoch());
    std::printf("%s %.6f\n", what, now.count());
    std::fflush(stdout);
}

/// Sees the tray change hands, and icons leave the root window for a host.
class HostWatch {
public:
    explicit HostWatch(const Server& display) : server(display) {
        auto c = server.get();
        firstXfixesEvent = xcb_get_extension_data(c, &xcb_xfixes_id)->first_event;
        std::free(xcb_xfixes_query_version_reply(c, xcb_xfixes_query_version(c, 5, 0), nullptr));
        xcb_xfixes_select_selection_input(c, server.root(), server.atom("_NET_SYSTEM_TRAY_S0"),
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
        server.select(server.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
        server.settle();
    }

    void take(const xcb_generic_event_t& event) {
        int type = event.response_type & 0x7f;
        if (type == firstXfixesEvent + XCB_XFIXES_SELECTION_NOTIFY) {
            auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
            if (change.owner != XCB_WINDOW_NONE && !isOwned) report("owned");
            isOwned = isOwned || change.owner != XCB_WINDOW_NONE;
        } else if (type == XCB_REPARENT_NOTIFY) {
            auto& moved = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
            if (moved.parent == server.root() || !isIcon(moved.window)) return;
            icons.insert(moved.window);
        }
    }

    /// Icons that can be seen; their hosts' windows above them may be mapped late.
    int shown() const {
        return static_cast<int>(std::count_if(
            icons.begin(), icons.end(), [this](xcb_window_t w) { return isViewable(server, w); }));
    }

private:
    /// Window managers reparent too, but nothing that could be embedded.
    bool isIcon(xcb_window_t window) const {
        return xcb::PropertyRead(server.get(), window, server.atom("_XEMBED_INFO"))
            .numbers()
            .has_value();
    }

    const Server& server;
    int firstXfixesEvent;
    bool isOwned = false;
    std::set<xcb_window_t> icons;
};

}  // namespace

void watchHost(const Server& server, int icons) {
    HostWatch watch(server);
    std::puts("watching");
    std::fflush(stdout);
    auto deadline = Clock::now() + patience;
    while (watch.shown() < icons) {
        if (Clock::now() > deadline) giveUp("The host doesn't show all icons.");
        if (auto event = server.next(500us)) watch.take(*event);
    }
    report("shown");
}

}  // namespace nevo::bench
