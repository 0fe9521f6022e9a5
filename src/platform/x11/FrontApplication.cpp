#include "platform/x11/FrontApplication.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "platform/x11/ProgramName.h"
#include "platform/xcb/Properties.h"

namespace nevo {

namespace {
/// Between two windows none is active for a moment.
constexpr int settleMilliseconds = 40;
/// How often to look whether our own window still has the focus: its end changes no property.
constexpr int focusPollMilliseconds = 250;
constexpr std::uint32_t mostListBytes = 65536;
constexpr const char* activeWindow = "_NET_ACTIVE_WINDOW";
constexpr const char* clientList = "_NET_CLIENT_LIST";
constexpr const char* windowManagerCheck = "_NET_SUPPORTING_WM_CHECK";
constexpr const char* activated = "NSWorkspaceDidActivateApplicationNotification";
constexpr const char* deactivated = "NSWorkspaceDidDeactivateApplicationNotification";
}  // namespace

FrontApplication::FrontApplication(XServer& x, EventPump& pump, BarClient& client,
                                   xcb::OwnerIdentities& ownerIdentities,
                                   NotificationCenter& center, LogOutput& output)
    : server(x), bar(client), identities(ownerIdentities), notifications(center), log(output) {
    settled.setSingleShot(true);
    QObject::connect(&settled, &QTimer::timeout, &settled, [this] { reconsider(); });
    pump.watch([this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return;
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        // openbox goes on naming a window that was closed, when it was the last one: then only the
        // list changes.
        bool isAboutFront =
            change.window == server.root() &&
            (change.atom == server.atom(activeWindow) || change.atom == server.atom(clientList));
        if (isAboutFront) settled.start(settleMilliseconds);
    });
    // When the loop runs: the observers are made at its first turn.
    QMetaObject::invokeMethod(
        &settled, [this] { begin(); }, Qt::QueuedConnection);
}

void FrontApplication::begin() {
    settled.start(settleMilliseconds);
    if (isManaged()) return;
    // The input focus tells little without one: it is often on the root window, or follows the
    // pointer. A window manager that comes later is heard all the same.
    constexpr const char* line =
        "[Nevo] no window manager tells which window is active; rules for the application in "
        "front wait for one\n";
    log.writeStandardError(line);
    log.appendToLogFile(line);
}

void FrontApplication::reconsider() {
    xcb::PropertyRead read(server.get(), server.root(), server.atom(activeWindow));
    xcb_window_t window = read.number().value_or(0);
    bool isThere = window != 0 && isListed(window);
    if (isThere && isOfBar(processOf(window))) return;
    auto owner = isThere ? ownerOf(window) : std::nullopt;
    if (owner == announced) return;
    if (!owner && isFocusOurs()) {
        settled.start(focusPollMilliseconds);
        return;
    }
    Owner before = std::exchange(announced, owner).value_or(Owner());
    if (owner) {
        post(activated, *owner);
    } else {
        post(deactivated, before);
    }
}

void FrontApplication::post(const char* notification, const Owner& about) {
    notifications.post(notification, {{"NSWorkspaceApplicationKey", std::to_string(about.pid)},
                                      {"bundleIdentifier", about.applicationId}});
}

bool FrontApplication::isManaged() const {
    xcb_atom_t check = server.atom(windowManagerCheck);
    xcb::PropertyRead named(server.get(), server.root(), check);
    xcb_window_t window = named.number().value_or(0);
    if (window == 0) return false;
    // One that has ended leaves the root's property behind; its window is gone.
    return xcb::PropertyRead(server.get(), window, check).number() == window;
}

bool FrontApplication::isListed(xcb_window_t window) const {
    xcb::PropertyRead read(server.get(), server.root(), server.atom(clientList), mostListBytes);
    auto listed = read.numbers();
    return !listed || std::find(listed->begin(), listed->end(), window) != listed->end();
}

bool FrontApplication::isOfBar(std::optional<ProcessId> pid) const {
    return pid && bar.control() != 0 && pid == processOf(bar.control());
}

bool FrontApplication::isFocusOurs() const {
    xcb::Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(server.get(), xcb_get_input_focus(server.get()), nullptr));
    if (!focus || focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT || focus->focus == server.root())
        return false;
    auto pid = processOf(focus->focus);
    return pid == getpid() || isOfBar(pid);
}

std::optional<ProcessId> FrontApplication::processOf(xcb_window_t window) const {
    return xcb::processOfWindow(server.get(), window, server.atom("_NET_WM_PID"));
}

std::optional<FrontApplication::Owner> FrontApplication::ownerOf(xcb_window_t window) const {
    // It may have gone, and the server would tell the process of whichever client has got its
    // numbers since.
    xcb::Reply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(server.get(), xcb_get_geometry(server.get(), window), nullptr));
    if (!geometry) return std::nullopt;
    auto pid = processOf(window);
    if (pid == getpid()) return Owner{*pid, applicationId};
    auto windowClass = xcb::classOfWindow(server.get(), window);
    return Owner{pid.value_or(0), identities.identify(pid, windowClass).applicationId};
}

}  // namespace nevo
