#include "desktop/TestClients.h"

#include <array>

#include "desktop/Process.h"
#include "platform/xcb/Properties.h"

namespace nevo::desktoptest {

using xcb::Reply;

std::unique_ptr<xcb::Connection> connect() {
    std::string failure;
    auto connection = xcb::Connection::open(failure);
    if (!connection) throw Failed(failure);
    return connection;
}

namespace {

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

constexpr std::uint8_t depth = 24;
constexpr const char* traySelection = "_NET_SYSTEM_TRAY_S0";

}  // namespace

Probe::Probe(bool isShownFirst) : connection(connect()) {
    auto c = connection->get();
    xcb::Atoms atoms(c, {});
    iconWindow = makeWindow(*connection, XCB_EVENT_MASK_BUTTON_PRESS);
    setShown(true);
    if (isShownFirst) xcb_map_window(c, iconWindow);
    Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        c, xcb_get_selection_owner(c, atoms[traySelection]), nullptr));
    if (!owner || owner->owner == XCB_WINDOW_NONE) throw Failed("there is no tray to dock to");
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = owner->owner;
    message.type = atoms["_NET_SYSTEM_TRAY_OPCODE"];
    message.data.data32[2] = iconWindow;
    xcb_send_event(c, 0, owner->owner, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    connection->flush();
}

void Probe::setShown(bool shown) {
    auto c = connection->get();
    xcb::Atoms atoms(c, {});
    std::array<std::uint32_t, 2> info{0, shown ? 1U : 0U};
    xcb::writeNumbers(c, iconWindow, atoms["_XEMBED_INFO"], atoms["_XEMBED_INFO"], info);
    connection->flush();
}

std::vector<std::uint32_t> Probe::icon(std::uint32_t left, std::uint32_t right) {
    std::vector<std::uint32_t> pixels;
    for (int i = 0; i < size * size; ++i) pixels.push_back(i % size < size / 2 ? left : right);
    return pixels;
}

void Probe::paint(std::uint32_t left, std::uint32_t right) {
    auto c = connection->get();
    auto pixels = icon(left, right);
    auto side = static_cast<std::uint16_t>(size);
    xcb_pixmap_t picture = xcb_generate_id(c);
    xcb_gcontext_t context = xcb_generate_id(c);
    xcb_create_pixmap(c, depth, picture, iconWindow, side, side);
    xcb_create_gc(c, context, picture, 0, nullptr);
    xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, picture, context, side, side, 0, 0, 0, depth,
                  static_cast<std::uint32_t>(pixels.size() * 4),
                  reinterpret_cast<const std::uint8_t*>(pixels.data()));
    xcb_change_window_attributes(c, iconWindow, XCB_CW_BACK_PIXMAP, &picture);
    xcb_clear_area(c, 0, iconWindow, 0, 0, 0, 0);
    xcb_free_gc(c, context);
    xcb_free_pixmap(c, picture);
    connection->flush();
}

int Probe::clicks() { return static_cast<int>(buttons().size()); }

const std::vector<int>& Probe::buttons() {
    while (Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection->get())}) {
        if ((event->response_type & 0x7f) != XCB_BUTTON_PRESS) continue;
        pressed.push_back(reinterpret_cast<xcb_button_press_event_t*>(event.get())->detail);
    }
    return pressed;
}

LeaseHolder::LeaseHolder() : connection(connect()) {
    view = std::make_unique<BarView>(*connection);
    auto c = connection->get();
    lease = xcb_generate_id(c);
    xcb_create_window(c, 0, lease, connection->root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    connection->flush();
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
