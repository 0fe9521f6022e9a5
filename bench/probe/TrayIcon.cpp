#include "TrayIcon.h"

#include <array>

#include "Probes.h"
#include "platform/xcb/Properties.h"

namespace nevo::bench {

using xcb::Reply;

namespace {

constexpr std::uint16_t iconSize = 22;
constexpr std::chrono::milliseconds changeInterval{100};
/// A number of them that no rhythm of looking at the icon has as a divisor.
constexpr std::array<std::uint32_t, 7> changingColors{0x33cc66, 0xcc3366, 0x3366cc, 0xcccc33,
                                                      0x33cccc, 0xcc33cc, 0xff8800};

xcb_window_t createIcon(const Server& server, const std::string& name, std::uint32_t events) {
    auto c = server.get();
    xcb_window_t window = xcb_generate_id(c);
    std::array<std::uint32_t, 2> values{0x33cc66, events};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, server.root(), 0, 0, iconSize, iconSize, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());
    std::array<std::uint32_t, 2> info{0, 1};
    xcb_atom_t infoAtom = server.atom("_XEMBED_INFO");
    xcb::writeNumbers(c, window, infoAtom, infoAtom, info);
    std::string windowClass = name + '\0' + name + '\0';
    xcb::writeText(c, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, windowClass);
    xcb::writeText(c, window, server.atom("_NET_WM_NAME"), server.atom("UTF8_STRING"), name);
    return window;
}

xcb_window_t trayOwner(const Server& server) {
    Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        server.get(), xcb_get_selection_owner(server.get(), server.atom("_NET_SYSTEM_TRAY_S0")),
        nullptr));
    return owner ? owner->owner : 0;
}

}  // namespace

xcb_window_t dockIcon(const Server& server, const std::string& name, std::uint32_t events) {
    waitFor("a tray is there", [&] { return trayOwner(server) != 0; });
    xcb_window_t window = createIcon(server, name, events);
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = trayOwner(server);
    message.type = server.atom("_NET_SYSTEM_TRAY_OPCODE");
    message.data.data32[2] = window;
    xcb_send_event(server.get(), 0, message.window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    waitFor("the tray shows the icon", [&] { return isViewable(server, window); });
    return window;
}

bool isViewable(const Server& server, xcb_window_t window) {
    Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        server.get(), xcb_get_window_attributes(server.get(), window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::optional<Point> middleOf(const Server& server, xcb_window_t window) {
    auto c = server.get();
    auto sizeAsked = xcb_get_geometry(c, window);
    auto placeAsked = xcb_translate_coordinates(c, window, server.root(), 0, 0);
    Reply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(c, sizeAsked, nullptr));
    Reply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(c, placeAsked, nullptr));
    if (!size || !place) return std::nullopt;
    return Point{static_cast<double>(place->dst_x + size->width / 2),
                 static_cast<double>(place->dst_y + size->height / 2)};
}

void showIcon(const Server& server, const std::string& name) {
    dockIcon(server, name, XCB_EVENT_MASK_NO_EVENT);
    while (true) server.next(std::chrono::hours(1));
}

void showChangingIcon(const Server& server, const std::string& name) {
    xcb_window_t window = dockIcon(server, name, XCB_EVENT_MASK_NO_EVENT);
    for (std::size_t turn = 0;; ++turn) {
        std::uint32_t color = changingColors[turn % changingColors.size()];
        xcb_change_window_attributes(server.get(), window, XCB_CW_BACK_PIXEL, &color);
        xcb_clear_area(server.get(), 0, window, 0, 0, 0, 0);
        server.settle();
        rest(changeInterval);
    }
}

}  // namespace nevo::bench
