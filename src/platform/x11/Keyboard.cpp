#include "platform/x11/Keyboard.h"

#include <algorithm>
#include <array>

namespace nevo {

namespace {
/// A modifier's left and right key by their symbols (X11/keysymdef.h).
struct ModifierSymbols {
    ModifierFlags flag;
    xcb_keysym_t left;
    xcb_keysym_t right;
};
constexpr std::array<ModifierSymbols, 4> modifierSymbols{{
    {shiftModifier, 0xffe1, 0xffe2},
    {controlModifier, 0xffe3, 0xffe4},
    {optionModifier, 0xffe9, 0xffea},
    {commandModifier, 0xffeb, 0xffec},
}};
constexpr xcb_keysym_t numLock = 0xff7f;
constexpr std::size_t modifierCount = 8;
}  // namespace

Keyboard::Keyboard(XServer& x, EventPump& pump) : server(x) {
    pump.watchEarly([this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) == XCB_MAPPING_NOTIFY) isStale = true;
    });
}

std::vector<xcb_keycode_t> Keyboard::keysFor(ModifierFlags flags) {
    std::vector<xcb_keycode_t> result;
    for (const ModifierSymbols& modifier : modifierSymbols) {
        if (!(flags & modifier.flag)) continue;
        if (auto key = keyFor(modifier.left)) result.push_back(*key);
    }
    return result;
}

std::optional<xcb_keycode_t> Keyboard::keyFor(xcb_keysym_t symbol) {
    refresh();
    for (std::size_t level = 0; level < levels; ++level) {
        for (std::size_t place = level; place < symbols.size(); place += levels) {
            if (symbols[place] != symbol) continue;
            return static_cast<xcb_keycode_t>(firstKey + place / levels);
        }
    }
    return std::nullopt;
}

xcb_keysym_t Keyboard::symbolOf(xcb_keycode_t key) {
    refresh();
    std::size_t place = static_cast<std::size_t>(key - firstKey) * levels;
    return key < firstKey || place >= symbols.size() ? 0 : symbols[place];
}

std::optional<std::uint16_t> Keyboard::stateFor(ModifierFlags flags) {
    refresh();
    std::uint16_t result = 0;
    for (const ModifierSymbols& modifier : modifierSymbols) {
        if (!(flags & modifier.flag)) continue;
        std::uint16_t state = stateOf(modifier.left);
        if (state == 0) state = stateOf(modifier.right);
        if (state == 0) return std::nullopt;
        result |= state;
    }
    return result;
}

std::uint16_t Keyboard::numLockState() {
    refresh();
    return stateOf(numLock);
}

std::uint16_t Keyboard::stateOf(xcb_keysym_t symbol) const {
    std::size_t each = modifierKeys.size() / modifierCount;
    for (std::size_t i = 0; i < modifierKeys.size(); ++i) {
        if (modifierKeys[i] == 0 || !gives(modifierKeys[i], symbol)) continue;
        return static_cast<std::uint16_t>(1U << (i / each));
    }
    return 0;
}

bool Keyboard::gives(xcb_keycode_t key, xcb_keysym_t symbol) const {
    std::size_t start = static_cast<std::size_t>(key - firstKey) * levels;
    if (key < firstKey || start + levels > symbols.size()) return false;
    auto begin = symbols.begin() + static_cast<std::ptrdiff_t>(start);
    auto end = begin + static_cast<std::ptrdiff_t>(levels);
    return std::find(begin, end, symbol) != end;
}

void Keyboard::refresh() {
    if (!isStale) return;
    auto* c = server.get();
    const auto* setup = xcb_get_setup(c);
    auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    auto mappingAsked = xcb_get_keyboard_mapping(c, setup->min_keycode, count);
    auto modifiersAsked = xcb_get_modifier_mapping(c);
    xcb::Reply<xcb_get_keyboard_mapping_reply_t> mapping(
        xcb_get_keyboard_mapping_reply(c, mappingAsked, nullptr));
    xcb::Reply<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(c, modifiersAsked, nullptr));
    if (!mapping || !modifiers || mapping->keysyms_per_keycode == 0) return;
    isStale = false;
    firstKey = setup->min_keycode;
    levels = mapping->keysyms_per_keycode;
    const auto* allSymbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    symbols.assign(allSymbols, allSymbols + xcb_get_keyboard_mapping_keysyms_length(mapping.get()));
    const auto* allKeys = xcb_get_modifier_mapping_keycodes(modifiers.get());
    modifierKeys.assign(allKeys,
                        allKeys + xcb_get_modifier_mapping_keycodes_length(modifiers.get()));
}

std::optional<PointerState> queryPointer(const XServer& server) {
    xcb::Reply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        server.get(), xcb_query_pointer(server.get(), server.root()), nullptr));
    if (!reply) return std::nullopt;
    return PointerState{{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)},
                        reply->mask};
}

}  // namespace nevo
