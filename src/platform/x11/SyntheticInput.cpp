#include "platform/x11/SyntheticInput.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <cmath>

#include "platform/menubar/BarProtocol.h"
#include "platform/x11/LocalMonitors.h"

namespace nevo {

namespace {
constexpr std::uint8_t leftButton = 1;

std::int16_t coordinate(double value) {
    return static_cast<std::int16_t>(std::clamp(std::round(value), -32768.0, 32767.0));
}
}  // namespace

SyntheticInput::SyntheticInput(XServer& x, BarClient& client, Keyboard& keys)
    : server(x), bar(client), keyboard(keys) {
    const auto* extension = xcb_get_extension_data(server.get(), &xcb_test_id);
    hasXTest = extension != nullptr && extension->present != 0;
}

SyntheticInput::~SyntheticInput() {
    if (holdsButton) fake(XCB_BUTTON_RELEASE, leftButton);
    releaseKeys();
    server.flush();
}

void SyntheticInput::post(EventType type, Point root, ModifierFlags flags, xcb_window_t frame,
                          bool isOnScreen) {
    if (!hasXTest) return;
    switch (type) {
        case EventType::leftMouseDown:
            // The server would clamp such a press into a corner, onto a stranger's window.
            if (!isOnScreen && frame == 0) return;
            if (!isOnScreen) {
                messageDrag = frame;
                sendDrag(barprotocol::dragBegan, frame, root);
            } else {
                press(root, flags, frame);
            }
            break;
        case EventType::leftMouseDragged:
        case EventType::mouseMoved:
            if (messageDrag != 0) {
                sendDrag(barprotocol::dragMoved, messageDrag, root);
            } else {
                fakeMotion(root);
            }
            break;
        case EventType::leftMouseUp:
            if (messageDrag != 0) {
                sendDrag(barprotocol::dragEnded, std::exchange(messageDrag, 0), root);
            } else {
                release(root);
            }
            break;
        default:
            break;
    }
    server.flush();
}

void SyntheticInput::click(Point root, const std::vector<std::uint8_t>& buttons) {
    auto state = queryPointer(server);
    if (!hasXTest || !state) return;
    fakeMotion(root);
    for (std::uint8_t button : buttons) {
        fake(XCB_BUTTON_PRESS, button);
        fake(XCB_BUTTON_RELEASE, button);
    }
    fakeMotion(state->root);
    // The answer comes after all that.
    queryPointer(server);
}

void SyntheticInput::press(Point root, ModifierFlags flags, xcb_window_t frame) {
    auto state = queryPointer(server);
    // With the real button down the server would swallow the press, and the release would end the
    // user's own drag.
    if (!state || (state->mask & XCB_BUTTON_MASK_1)) return;
    if (frame != 0 && (flags & commandModifier)) {
        sendDrag(barprotocol::dragAnnounced, frame, root);
    }
    // A key that is down already must not be released by us.
    pressKeys(flags & ~modifiersFromState(state->mask));
    fakeMotion(root);
    fake(XCB_BUTTON_PRESS, leftButton);
    holdsButton = true;
}

void SyntheticInput::release(Point root) {
    if (!std::exchange(holdsButton, false)) return;
    // Together with its motion: between the two a motion of the user's hand would carry the item
    // away.
    fakeMotion(root);
    fake(XCB_BUTTON_RELEASE, leftButton);
    releaseKeys();
}

void SyntheticInput::pressKeys(ModifierFlags flags) {
    heldKeys = keyboard.keysFor(flags);
    for (xcb_keycode_t key : heldKeys) fake(XCB_KEY_PRESS, key);
}

void SyntheticInput::releaseKeys() {
    for (xcb_keycode_t key : std::exchange(heldKeys, {})) fake(XCB_KEY_RELEASE, key);
}

void SyntheticInput::fakeMotion(Point root) {
    constexpr std::uint8_t isAbsolute = 0;
    xcb_test_fake_input(server.get(), XCB_MOTION_NOTIFY, isAbsolute, XCB_CURRENT_TIME,
                        server.root(), coordinate(root.x), coordinate(root.y), 0);
}

void SyntheticInput::fake(std::uint8_t type, std::uint8_t detail) {
    xcb_test_fake_input(server.get(), type, detail, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

void SyntheticInput::sendDrag(std::uint32_t phase, xcb_window_t frame, Point root) {
    auto word = [](double value) {
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(value)));
    };
    bar.send(barprotocol::drag, frame, phase, word(root.x), word(root.y), server.lease());
}

}  // namespace nevo
