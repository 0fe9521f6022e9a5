#include "desktop/TestClients.h"

#include <array>

#include "desktop/Process.h"
#include "platform/xcb/Properties.h"

namespace nevo::desktoptest {

using xcb::Reply;

namespace {

std::unique_ptr<xcb::Connection> connect() {
    std::string failure;
    auto connection = xcb::Connection::open(failure);
    if (!connection) throw Failed(failure);
    return connection;
}

xcb_window_t makeWindow(const xcb::Connection& server, std::uint32_t events) {
    auto c = server.get();
    constexpr std::uint16_t size = 22;
    xcb_window_t window = xcb_generate_id(c);
    std::array<std::uint32_t, 2> values{0x33cc66, events};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, server.root(), 0, 0, size, size, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());
    return window;
}

constexpr const char* traySelection = "_NET_SYSTEM_TRAY_S0";

}  // namespace

Probe::Probe() : connection(connect()) {
    auto c = connection->get();
    xcb::Atoms atoms(c, {});
    icon = makeWindow(*connection, XCB_EVENT_MASK_BUTTON_PRESS);
    std::array<std::uint32_t, 2> info{0, 1};
    xcb::writeNumbers(c, icon, atoms["_XEMBED_INFO"], atoms["_XEMBED_INFO"], info);
    Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        c, xcb_get_selection_owner(c, atoms[traySelection]), nullptr));
    if (!owner || owner->owner == XCB_WINDOW_NONE) throw Failed("there is no tray to dock to");
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = owner->owner;
    message.type = atoms["_NET_SYSTEM_TRAY_OPCODE"];
    message.data.data32[2] = icon;
    xcb_send_event(c, 0, owner->owner, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    connection->flush();
}

int Probe::clicks() {
    while (Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection->get())}) {
        if ((event->response_type & 0x7f) == XCB_BUTTON_PRESS) ++clickCount;
    }
    return clickCount;
}

SelectionHolder::SelectionHolder(const char* selection) : connection(connect()) {
    auto c = connection->get();
    xcb::Atoms atoms(c, {});
    xcb_window_t window = makeWindow(*connection, 0);
    xcb_set_selection_owner(c, window, atoms[selection], XCB_CURRENT_TIME);
    std::free(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, atoms[selection]), nullptr));
}

}  // namespace nevo::desktoptest
