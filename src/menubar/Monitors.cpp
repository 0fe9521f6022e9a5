#include "menubar/Monitors.h"

#include <xcb/randr.h>

#include <algorithm>

namespace nevo::menubar {

using xcb::Reply;

namespace {
PixelRect wholeRoot(const Display& display) {
    auto c = display.get();
    Reply<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(c, xcb_get_geometry(c, display.root()), nullptr));
    const xcb_screen_t& screen = display.server().screen();
    if (!root) return {0, 0, screen.width_in_pixels, screen.height_in_pixels};
    return {0, 0, root->width, root->height};
}
}  // namespace

std::vector<PixelRect> activeMonitors(const Display& display) {
    auto c = display.get();
    Reply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(c, xcb_randr_get_monitors(c, display.root(), 1), nullptr));
    std::vector<PixelRect> result;
    if (reply) {
        auto monitors = xcb_randr_get_monitors_monitors_iterator(reply.get());
        for (; monitors.rem > 0; xcb_randr_monitor_info_next(&monitors)) {
            const auto& m = *monitors.data;
            PixelRect rect{m.x, m.y, m.width, m.height};
            if (rect.width == 0 || rect.height == 0) continue;
            // Mirrored monitors stand at the same place: one bar is enough.
            if (std::find(result.begin(), result.end(), rect) != result.end()) continue;
            result.insert(m.primary ? result.begin() : result.end(), rect);
        }
    }
    if (result.empty()) result.push_back(wholeRoot(display));
    return result;
}

void selectMonitorEvents(const Display& display) {
    std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(display.get(), display.root(), XCB_CW_EVENT_MASK, &mask);
    xcb_randr_select_input(display.get(), display.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
}

}  // namespace nevo::menubar
