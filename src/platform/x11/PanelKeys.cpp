#include "platform/x11/PanelKeys.h"

#include <cstdlib>
#include <map>

#include "platform/x11/LocalMonitors.h"

namespace nevo {

namespace {

/// By their symbols (X11/keysymdef.h), on the main block and on the keypad.
const std::map<xcb_keysym_t, PanelKey>& keysBySymbol() {
    static const std::map<xcb_keysym_t, PanelKey> table{
        {0xff50, PanelKey::first}, {0xff51, PanelKey::left},   {0xff52, PanelKey::up},
        {0xff53, PanelKey::right}, {0xff54, PanelKey::down},   {0xff57, PanelKey::last},
        {0xff95, PanelKey::first}, {0xff96, PanelKey::left},   {0xff97, PanelKey::up},
        {0xff98, PanelKey::right}, {0xff99, PanelKey::down},   {0xff9c, PanelKey::last},
        {0xff0d, PanelKey::press}, {0xff8d, PanelKey::press},  {0x20, PanelKey::press},
        {0xff67, PanelKey::menu},  {0xff1b, PanelKey::cancel},
    };
    return table;
}
constexpr xcb_keysym_t f10 = 0xffc7;

}  // namespace

struct PanelKeys::Held {
    Held(XServer& x, Keyboard& keys) : server(x), keyboard(keys) {}

    void hear(const xcb_generic_event_t& event);
    std::optional<PanelKey> keyOf(const xcb_key_press_event_t& press);
    bool grab();
    /// Lets go of the keyboard where nobody holds it any more, or it is lent.
    void follow();

    XServer& server;
    Keyboard& keyboard;
    std::map<std::size_t, Handler> handlers;
    std::size_t last = 0;
    int loans = 0;
    bool isGrabbed = false;
};

void PanelKeys::Held::hear(const xcb_generic_event_t& event) {
    if (!isGrabbed || (event.response_type & 0x7f) != XCB_KEY_PRESS) return;
    auto key = keyOf(reinterpret_cast<const xcb_key_press_event_t&>(event));
    if (!key || handlers.empty()) return;
    // From a copy: the handler may let go of the keys.
    Handler handler = handlers.rbegin()->second;
    handler(*key);
}

std::optional<PanelKey> PanelKeys::Held::keyOf(const xcb_key_press_event_t& press) {
    constexpr ModifierFlags otherMeaning = controlModifier | optionModifier | commandModifier;
    ModifierFlags modifiers = modifiersFromState(press.state);
    if (press.event != server.root() || (modifiers & otherMeaning)) return std::nullopt;
    xcb_keysym_t symbol = keyboard.symbolOf(press.detail);
    if (symbol == f10 && (modifiers & shiftModifier)) return PanelKey::menu;
    auto found = keysBySymbol().find(symbol);
    if (found == keysBySymbol().end()) return std::nullopt;
    return found->second;
}

bool PanelKeys::Held::grab() {
    auto* c = server.get();
    xcb::Reply<xcb_grab_keyboard_reply_t> reply(
        xcb_grab_keyboard_reply(c,
                                xcb_grab_keyboard(c, 0, server.root(), XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

void PanelKeys::Held::follow() {
    bool isWanted = !handlers.empty() && loans == 0;
    if (isWanted == isGrabbed) return;
    if (isWanted) {
        isGrabbed = grab();
    } else {
        isGrabbed = false;
        xcb_ungrab_keyboard(server.get(), XCB_CURRENT_TIME);
        // The menu's grab comes from another connection: the server has to have seen this by then.
        std::free(
            xcb_get_input_focus_reply(server.get(), xcb_get_input_focus(server.get()), nullptr));
    }
}

PanelKeys::PanelKeys(XServer& x, EventPump& pump, Keyboard& keys)
    : held(std::make_shared<Held>(x, keys)) {
    pump.watch([weak = std::weak_ptr(held)](const xcb_generic_event_t& event) {
        if (auto all = weak.lock()) all->hear(event);
    });
}

PanelKeys::~PanelKeys() = default;

Registration PanelKeys::hold(Handler handler) {
    std::size_t id = ++held->last;
    held->handlers.emplace(id, std::move(handler));
    held->follow();
    if (!held->isGrabbed && held->loans == 0) {
        held->handlers.erase(id);
        return {};
    }
    return Registration([weak = std::weak_ptr(held), id] {
        auto all = weak.lock();
        if (!all) return;
        all->handlers.erase(id);
        all->follow();
    });
}

Registration PanelKeys::lend() {
    ++held->loans;
    held->follow();
    return Registration([weak = std::weak_ptr(held)] {
        auto all = weak.lock();
        if (!all) return;
        --all->loans;
        all->follow();
    });
}

}  // namespace nevo
