#include "platform/x11/ManagerSelection.h"

#include <unistd.h>

#include "platform/xcb/Properties.h"
#include "platform/xcb/WindowOwner.h"

namespace nevo {

std::optional<ProcessId> claimManagerSelection(XServer& server) {
    auto* c = server.get();
    xcb_atom_t selection = server.screenAtom("_NEVO_MANAGER");
    xcb_atom_t pidAtom = server.atom("_NET_WM_PID");
    xcb::writeNumber(c, server.lease(), pidAtom, static_cast<std::uint32_t>(getpid()));
    // Looking and taking as one step: two may start at the same moment.
    xcb_grab_server(c);
    xcb_window_t owner = server.selectionOwner(selection);
    if (owner == 0) xcb_set_selection_owner(c, server.lease(), selection, XCB_CURRENT_TIME);
    xcb_ungrab_server(c);
    server.flush();
    if (owner == 0) return std::nullopt;
    return xcb::processOfWindow(c, owner, pidAtom).value_or(0);
}

}  // namespace nevo
