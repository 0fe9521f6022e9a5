#include "platform/x11/Keyboard.h"

#include <algorithm>
#include <array>

namespace nevo {

namespace {
/// The left keys by their keysym (X11/keysymdef.h).
constexpr std::array<std::pair<ModifierFlags, xcb_keysym_t>, 4> keysyms{{
    {shiftModifier, 0xffe1},
    {controlModifier, 0xffe3},
    {optionModifier, 0xffe9},
    {commandModifier, 0xffeb},
}};
}  // namespace

Keyboard::Keyboard(XServer& x, EventPump& pump) : server(x) {
    pump.watchEarly([this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) == XCB_MAPPING_NOTIFY) isStale = true;
    });
}

std::vector<xcb_keycode_t> Keyboard::keysFor(ModifierFlags flags) {
    if (isStale) read();
    std::vector<xcb_keycode_t> result;
    for (auto [flag, key] : keys) {
        if (flags & flag) result.push_back(key);
    }
    return result;
}

void Keyboard::read() {
    const auto* setup = xcb_get_setup(server.get());
    auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    xcb::Reply<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        server.get(), xcb_get_keyboard_mapping(server.get(), setup->min_keycode, count), nullptr));
    if (!mapping || mapping->keysyms_per_keycode == 0) return;
    isStale = false;
    keys.clear();
    const auto* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    const auto* end = symbols + xcb_get_keyboard_mapping_keysyms_length(mapping.get());
    for (auto [flag, symbol] : keysyms) {
        const auto* found = std::find(symbols, end, symbol);
        if (found == end) continue;
        auto key = setup->min_keycode + (found - symbols) / mapping->keysyms_per_keycode;
        keys.emplace_back(flag, static_cast<xcb_keycode_t>(key));
    }
}

std::optional<PointerState> queryPointer(const XServer& server) {
    xcb::Reply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        server.get(), xcb_query_pointer(server.get(), server.root()), nullptr));
    if (!reply) return std::nullopt;
    return PointerState{{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)},
                        reply->mask};
}

}  // namespace nevo
