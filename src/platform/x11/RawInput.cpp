#include "platform/x11/RawInput.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <vector>

namespace nevo {

namespace {

/// The device property that marks the devices behind the XTEST extension.
constexpr const char* syntheticMark = "XTEST Device";

bool isSynthetic(XServer& server, xcb_input_device_id_t device) {
    xcb::Reply<xcb_input_xi_get_property_reply_t> mark(xcb_input_xi_get_property_reply(
        server.get(),
        xcb_input_xi_get_property(server.get(), device, 0, server.atom(syntheticMark),
                                  XCB_ATOM_INTEGER, 0, 1),
        nullptr));
    if (!mark || mark->format != 8 || mark->num_items < 1) return false;
    return *static_cast<const std::uint8_t*>(xcb_input_xi_get_property_items(mark.get())) == 1;
}

void releaseBits(XServer& server, std::uint8_t releaseEvent, const std::uint8_t* bits,
                 std::size_t count) {
    for (std::size_t i = 0; i < count * 8; ++i) {
        if (!(bits[i / 8] & (1U << (i % 8)))) continue;
        xcb_test_fake_input(server.get(), releaseEvent, static_cast<std::uint8_t>(i),
                            XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }
}

void releaseDevice(XServer& server, std::uint8_t device) {
    auto* c = server.get();
    xcb::Reply<xcb_input_open_device_reply_t> opened(
        xcb_input_open_device_reply(c, xcb_input_open_device(c, device), nullptr));
    if (!opened) return;
    xcb::Reply<xcb_input_query_device_state_reply_t> state(
        xcb_input_query_device_state_reply(c, xcb_input_query_device_state(c, device), nullptr));
    if (state) {
        auto it = xcb_input_query_device_state_classes_iterator(state.get());
        for (; it.rem > 0; xcb_input_input_state_next(&it)) {
            if (it.data->class_id == XCB_INPUT_INPUT_CLASS_KEY) {
                auto* keys = reinterpret_cast<const xcb_input_key_state_t*>(it.data);
                releaseBits(server, XCB_KEY_RELEASE, keys->keys, sizeof keys->keys);
            } else if (it.data->class_id == XCB_INPUT_INPUT_CLASS_BUTTON) {
                auto* buttons = reinterpret_cast<const xcb_input_button_state_t*>(it.data);
                releaseBits(server, XCB_BUTTON_RELEASE, buttons->buttons, sizeof buttons->buttons);
            }
        }
    }
    xcb_input_close_device(c, device);
}

bool extensionIsThere(XServer& server, xcb_extension_t* extension) {
    const auto* data = xcb_get_extension_data(server.get(), extension);
    return data != nullptr && data->present != 0;
}

}  // namespace

RawInput::RawInput(XServer& x, EventPump& pump, Handler onInput) : server(x) {
    if (!extensionIsThere(server, &xcb_input_id)) return;
    // 2.2 has to be announced: older clients get no raw events while somebody grabs the pointer.
    xcb::Reply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        server.get(), xcb_input_xi_query_version(server.get(), 2, 2), nullptr));
    if (!version || version->major_version < 2 || version->minor_version < 2) return;
    opcode = xcb_get_extension_data(server.get(), &xcb_input_id)->major_opcode;
    pump.watch([this, onInput = std::move(onInput)](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_GE_GENERIC) return;
        const auto& raw = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
        // Each event comes for the device and for its master; the device's isn't held back by
        // grabs.
        if (raw.extension != opcode || raw.deviceid != raw.sourceid) return;
        switch (raw.event_type) {
            case XCB_INPUT_RAW_MOTION:
                return onInput(Kind::motion, 0);
            case XCB_INPUT_RAW_BUTTON_PRESS:
                return onInput(Kind::press, raw.detail);
            case XCB_INPUT_RAW_BUTTON_RELEASE:
                return onInput(Kind::release, raw.detail);
            default:
                return;
        }
    });
}

void RawInput::setListening(bool listens) {
    if (!isAvailable() || isListening == listens) return;
    isListening = listens;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL, 1}, 0};
    if (listens) {
        selection.mask = XCB_INPUT_XI_EVENT_MASK_RAW_MOTION |
                         XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                         XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE;
    }
    xcb_input_xi_select_events(server.get(), server.root(), 1, &selection.head);
    server.flush();
}

void releaseSyntheticDevices(XServer& server) {
    if (!extensionIsThere(server, &xcb_input_id) || !extensionIsThere(server, &xcb_test_id)) return;
    xcb::Reply<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
        server.get(), xcb_input_xi_query_device(server.get(), XCB_INPUT_DEVICE_ALL), nullptr));
    if (!devices) return;
    for (auto it = xcb_input_xi_query_device_infos_iterator(devices.get()); it.rem > 0;
         xcb_input_xi_device_info_next(&it)) {
        if (!isSynthetic(server, it.data->deviceid)) continue;
        releaseDevice(server, static_cast<std::uint8_t>(it.data->deviceid));
    }
    server.flush();
}

}  // namespace nevo
