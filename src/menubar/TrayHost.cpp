#include "menubar/TrayHost.h"

#include <fmt/format.h>
#include <unistd.h>

#include <array>

#include "platform/menubar/BarProtocol.h"
#include "platform/xcb/Properties.h"
#include "platform/xcb/WindowOwner.h"

namespace nevo::menubar {

using xcb::PropertyRead;
using xcb::Reply;

namespace {
constexpr std::uint32_t horizontal = 0;

xcb_window_t selectionOwner(const Display& display, xcb_atom_t selection) {
    auto c = display.get();
    Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, selection), nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

/// Who stands in the way, in words for people.
std::string describeOwner(const Display& display, xcb_window_t owner) {
    auto c = display.get();
    PropertyRead ourPid(c, owner, display.atom(barprotocol::barPid), 4);
    PropertyRead title(c, owner, display.atom("_NET_WM_NAME"), 200);
    PropertyRead plainTitle(c, owner, XCB_ATOM_WM_NAME, 200);
    if (auto pid = ourPid.number()) {
        return fmt::format("nevo-menubar is already running on this display (process {}).", *pid);
    }
    std::string name = xcb::classOfWindow(c, owner).name;
    if (name.empty()) name = title.text().value_or("");
    if (name.empty()) name = plainTitle.text().value_or("");
    auto pid = xcb::processOfWindow(c, owner, display.atom("_NET_WM_PID"));
    std::string who = name.empty() ? "another program" : fmt::format("\"{}\"", name);
    if (pid) who += fmt::format(" (process {})", *pid);
    return fmt::format(
        "The system tray of this display belongs to {}; end that program or remove its tray, then "
        "start nevo-menubar again.",
        who);
}
}  // namespace

std::unique_ptr<TrayHost> TrayHost::claim(const Display& display,
                                          const std::vector<std::string>& command,
                                          std::string& failure) {
    auto name = fmt::format("_NET_SYSTEM_TRAY_S{}", display.server().screenNumber());
    std::unique_ptr<TrayHost> host(new TrayHost(display, display.atom(name)));
    host->createControlWindow(command);
    host->since = host->serverTime();
    if (host->takeSelection()) return host;
    failure = describeOwner(display, selectionOwner(display, host->selectionAtom));
    return nullptr;
}

TrayHost::~TrayHost() { xcb_destroy_window(display.get(), window); }

/// The properties must stand before the selection is owned: programs read them at that moment.
void TrayHost::createControlWindow(const std::vector<std::string>& command) {
    auto c = display.get();
    window = xcb_generate_id(c);
    std::array<std::uint32_t, 2> values{1, XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, display.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    std::uint32_t visual = display.alphaVisual();
    xcb::writeNumbers(c, window, display.atom("_NET_SYSTEM_TRAY_VISUAL"), XCB_ATOM_VISUALID,
                      std::span(&visual, 1));
    xcb::writeNumber(c, window, display.atom("_NET_SYSTEM_TRAY_ORIENTATION"), horizontal);
    xcb::writeNumber(c, window, display.atom(barprotocol::version), barprotocol::currentVersion);
    auto pid = static_cast<std::uint32_t>(::getpid());
    xcb::writeNumber(c, window, display.atom(barprotocol::barPid), pid);
    xcb::writeNumber(c, window, display.atom("_NET_WM_PID"), pid);
    xcb::writeText(c, window, display.atom("_NET_WM_NAME"), display.atom("UTF8_STRING"),
                   "nevo-menubar");
    xcb::writeText(c, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                   std::string_view("nevo-menubar\0Nevo-menubar\0", 26));
    // Each word ends with a null byte, as ICCCM has it.
    std::string words;
    for (const std::string& word : command) words.append(word).push_back('\0');
    xcb::writeText(c, window, XCB_ATOM_WM_COMMAND, XCB_ATOM_STRING, words);
}

/// Looks and takes with the server grabbed: two bars started together can't both find it free.
bool TrayHost::takeSelection() {
    auto c = display.get();
    xcb_grab_server(c);
    bool isFree = selectionOwner(display, selectionAtom) == XCB_WINDOW_NONE;
    if (isFree) xcb_set_selection_owner(c, window, selectionAtom, since);
    bool isOurs = isFree && selectionOwner(display, selectionAtom) == window;
    xcb_ungrab_server(c);
    xcb_flush(c);
    return isOurs;
}

/// Toolkits check that a selection was taken with a real time, which only an event has.
xcb_timestamp_t TrayHost::serverTime() const {
    auto c = display.get();
    xcb_change_property(c, XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    xcb_flush(c);
    while (Reply<xcb_generic_event_t> event{xcb_wait_for_event(c)}) {
        if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) continue;
        auto changed = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
        if (changed->atom == XCB_ATOM_WM_NAME) return changed->time;
    }
    return XCB_CURRENT_TIME;
}

void TrayHost::announce() {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = display.root();
    message.type = display.atom("MANAGER");
    message.data.data32[0] = since;
    message.data.data32[1] = selectionAtom;
    message.data.data32[2] = window;
    xcb_send_event(display.get(), 0, display.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

void TrayHost::announceEnd() {
    auto c = display.get();
    const std::uint32_t one = 1;
    // Waits for the server, which drops what it hasn't read yet when the connection closes.
    xcb::succeeded(c, xcb_change_property_checked(c, XCB_PROP_MODE_REPLACE, window,
                                                  display.atom(barprotocol::ending),
                                                  XCB_ATOM_CARDINAL, 32, 1, &one));
}

}  // namespace nevo::menubar
