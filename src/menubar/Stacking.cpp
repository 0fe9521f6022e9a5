#include "menubar/Stacking.h"

#include <algorithm>
#include <array>
#include <set>
#include <vector>

#include "platform/xcb/Properties.h"

namespace nevo::menubar {

using xcb::PropertyRead;
using xcb::Reply;

namespace {
std::vector<xcb_window_t> childrenOf(const Display& display, xcb_window_t window) {
    auto c = display.get();
    Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr));
    if (!tree) return {};
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    return {children, children + tree->children_len};
}

bool isFullScreen(const Display& display, xcb_window_t client) {
    auto states = PropertyRead(display.get(), client, display.atom("_NET_WM_STATE"), 256).numbers();
    return states && std::find(states->begin(), states->end(),
                               display.atom("_NET_WM_STATE_FULLSCREEN")) != states->end();
}

/// The client of a top-level window: itself, or the managed window in a window manager's frame; 0
/// for anything else.
xcb_window_t managedClient(const Display& display, xcb_window_t topLevel,
                           const std::set<xcb_window_t>& managed) {
    if (managed.contains(topLevel)) return topLevel;
    for (xcb_window_t child : childrenOf(display, topLevel)) {
        if (managed.contains(child)) return child;
    }
    return XCB_WINDOW_NONE;
}
}  // namespace

void raiseAbovePrograms(const Display& display, xcb_window_t bar) {
    auto list = PropertyRead(display.get(), display.root(), display.atom("_NET_CLIENT_LIST"), 4000)
                    .numbers()
                    .value_or(std::vector<std::uint32_t>());
    std::set<xcb_window_t> managed(list.begin(), list.end());
    auto bottomToTop = childrenOf(display, display.root());
    auto self = std::find(bottomToTop.begin(), bottomToTop.end(), bar);
    xcb_window_t highest = XCB_WINDOW_NONE;
    for (auto above = self; above != bottomToTop.end(); ++above) {
        xcb_window_t client = managedClient(display, *above, managed);
        if (client == XCB_WINDOW_NONE) continue;
        if (isFullScreen(display, client)) return;
        highest = *above;
    }
    if (highest == XCB_WINDOW_NONE) return;
    std::array<std::uint32_t, 2> values{highest, XCB_STACK_MODE_ABOVE};
    xcb_configure_window(display.get(), bar,
                         XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values.data());
}

}  // namespace nevo::menubar
