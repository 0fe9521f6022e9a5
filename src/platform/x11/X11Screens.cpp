#include "platform/x11/X11Screens.h"

#include <unistd.h>
#include <xcb/randr.h>

#include <algorithm>

#include "platform/menubar/BarProtocol.h"
#include "platform/menubar/MenuBarRow.h"

namespace nevo {

namespace {
/// A change comes as several events over some time: a mode, an output, the screen's size.
constexpr int settleMilliseconds = 250;
/// From the first change of the row on: one that keeps changing is announced meanwhile.
constexpr int longestWaitMilliseconds = 500;
}  // namespace

X11Screens::X11Screens(XServer& x, EventPump& pump, NotificationCenter& center)
    : server(x), notifications(center) {
    const auto* extension = xcb_get_extension_data(server.get(), &xcb_randr_id);
    if (extension != nullptr && extension->present != 0) {
        xcb::Reply<xcb_randr_query_version_reply_t> version(xcb_randr_query_version_reply(
            server.get(), xcb_randr_query_version(server.get(), 1, 5), nullptr));
        hasMonitors = version && (version->major_version > 1 || version->minor_version >= 5);
        firstRandrEvent = extension->first_event;
        xcb_randr_select_input(server.get(), server.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
    settled.setSingleShot(true);
    settled.setInterval(settleMilliseconds);
    QObject::connect(&settled, &QTimer::timeout, &settled, [this] { reconsider(); });
    moved.setSingleShot(true);
    moved.setInterval(0);
    QObject::connect(&moved, &QTimer::timeout, &moved,
                     [this] { notifications.post(statusItemsMovedNotification); });
    overdue.setSingleShot(true);
    overdue.setInterval(longestWaitMilliseconds);
    QObject::connect(&overdue, &QTimer::timeout, &overdue, [this] { reconsider(); });
    pump.watch([this](const xcb_generic_event_t& event) {
        auto type = static_cast<std::uint8_t>(event.response_type & 0x7f);
        bool isRandr =
            firstRandrEvent != 0 && (type == firstRandrEvent + XCB_RANDR_NOTIFY ||
                                     type == firstRandrEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY);
        // A monitor that a user defines is told by nothing but the root window's event.
        bool isRoot =
            type == XCB_CONFIGURE_NOTIFY &&
            reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == server.root();
        if (isRandr || isRoot) read();
        if (isRandr || isRoot) settled.start();
        if (isOfRow(event)) noteRow();
        if (isOfPlace(event)) moved.start();
    });
    read();
    announced = monitors;
}

void X11Screens::setBar(BarClient* client) {
    bar = client;
    announcedBars = bar->otherBars();
}

std::vector<X11Screens::Monitor> X11Screens::readMonitors() const {
    std::vector<Monitor> result;
    if (!hasMonitors) return result;
    xcb::Reply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
        server.get(), xcb_randr_get_monitors(server.get(), server.root(), 1), nullptr));
    if (!reply) return result;
    bool foundPrimary = false;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it)) {
        Monitor monitor{
            it.data->name,
            {static_cast<double>(it.data->x), static_cast<double>(it.data->y),
             static_cast<double>(it.data->width), static_cast<double>(it.data->height)}};
        bool isPrimary = it.data->primary != 0 && !foundPrimary;
        foundPrimary = foundPrimary || isPrimary;
        result.insert(isPrimary ? result.begin() : result.end(), monitor);
    }
    std::erase_if(result, [](const Monitor& monitor) { return monitor.frame.isEmpty(); });
    return result;
}

void X11Screens::read() {
    monitors = readMonitors();
    if (monitors.empty()) {
        xcb::Reply<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(
            server.get(), xcb_get_geometry(server.get(), server.root()), nullptr));
        if (!root) return;
        monitors.push_back(
            {1, {0, 0, static_cast<double>(root->width), static_cast<double>(root->height)}});
    }
    const Rect& primary = monitors.front().frame;
    server.coordinates.originX = static_cast<int>(primary.x);
    server.coordinates.originY = static_cast<int>(primary.y);
    server.coordinates.primaryHeight = static_cast<int>(primary.height);
}

bool X11Screens::isOfRow(const xcb_generic_event_t& event) const {
    if (bar == nullptr || (event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
    const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    // The items are written last: whatever else has changed stands by then.
    return change.window == bar->control() && (change.atom == server.atom(barprotocol::items) ||
                                               change.atom == server.atom(barprotocol::otherBars));
}

bool X11Screens::isOfPlace(const xcb_generic_event_t& event) const {
    if (bar == nullptr || (event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
    const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    return change.atom == server.atom(barprotocol::itemSlot);
}

std::optional<X11Screens::Row> X11Screens::readRow() const {
    if (bar == nullptr) return std::nullopt;
    Row row;
    bool hasOwn = false;
    for (const BarItemInfo* item : bar->items()) {
        // Dividers, open or closed, are placed anew with each change of their length.
        bool isDivider = item->slot.width <= 0 || item->slot.width >= MenuBarRow::collapsedLength;
        if (isDivider) continue;
        hasOwn = hasOwn || item->pid == getpid();
        row.push_back(item->frame);
    }
    return hasOwn ? std::optional(row) : std::nullopt;
}

void X11Screens::noteRow() {
    if (bar->otherBars() != announcedBars) settled.start();
    auto row = readRow();
    if (!row || row == seenRow) return;
    seenRow = row;
    // The row counts from when this program's own items have come to it.
    if (!announcedRow) {
        announcedRow = row;
        return;
    }
    settled.start();
    if (!overdue.isActive()) overdue.start();
}

void X11Screens::reconsider() {
    settled.stop();
    overdue.stop();
    read();
    auto bars = bar ? bar->otherBars() : std::vector<Rect>{};
    if (monitors == announced && bars == announcedBars && seenRow == announcedRow) return;
    announced = monitors;
    announcedBars = bars;
    announcedRow = seenRow;
    notifications.post(screenParametersChangedNotification);
}

std::vector<Screen> X11Screens::screens() const {
    std::vector<Rect> bars = bar ? bar->otherBars() : std::vector<Rect>{};
    if (bar) bars.push_back(bar->barFrame());
    std::vector<Screen> result;
    for (const Monitor& monitor : monitors) {
        const auto& coordinates = server.coordinates;
        Screen screen;
        screen.id = monitor.id;
        screen.backingScale = coordinates.scale;
        screen.frame = coordinates.flipped(coordinates.fromRoot(monitor.frame));
        screen.visibleFrame = screen.frame;
        auto own = std::find_if(bars.begin(), bars.end(),
                                [&](const Rect& each) { return monitor.frame.intersects(each); });
        if (own != bars.end()) screen.visibleFrame.height -= own->height / coordinates.scale;
        result.push_back(screen);
    }
    return result;
}

std::optional<Screen> X11Screens::mainScreen() const {
    auto all = screens();
    if (all.empty()) return std::nullopt;
    return all.front();
}

}  // namespace nevo
