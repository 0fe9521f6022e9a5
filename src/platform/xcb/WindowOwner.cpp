#include "platform/xcb/WindowOwner.h"

#include <xcb/res.h>

#include "platform/xcb/Connection.h"
#include "platform/xcb/Properties.h"

namespace nevo::xcb {

namespace {
constexpr std::uint32_t maximumClassBytes = 1024;

bool hasXRes(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_res_id);
    return extension != nullptr && extension->present != 0;
}

std::optional<ProcessId> processByXRes(xcb_connection_t* connection, xcb_window_t window) {
    if (!hasXRes(connection)) return std::nullopt;
    xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    Reply<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(
        connection, xcb_res_query_client_ids(connection, 1, &wanted), nullptr));
    if (!reply) return std::nullopt;
    for (auto ids = xcb_res_query_client_ids_ids_iterator(reply.get()); ids.rem > 0;
         xcb_res_client_id_value_next(&ids)) {
        // No other kind of id was asked for.
        if (xcb_res_client_id_value_value_length(ids.data) < 1) continue;
        auto pid = static_cast<ProcessId>(*xcb_res_client_id_value_value(ids.data));
        if (pid > 0) return pid;
    }
    return std::nullopt;
}
}  // namespace

std::optional<ProcessId> processOfWindow(xcb_connection_t* connection, xcb_window_t window,
                                         xcb_atom_t netWmPid) {
    PropertyRead claimed(connection, window, netWmPid, 4);
    if (auto pid = processByXRes(connection, window)) return pid;
    auto pid = claimed.number();
    if (!pid || *pid == 0 || *pid > 0x7FFFFFFF) return std::nullopt;
    return static_cast<ProcessId>(*pid);
}

WindowClass classOfWindow(xcb_connection_t* connection, xcb_window_t window) {
    PropertyRead read(connection, window, XCB_ATOM_WM_CLASS, maximumClassBytes);
    std::string both = read.text().value_or("");
    WindowClass result;
    std::size_t end = both.find('\0');
    result.instance = both.substr(0, end);
    if (end != std::string::npos) {
        result.name = both.substr(end + 1);
        result.name = result.name.substr(0, result.name.find('\0'));
    }
    return result;
}

}  // namespace nevo::xcb
