#include "platform/x11/Compositor.h"

#include <xcb/xfixes.h>

namespace nevo {

namespace {
/// With the screen's number; who owns it composes that screen.
constexpr const char* selection = "_NET_WM_CM";
}  // namespace

Compositor::Compositor(XServer& x, EventPump& pump) : server(x) {
    const auto* fixes = xcb_get_extension_data(server.get(), &xcb_xfixes_id);
    if (fixes == nullptr || fixes->present == 0) return;
    // The server knows no request of the extension before its version was asked for.
    xcb::Reply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        server.get(), xcb_xfixes_query_version(server.get(), 4, 0), nullptr));
    if (!version) return;
    selectionEvent = static_cast<std::uint8_t>(fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    xcb_xfixes_select_selection_input(server.get(), server.root(), server.screenAtom(selection),
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    pump.watch([this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != selectionEvent) return;
        const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        if (change.selection == server.screenAtom(selection) && changed) changed();
    });
}

bool Compositor::isRunning() const {
    return server.selectionOwner(server.screenAtom(selection)) != XCB_NONE;
}

}  // namespace nevo
