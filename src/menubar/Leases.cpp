#include "menubar/Leases.h"

namespace nevo::menubar {

bool Leases::accept(xcb_window_t window, bool alreadyWatched) {
    if (contains(window)) return true;
    if (!alreadyWatched) {
        std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        auto c = display.get();
        auto cookie = xcb_change_window_attributes_checked(c, window, XCB_CW_EVENT_MASK, &mask);
        if (!xcb::succeeded(c, cookie)) return false;
    }
    watched.insert(window);
    return true;
}

}  // namespace nevo::menubar
