#include "platform/x11/BarClient.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <sstream>
#include <thread>
#include <utility>

#include "platform/menubar/BarProtocol.h"
#include "platform/menubar/BarScale.h"
#include "platform/xcb/Properties.h"

namespace nevo {

namespace {
namespace bar = barprotocol;
using xcb::PropertyRead;

/// How long the bar may take to carry out a request; it needs a millisecond when it isn't busy.
constexpr auto patience = std::chrono::milliseconds(50);
constexpr std::uint32_t mostItemBytes = 65536;

double asSigned(std::uint32_t value) {
    return static_cast<double>(static_cast<std::int32_t>(value));
}

/// Four of `values`, from `first` on.
Rect rectAt(const std::vector<std::uint32_t>& values, std::size_t first) {
    return {asSigned(values[first]), asSigned(values[first + 1]), asSigned(values[first + 2]),
            asSigned(values[first + 3])};
}

void select(XServer& server, xcb_window_t window) {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(server.get(), window, XCB_CW_EVENT_MASK, &mask);
}

/// `command` is a WM_COMMAND: words that each end with a null byte, the program's name first.
std::vector<std::string> optionsOf(const std::string& command) {
    std::vector<std::string> words;
    std::istringstream text(command);
    for (std::string word; std::getline(text, word, '\0');) words.push_back(word);
    if (!words.empty()) words.erase(words.begin());
    return words;
}
}  // namespace

BarClient::BarClient(XServer& x, EventPump& pump, WindowNumbers& windowNumbers)
    : server(x), events(pump), numbers(windowNumbers) {
    pump.watchEarly([this](const xcb_generic_event_t& event) { noteEarly(event); });
    pump.watch([this](const xcb_generic_event_t& event) { act(event); });
    attach();
}

const std::vector<const BarItemInfo*>& BarClient::items() {
    refresh();
    return list;
}

const BarItemInfo* BarClient::itemOfClient(xcb_window_t client) {
    refresh();
    auto found = std::find_if(list.begin(), list.end(),
                              [&](const BarItemInfo* item) { return item->client == client; });
    return client == 0 || found == list.end() ? nullptr : *found;
}

const BarItemInfo* BarClient::itemOfNumber(WindowNumber number) {
    refresh();
    auto window = numbers.window(number);
    auto found = window ? known.find(*window) : known.end();
    return found == known.end() ? nullptr : &found->second.info;
}

Rect BarClient::barFrame() {
    refresh();
    return frameOfBar;
}

const std::vector<Rect>& BarClient::otherBars() {
    refresh();
    return framesOfOthers;
}

std::optional<double> BarClient::systemAreaLeft() {
    refresh();
    return leftOfSystemArea;
}

xcb_window_t BarClient::barWindow() {
    refresh();
    return theBarWindow;
}

void BarClient::send(const char* message, xcb_window_t frame, std::uint32_t a, std::uint32_t b,
                     std::uint32_t c, std::uint32_t d) {
    if (controlWindow == 0) return;
    server.sendMessage(controlWindow, controlWindow, message, {frame, a, b, c, d});
    server.flush();
}

bool BarClient::waitUntil(const std::function<bool()>& holds) {
    auto deadline = std::chrono::steady_clock::now() + patience;
    while (true) {
        if (holds()) return true;
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::microseconds(300));
    }
}

void BarClient::noteEarly(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
        case XCB_PROPERTY_NOTIFY:
            noteProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event));
            break;
        case XCB_CONFIGURE_NOTIFY: {
            auto window = reinterpret_cast<const xcb_configure_notify_event_t&>(event).window;
            auto item = known.find(window);
            if (item != known.end()) item->second.placeIsStale = anyItemIsStale = true;
            if (window != theBarWindow) break;
            // The items move with it, and hear nothing.
            barIsStale = true;
            for (auto& [frame, moved] : known) moved.placeIsStale = anyItemIsStale = true;
            break;
        }
        case XCB_DESTROY_NOTIFY:
            noteDestroyed(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
            break;
        default:
            break;
    }
}

