#include "platform/x11/FrontApplication.h"

#include <unistd.h>

#include "platform/x11/ProgramName.h"
#include "platform/xcb/Properties.h"

namespace nevo {

namespace {
/// Between two windows none is active for a moment.
constexpr int settleMilliseconds = 40;
constexpr const char* activeWindow = "_NET_ACTIVE_WINDOW";
constexpr const char* windowManagerCheck = "_NET_SUPPORTING_WM_CHECK";
constexpr const char* activated = "NSWorkspaceDidActivateApplicationNotification";
}  // namespace

FrontApplication::FrontApplication(XServer& x, EventPump& pump,
                                   xcb::OwnerIdentities& ownerIdentities,
                                   NotificationCenter& center, LogOutput& output)
    : server(x), identities(ownerIdentities), notifications(center), log(output) {
    settled.setSingleShot(true);
    settled.setInterval(settleMilliseconds);
    QObject::connect(&settled, &QTimer::timeout, &settled, [this] { reconsider(); });
    pump.watch([this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return;
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        bool isActiveWindow =
            change.window == server.root() && change.atom == server.atom(activeWindow);
        if (isActiveWindow) settled.start();
    });
    // When the loop runs: the observers are made at its first turn.
    QMetaObject::invokeMethod(
        &settled, [this] { begin(); }, Qt::QueuedConnection);
}

void FrontApplication::begin() {
    settled.start();
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
    auto owner = window == 0 ? std::nullopt : ownerOf(window);
    if (!owner || owner == announced) return;
    announced = owner;
    notifications.post(activated, {{"NSWorkspaceApplicationKey", std::to_string(owner->pid)},
                                   {"bundleIdentifier", owner->applicationId}});
}

bool FrontApplication::isManaged() const {
    xcb_atom_t check = server.atom(windowManagerCheck);
    xcb::PropertyRead named(server.get(), server.root(), check);
    xcb_window_t window = named.number().value_or(0);
    if (window == 0) return false;
    // One that has ended leaves the root's property behind; its window is gone.
    return xcb::PropertyRead(server.get(), window, check).number() == window;
}

std::optional<FrontApplication::Owner> FrontApplication::ownerOf(xcb_window_t window) const {
    // openbox goes on naming a window that was closed, when it was the last one; and the server
    // would tell the process of whichever client has got its numbers since.
    xcb::Reply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(server.get(), xcb_get_geometry(server.get(), window), nullptr));
    if (!geometry) return std::nullopt;
    auto pid = xcb::processOfWindow(server.get(), window, server.atom("_NET_WM_PID"));
    if (pid == getpid()) return Owner{*pid, applicationId};
    auto windowClass = xcb::classOfWindow(server.get(), window);
    return Owner{pid.value_or(0), identities.identify(pid, windowClass).applicationId};
}

}  // namespace nevo
