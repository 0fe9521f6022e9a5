#include "desktop/Hand.h"

#include <xcb/xtest.h>

#include <cstdlib>

#include "desktop/Process.h"

namespace nevo::desktoptest {

namespace {
/// A hand isn't faster, and programs take quicker clicks for one double click.
constexpr auto shortestTimeBetweenClicks = std::chrono::milliseconds(300);
constexpr int dragSteps = 8;
}  // namespace

void Hand::fake(std::uint8_t type, std::uint8_t detail, Point place) {
    xcb_test_fake_input(server.get(), type, detail, XCB_CURRENT_TIME, server.root(),
                        static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y), 0);
}

void Hand::flush() {
    auto c = server.get();
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
}

void Hand::moveTo(Point place) {
    fake(XCB_MOTION_NOTIFY, 0, place);
    flush();
}

void Hand::click(Point place, int button) {
    using Clock = std::chrono::steady_clock;
    bool isWheel = button > 3;
    holdsSoon([&] { return isWheel || Clock::now() - lastClick > shortestTimeBetweenClicks; });
    moveTo(place);
    fake(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
    fake(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
    flush();
    lastClick = Clock::now();
}

void Hand::drag(Point from, Point to, const std::function<void()>& underway) {
    moveTo(from);
    fake(XCB_BUTTON_PRESS, 1);
    if (underway) {
        moveTo({from.x + 1, from.y});
        underway();
    }
    for (int i = 1; i <= dragSteps; ++i) {
        double part = static_cast<double>(i) / dragSteps;
        moveTo({from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part});
    }
    fake(XCB_BUTTON_RELEASE, 1);
    flush();
}

void Hand::superDrag(Point from, Point to, const std::function<void()>& underway) {
    hold(leftSuperKey);
    drag(from, to, underway);
    letGo(leftSuperKey);
}

void Hand::press(xcb_keysym_t key) {
    xcb_keycode_t code = codeOf(key);
    fake(XCB_KEY_PRESS, code);
    fake(XCB_KEY_RELEASE, code);
    flush();
}

void Hand::press(xcb_keysym_t key, const std::vector<xcb_keysym_t>& held) {
    for (xcb_keysym_t each : held) hold(each);
    press(key);
    for (xcb_keysym_t each : held) letGo(each);
}

void Hand::type(const std::string& text) {
    constexpr std::string_view shifted = "~_+:?";
    for (char letter : text) {
        bool isShifted = (letter >= 'A' && letter <= 'Z') || shifted.find(letter) != shifted.npos;
        std::vector<xcb_keysym_t> held;
        if (isShifted) held.push_back(leftShiftKey);
        press(static_cast<xcb_keysym_t>(letter), held);
    }
}

void Hand::hold(xcb_keysym_t key) {
    fake(XCB_KEY_PRESS, codeOf(key));
    flush();
}

void Hand::letGo(xcb_keysym_t key) {
    fake(XCB_KEY_RELEASE, codeOf(key));
    flush();
}

xcb_keycode_t Hand::codeOf(xcb_keysym_t symbol) const {
    auto c = server.get();
    const xcb_setup_t* setup = xcb_get_setup(c);
    auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    xcb::Reply<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        c, xcb_get_keyboard_mapping(c, setup->min_keycode, count), nullptr));
    if (!mapping) throw Failed("the display has no keyboard");
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    for (int i = 0; i < count * mapping->keysyms_per_keycode; ++i) {
        if (symbols[i] != symbol) continue;
        return static_cast<xcb_keycode_t>(setup->min_keycode + i / mapping->keysyms_per_keycode);
    }
    throw Failed("the keyboard lacks a key");
}

}  // namespace nevo::desktoptest
