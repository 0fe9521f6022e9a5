#include "menubar/XembedClient.h"

#include <algorithm>
#include <array>
#include <set>
#include <vector>

#include "menubar/Options.h"
#include "platform/xcb/Properties.h"

namespace nevo::menubar {

using xcb::PropertyRead;
using xcb::Reply;

namespace {
constexpr std::uint32_t mappedFlag = 1;
constexpr std::uint32_t embeddedNotify = 0;
constexpr std::uint32_t ourXembedVersion = 1;
/// CARDINAL on each client that a bar of ours held: how a later one knows what it may take in.
constexpr const char* heldMark = "_NEVO_BAR_HELD";
constexpr std::size_t mostStranded = 1000;

/// Toolkits give each of their windows the property of what may be embedded: one that no bar of
/// ours has held is an icon by its size alone.
bool isIconSized(const xcb_get_geometry_reply_t& window) {
    return window.width <= largestHeight && window.height <= largestHeight;
}
}  // namespace

XembedInfo readXembedInfo(const Display& display, xcb_window_t client) {
    auto values = PropertyRead(display.get(), client, display.atom("_XEMBED_INFO"), 8).numbers();
    if (!values || values->size() < 2) return {};
    return {true, (*values)[0], ((*values)[1] & mappedFlag) != 0};
}

std::optional<ClientForm> watchClient(const Display& display, xcb_window_t client) {
    auto c = display.get();
    std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(c, client, XCB_CW_EVENT_MASK, &mask);
    auto attributesCookie = xcb_get_window_attributes(c, client);
    auto geometryCookie = xcb_get_geometry(c, client);
    Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(c, attributesCookie, nullptr));
    Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(c, geometryCookie, nullptr));
    if (!attributes || !geometry || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) {
        return std::nullopt;
    }
    return ClientForm{geometry->depth, attributes->visual};
}

bool putIntoFrame(const Display& display, xcb_window_t client, xcb_window_t frame, int size) {
    auto c = display.get();
    xcb::writeNumber(c, client, display.atom(heldMark), 1);
    xcb_change_save_set(c, XCB_SET_MODE_INSERT, client);
    xcb_reparent_window(c, client, frame, 0, 0);
    std::array<std::uint32_t, 5> values{0, 0, static_cast<std::uint32_t>(size),
                                        static_cast<std::uint32_t>(size), 0};
    xcb_configure_window(c, client,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT | XCB_CONFIG_WINDOW_BORDER_WIDTH,
                         values.data());
    Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(c, xcb_query_tree(c, client), nullptr));
    return tree && tree->parent == frame;
}

void announceEmbedded(const Display& display, xcb_window_t client, xcb_window_t frame,
                      std::uint32_t version) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = client;
    message.type = display.atom("_XEMBED");
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] = embeddedNotify;
    message.data.data32[3] = frame;
    message.data.data32[4] = std::min(version, ourXembedVersion);
    xcb_send_event(display.get(), 0, client, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
}

void handBack(const Display& display, xcb_window_t client, int x, int y, bool watched) {
    auto c = display.get();
    std::uint32_t mask = watched ? XCB_EVENT_MASK_STRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(c, client, XCB_CW_EVENT_MASK, &mask);
    xcb_unmap_window(c, client);
    xcb_reparent_window(c, client, display.root(), static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y));
    xcb_change_save_set(c, XCB_SET_MODE_DELETE, client);
}

void tellPlace(const Display& display, xcb_window_t client, const PixelRect& onRoot) {
    xcb_configure_notify_event_t event{};
    event.response_type = XCB_CONFIGURE_NOTIFY;
    event.event = client;
    event.window = client;
    event.x = static_cast<std::int16_t>(onRoot.x);
    event.y = static_cast<std::int16_t>(onRoot.y);
    event.width = static_cast<std::uint16_t>(onRoot.width);
    event.height = static_cast<std::uint16_t>(onRoot.height);
    xcb_send_event(display.get(), 0, client, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
}

std::vector<xcb_window_t> strandedClients(const Display& display) {
    auto c = display.get();
    std::set<xcb_window_t> candidates;
    Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(c, xcb_query_tree(c, display.root()), nullptr));
    if (tree) {
        const xcb_window_t* children = xcb_query_tree_children(tree.get());
        candidates.insert(children, children + tree->children_len);
    }
    // A window manager may have put its own frame around what the save-set gave back.
    auto managed = PropertyRead(c, display.root(), display.atom("_NET_CLIENT_LIST"), 4000);
    for (xcb_window_t window : managed.numbers().value_or(std::vector<std::uint32_t>())) {
        candidates.insert(window);
    }
    struct Question {
        xcb_window_t window;
        PropertyRead info;
        PropertyRead held;
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t geometry;
    };
    std::vector<Question> questions;
    for (xcb_window_t window : candidates) {
        if (questions.size() == mostStranded) break;
        questions.push_back({window, PropertyRead(c, window, display.atom("_XEMBED_INFO"), 8),
                             PropertyRead(c, window, display.atom(heldMark), 4),
                             xcb_get_window_attributes(c, window), xcb_get_geometry(c, window)});
    }
    std::vector<xcb_window_t> result;
    for (Question& question : questions) {
        bool hasInfo = question.info.numbers().has_value();
        bool wasHeld = question.held.number().has_value();
        Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(c, question.attributes, nullptr));
        Reply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(c, question.geometry, nullptr));
        bool isMapped = attributes && attributes->map_state != XCB_MAP_STATE_UNMAPPED;
        bool isIcon = hasInfo && isMapped && geometry && isIconSized(*geometry);
        // An unmapped window with the property may be a plug that waits for a socket of its own.
        if (attributes && (wasHeld || isIcon)) result.push_back(question.window);
    }
    return result;
}

}  // namespace nevo::menubar