void BarClient::noteProperty(const xcb_property_notify_event_t& event) {
    if (event.window == controlWindow) {
        barIsStale = true;
        if (event.atom == server.atom(bar::ending)) endIsAnnounced = true;
        return;
    }
    auto item = known.find(event.window);
    if (item == known.end()) return;
    bool isPlace =
        event.atom == server.atom(bar::itemSlot) || event.atom == server.atom(bar::itemOpacity);
    (isPlace ? item->second.placeIsStale : item->second.identityIsStale) = true;
    anyItemIsStale = true;
}

void BarClient::noteDestroyed(xcb_window_t window) {
    if (window == controlWindow) {
        crashIsNew = !endIsAnnounced;
        detach();
    }
    if (!known.contains(window)) return;
    forget(window);
    std::erase(order, window);
    std::erase_if(list, [&](const BarItemInfo* item) { return !known.contains(item->frame); });
}

void BarClient::act(const xcb_generic_event_t& event) {
    if (std::exchange(crashIsNew, false) && crashed) crashed();
    if ((event.response_type & 0x7f) != XCB_CLIENT_MESSAGE) return;
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    if (message.type != server.atom("MANAGER") ||
        message.data.data32[1] != server.screenAtom("_NET_SYSTEM_TRAY")) {
        return;
    }
    attach();
    if (controlWindow != 0 && appeared) appeared();
}

void BarClient::attach() {
    xcb_window_t owner = server.selectionOwner(server.screenAtom("_NET_SYSTEM_TRAY"));
    if (owner == controlWindow) return;
    detach();
    if (owner == 0) return;
    select(server, owner);
    // Another tray may have taken over: its items can't be managed.
    PropertyRead version(server.get(), owner, server.atom(bar::version));
    PropertyRead command(server.get(), owner, XCB_ATOM_WM_COMMAND);
    if (version.number() != bar::currentVersion) return;
    controlWindow = owner;
    barOptions = optionsOf(command.text().value_or(""));
    endIsAnnounced = false;
    barIsStale = true;
}

void BarClient::detach() {
    while (!known.empty()) forget(known.begin()->first);
    order.clear();
    list.clear();
    numbers.drop(theBarWindow);
    controlWindow = theBarWindow = 0;
    frameOfBar = {};
    framesOfOthers.clear();
    leftOfSystemArea.reset();
    barIsStale = anyItemIsStale = false;
}

void BarClient::forget(xcb_window_t frame) {
    numbers.drop(frame);
    std::erase_if(list, [&](const BarItemInfo* item) { return item->frame == frame; });
    known.erase(frame);
}

void BarClient::refresh() {
    events.collect();
    // The answers of one reading may bring word of the next change; what is then stale is read at
    // the next question, so that a busy bar can't hold us here.
    if (barIsStale) readBar();
    if (anyItemIsStale) readItems();
}

void BarClient::readBar() {
    barIsStale = false;
    PropertyRead itemsRead(server.get(), controlWindow, server.atom(bar::items), mostItemBytes);
    PropertyRead windowRead(server.get(), controlWindow, server.atom(bar::barWindow));
    PropertyRead geometryRead(server.get(), controlWindow, server.atom(bar::geometry));
    PropertyRead othersRead(server.get(), controlWindow, server.atom(bar::otherBars));
    auto frames = itemsRead.numbers().value_or(std::vector<std::uint32_t>{});
    xcb_window_t window = windowRead.number().value_or(0);
    auto geometry = geometryRead.numbers();
    if (window != theBarWindow) {
        numbers.drop(theBarWindow);
        theBarWindow = window;
        if (window != 0) select(server, window);
    }
    auto others = othersRead.numbers().value_or(std::vector<std::uint32_t>{});
    frameOfBar = geometry && geometry->size() >= 4 ? rectAt(*geometry, 0) : Rect{};
    framesOfOthers.clear();
    for (std::size_t i = 0; i + 4 <= others.size(); i += 4)
        framesOfOthers.push_back(rectAt(others, i));
    leftOfSystemArea.reset();
    if (geometry && geometry->size() >= 5) leftOfSystemArea = asSigned((*geometry)[4]);
    // A bar that is away for a moment comes back as high as it was.
    if (frameOfBar.height > 0) server.coordinates.scale = pixelsPerPoint(frameOfBar.height);
    rebuildList(frames);
}

