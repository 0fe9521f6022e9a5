#include "menubar/SyntheticInput.h"

#include <xcb/xinput.h>

namespace nevo::menubar {

SyntheticInput::SyntheticInput(const Display& x) : display(x) {
    if (display.inputOpcode() == 0) return;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t bits;
    } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS};
    xcb_input_xi_select_events(display.get(), display.root(), 1, &mask.head);
}

void SyntheticInput::take(const xcb_generic_event_t& event) {
    auto generic = reinterpret_cast<const xcb_ge_generic_event_t*>(&event);
    if (generic->extension != display.inputOpcode()) return;
    if (generic->event_type != XCB_INPUT_RAW_BUTTON_PRESS) return;
    lastDevice = reinterpret_cast<const xcb_input_raw_button_press_event_t*>(&event)->sourceid;
}

bool SyntheticInput::lastPressWasSynthetic() const {
    if (display.inputOpcode() == 0) return true;
    auto c = display.get();
    xcb::Reply<xcb_input_xi_get_property_reply_t> reply(xcb_input_xi_get_property_reply(
        c,
        xcb_input_xi_get_property(c, lastDevice, 0, display.atom("XTEST Device"), XCB_ATOM_ANY, 0,
                                  1),
        nullptr));
    if (!reply || reply->num_items == 0 || reply->format != 8) return false;
    auto value = static_cast<const std::uint8_t*>(xcb_input_xi_get_property_items(reply.get()));
    return *value != 0;
}

}  // namespace nevo::menubar
