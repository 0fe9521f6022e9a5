#include "platform/x11/XServer.h"

#include <string>

#include "platform/menubar/BarProtocol.h"

namespace nevo {

namespace {
namespace bar = barprotocol;

constexpr std::array names{"UTF8_STRING",
                           "MANAGER",
                           "_XEMBED",
                           "_XEMBED_INFO",
                           "_NET_SYSTEM_TRAY_OPCODE",
                           "_NET_SYSTEM_TRAY_VISUAL",
                           "_NET_CLIENT_LIST",
                           "_NET_ACTIVE_WINDOW",
                           "_NET_WM_NAME",
                           "_NET_WM_PID",
                           "_NET_WM_WINDOW_TYPE",
                           "_NET_WM_WINDOW_TYPE_DOCK",
                           "_NET_WM_WINDOW_TYPE_DESKTOP",
                           bar::version,
                           bar::barPid,
                           bar::ending,
                           bar::items,
                           bar::barWindow,
                           bar::geometry,
                           bar::itemPid,
                           bar::itemAppId,
                           bar::itemName,
                           bar::itemOwnerName,
                           bar::itemKind,
                           bar::itemClient,
                           bar::itemSlot,
                           bar::itemOpacity,
                           bar::setOpacity,
                           bar::moveItem,
                           bar::drag,
                           bar::statusItemLength,
                           bar::statusItemName,
                           bar::statusItemAppId};
}  // namespace

XServer::XServer(std::unique_ptr<xcb::Connection> opened)
    : link(std::move(opened)), atoms(link->get(), names), leaseWindow(xcb_generate_id(get())) {
    const std::uint32_t overrideRedirect = 1;
    xcb_create_window(get(), 0, leaseWindow, root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &overrideRedirect);
    coordinates.primaryHeight = link->screen().height_in_pixels;
}

xcb_atom_t XServer::screenAtom(std::string_view name) const {
    return atoms[std::string(name) + "_S" + std::to_string(link->screenNumber())];
}

xcb_window_t XServer::selectionOwner(xcb_atom_t selection) const {
    xcb::Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(get(), xcb_get_selection_owner(get(), selection), nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_NONE);
}

void XServer::sendMessage(xcb_window_t to, xcb_window_t about, std::string_view type,
                          const std::array<std::uint32_t, 5>& data, std::uint32_t eventMask) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = about;
    event.type = atom(type);
    for (std::size_t i = 0; i < data.size(); ++i) event.data.data32[i] = data[i];
    xcb_send_event(get(), 0, to, eventMask, reinterpret_cast<const char*>(&event));
}

}  // namespace nevo