void BarClient::rebuildList(const std::vector<std::uint32_t>& frames) {
    std::set<xcb_window_t> listed(frames.begin(), frames.end());
    std::vector<xcb_window_t> gone;
    for (const auto& [frame, item] : known) {
        if (!listed.contains(frame)) gone.push_back(frame);
    }
    for (xcb_window_t frame : gone) forget(frame);
    order.assign(frames.begin(), frames.end());
    list.clear();
    for (xcb_window_t frame : order) {
        auto [entry, isNew] = known.try_emplace(frame);
        if (isNew) {
            entry->second.info.frame = frame;
            entry->second.info.number = numbers.of(frame);
            select(server, frame);
            anyItemIsStale = true;
        }
        list.push_back(&entry->second.info);
    }
}

/// The questions about one item, on their way.
struct BarClient::Reading {
    struct Identity {
        PropertyRead pid, appId, name, ownerName, client;
    };
    xcb_window_t frame;
    std::optional<Identity> identity;
    PropertyRead slot;
    PropertyRead opacity;
    xcb_get_geometry_cookie_t size;
    xcb_translate_coordinates_cookie_t corner;

    Reading(const XServer& x, xcb_window_t of, bool withIdentity)
        : frame(of),
          slot(x.get(), of, x.atom(bar::itemSlot)),
          opacity(x.get(), of, x.atom(bar::itemOpacity)),
          size(xcb_get_geometry(x.get(), of)),
          corner(xcb_translate_coordinates(x.get(), of, x.root(), 0, 0)) {
        if (!withIdentity) return;
        auto read = [&](const char* name) { return PropertyRead(x.get(), of, x.atom(name)); };
        identity.emplace(Identity{read(bar::itemPid), read(bar::itemAppId), read(bar::itemName),
                                  read(bar::itemOwnerName), read(bar::itemClient)});
    }

    void finish(const XServer& x, BarItemInfo& item) {
        if (auto values = slot.numbers(); values && values->size() >= 5) {
            item.slot = rectAt(*values, 0);
            item.floats = (*values)[4] != 0;
            item.roomShift = values->size() >= 6 ? asSigned((*values)[5]) : 0;
        }
        item.opacity = opacity.number().value_or(0xffffffff);
        xcb::Reply<xcb_get_geometry_reply_t> sizeReply(
            xcb_get_geometry_reply(x.get(), size, nullptr));
        xcb::Reply<xcb_translate_coordinates_reply_t> cornerReply(
            xcb_translate_coordinates_reply(x.get(), corner, nullptr));
        if (sizeReply && cornerReply) {
            item.geometry = {
                static_cast<double>(cornerReply->dst_x), static_cast<double>(cornerReply->dst_y),
                static_cast<double>(sizeReply->width), static_cast<double>(sizeReply->height)};
        }
        if (!identity) return;
        item.pid = static_cast<ProcessId>(identity->pid.number().value_or(0));
        item.appId = identity->appId.text().value_or("");
        item.name = identity->name.text().value_or("");
        item.ownerName = identity->ownerName.text().value_or("");
        item.client = identity->client.number().value_or(0);
    }
};

void BarClient::readItems() {
    anyItemIsStale = false;
    std::vector<Reading> readings;
    readings.reserve(order.size());
    for (xcb_window_t frame : order) {
        auto entry = known.find(frame);
        if (entry == known.end()) continue;
        Item& item = entry->second;
        if (!item.identityIsStale && !item.placeIsStale) continue;
        readings.emplace_back(server, frame, item.identityIsStale);
        item.identityIsStale = item.placeIsStale = false;
    }
    for (Reading& reading : readings) reading.finish(server, known.at(reading.frame).info);
}

}  // namespace nevo
