#include "platform/x11/ClientWindows.h"

#include <algorithm>

#include "platform/xcb/Properties.h"

namespace nevo {

namespace {
constexpr std::uint32_t mostListBytes = 65536;
}

ClientWindows::ClientWindows(XServer& x, EventPump& pump, WindowNumbers& windowNumbers,
                             xcb::OwnerIdentities& ownerIdentities)
    : server(x), events(pump), numbers(windowNumbers), identities(ownerIdentities) {
    pump.watchEarly([this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return;
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window == server.root() && change.atom == server.atom("_NET_CLIENT_LIST")) {
            listIsStale = true;
        }
    });
}

const std::vector<ClientWindowInfo>& ClientWindows::windows() {
    events.collect();
    if (listIsStale) readList();
    readFrames();
    return list;
}

const ClientWindowInfo* ClientWindows::find(WindowNumber number) {
    const auto& all = windows();
    auto found = std::find_if(all.begin(), all.end(),
                              [&](const ClientWindowInfo& w) { return w.number == number; });
    return found == all.end() ? nullptr : &*found;
}

bool ClientWindows::activate(ProcessId pid) {
    const auto& all = windows();
    auto newest = std::find_if(all.rbegin(), all.rend(),
                               [&](const ClientWindowInfo& w) { return w.pid == pid; });
    if (newest == all.rend()) return false;
    // Source 2: on behalf of the user, like a pager; window managers don't refuse those.
    server.sendMessage(server.root(), newest->window, "_NET_ACTIVE_WINDOW",
                       {2, XCB_CURRENT_TIME, 0, 0, 0},
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    server.flush();
    return true;
}

void ClientWindows::readList() {
    listIsStale = false;
    xcb::PropertyRead read(server.get(), server.root(), server.atom("_NET_CLIENT_LIST"),
                           mostListBytes);
    auto listed = read.numbers().value_or(std::vector<std::uint32_t>{});
    std::vector<ClientWindowInfo> fresh;
    for (xcb_window_t window : listed) {
        if (isDesktopElement(window)) continue;
        auto before = std::find_if(list.begin(), list.end(),
                                   [&](const ClientWindowInfo& w) { return w.window == window; });
        fresh.push_back(before == list.end() ? describe(window) : std::move(*before));
        if (before != list.end()) before->window = 0;
    }
    for (const ClientWindowInfo& gone : list) {
        if (gone.window != 0) numbers.drop(gone.window);
    }
    list = std::move(fresh);
}

void ClientWindows::readFrames() {
    struct Reading {
        xcb_get_geometry_cookie_t size;
        xcb_translate_coordinates_cookie_t corner;
        xcb::PropertyRead title;
    };
    std::vector<Reading> readings;
    readings.reserve(list.size());
    for (const ClientWindowInfo& info : list) {
        readings.push_back(
            {xcb_get_geometry(server.get(), info.window),
             xcb_translate_coordinates(server.get(), info.window, server.root(), 0, 0),
             xcb::PropertyRead(server.get(), info.window, server.atom("_NET_WM_NAME"))});
    }
    for (std::size_t i = 0; i < list.size(); ++i) {
        xcb::Reply<xcb_get_geometry_reply_t> size(
            xcb_get_geometry_reply(server.get(), readings[i].size, nullptr));
        xcb::Reply<xcb_translate_coordinates_reply_t> corner(
            xcb_translate_coordinates_reply(server.get(), readings[i].corner, nullptr));
        list[i].title = readings[i].title.text().value_or("");
        if (!size || !corner) continue;
        list[i].frame = {static_cast<double>(corner->dst_x), static_cast<double>(corner->dst_y),
                         static_cast<double>(size->width), static_cast<double>(size->height)};
    }
}

bool ClientWindows::isDesktopElement(xcb_window_t window) const {
    xcb::PropertyRead read(server.get(), window, server.atom("_NET_WM_WINDOW_TYPE"));
    auto types = read.numbers().value_or(std::vector<std::uint32_t>{});
    return std::any_of(types.begin(), types.end(), [&](xcb_atom_t type) {
        return type == server.atom("_NET_WM_WINDOW_TYPE_DOCK") ||
               type == server.atom("_NET_WM_WINDOW_TYPE_DESKTOP");
    });
}

ClientWindowInfo ClientWindows::describe(xcb_window_t window) {
    ClientWindowInfo info;
    info.window = window;
    info.number = numbers.of(window);
    auto pid = xcb::processOfWindow(server.get(), window, server.atom("_NET_WM_PID"));
    info.pid = pid.value_or(0);
    info.owner = identities.identify(pid, xcb::classOfWindow(server.get(), window));
    return info;
}

}  // namespace nevo
