#include "desktop/BarView.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/menubar/BarProtocol.h"
#include "platform/xcb/Properties.h"

namespace nevo {

namespace {
std::string describe(const Rect& rect) {
    return fmt::format("{}x{}+{}+{}", rect.width, rect.height, rect.x, rect.y);
}
}  // namespace

void PrintTo(const Rect& rect, std::ostream* out) { *out << describe(rect); }

namespace desktoptest {

using xcb::PropertyRead;
using xcb::Reply;

namespace {

constexpr double opaque = 0xffffffff;

Rect rectOf(const std::vector<std::uint32_t>& values) {
    auto at = [&](std::size_t i) {
        return static_cast<double>(static_cast<std::int32_t>(values[i]));
    };
    return {at(0), at(1), at(2), at(3)};
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Item& item) {
    return out << fmt::format("{:<16} {:<26} \"{}\" process {} slot {} place {} opacity {:.2f}{}{}",
                              item.appId, item.name, item.ownerName, item.pid, describe(item.slot),
                              describe(item.place), item.opacity, item.floating ? " floating" : "",
                              item.onScreen ? " on screen" : "");
}

BarView::BarView(const xcb::Connection& connection)
    : server(connection),
      atoms(std::make_unique<xcb::Atoms>(connection.get(), std::span<const char* const>())) {}

xcb_window_t BarView::control() const {
    auto c = server.get();
    Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        c, xcb_get_selection_owner(c, (*atoms)["_NET_SYSTEM_TRAY_S0"]), nullptr));
    if (!owner || owner->owner == XCB_WINDOW_NONE) return 0;
    auto version = PropertyRead(c, owner->owner, (*atoms)[barprotocol::version]).number();
    return version == barprotocol::currentVersion ? owner->owner : 0;
}

ProcessId BarView::pid() const {
    auto number = PropertyRead(server.get(), control(), (*atoms)[barprotocol::barPid]).number();
    return static_cast<ProcessId>(number.value_or(0));
}

std::vector<std::uint32_t> BarView::geometry() const {
    auto values = PropertyRead(server.get(), control(), (*atoms)[barprotocol::geometry]).numbers();
    return values && values->size() == 5 ? *values : std::vector<std::uint32_t>(5);
}

Rect BarView::frame() const { return rectOf(geometry()); }

double BarView::systemAreaLeft() const { return static_cast<std::int32_t>(geometry()[4]); }

/// One item's answers, all asked for before the first is awaited.
struct BarView::Reading {
    Reading(xcb_connection_t* c, xcb_window_t root, const xcb::Atoms& atoms, xcb_window_t window)
        : frame(window),
          client(c, window, atoms[barprotocol::itemClient]),
          pid(c, window, atoms[barprotocol::itemPid]),
          appId(c, window, atoms[barprotocol::itemAppId]),
          name(c, window, atoms[barprotocol::itemName]),
          ownerName(c, window, atoms[barprotocol::itemOwnerName]),
          slot(c, window, atoms[barprotocol::itemSlot]),
          opacity(c, window, atoms[barprotocol::itemOpacity]),
          size(xcb_get_geometry(c, window)),
          origin(xcb_translate_coordinates(c, window, root, 0, 0)) {}

    xcb_window_t frame;
    PropertyRead client, pid, appId, name, ownerName, slot, opacity;
    xcb_get_geometry_cookie_t size;
    xcb_translate_coordinates_cookie_t origin;
};

std::optional<Rect> BarView::placeOf(const Reading& reading) const {
    Reply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(server.get(), reading.size, nullptr));
    Reply<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(server.get(), reading.origin, nullptr));
    if (!size || !origin) return std::nullopt;
    return Rect{static_cast<double>(origin->dst_x), static_cast<double>(origin->dst_y),
                static_cast<double>(size->width), static_cast<double>(size->height)};
}

std::vector<Item> BarView::items() const {
    auto c = server.get();
    auto frames = PropertyRead(c, control(), (*atoms)[barprotocol::items]).numbers();
    std::vector<Reading> readings;
    for (xcb_window_t window : frames.value_or(std::vector<std::uint32_t>())) {
        readings.emplace_back(c, server.root(), *atoms, window);
    }
    Rect bar = frame();
    std::vector<Item> items;
    for (Reading& reading : readings) {
        auto place = placeOf(reading);
        auto slot = reading.slot.numbers();
        Item item;
        item.frame = reading.frame;
        item.client = reading.client.number().value_or(0);
        item.pid = static_cast<ProcessId>(reading.pid.number().value_or(0));
        item.appId = reading.appId.text().value_or("");
        item.name = reading.name.text().value_or("");
        item.ownerName = reading.ownerName.text().value_or("");
        item.opacity = reading.opacity.number().value_or(0xffffffff) / opaque;
        if (!place || !slot || slot->size() != 6) continue;
        item.place = *place;
        item.slot = rectOf(*slot);
        item.floating = (*slot)[4] != 0;
        item.onScreen =
            item.opacity > 0 && item.slot.width > 0 && place->x >= bar.x &&
            place->maxX() <= bar.maxX() && place->intersects(bar) &&
            (item.floating || place->x == item.slot.x + static_cast<std::int32_t>((*slot)[5]));
        items.push_back(item);
    }
    return items;
}

void BarView::send(const char* message, std::vector<std::uint32_t> values) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = control();
    event.type = (*atoms)[message];
    std::copy(values.begin(), values.end(), event.data.data32);
    xcb_send_event(server.get(), 0, event.window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&event));
    server.flush();
}

void BarView::setOpacity(const Item& item, double opacity, xcb_window_t lease) const {
    send(barprotocol::setOpacity,
         {item.frame, static_cast<std::uint32_t>(opacity * opaque), lease});
}

void BarView::move(const Item& item, int x, int y, xcb_window_t lease) const {
    send(barprotocol::moveItem,
         {item.frame, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), lease});
}

}  // namespace desktoptest
}  // namespace nevo
