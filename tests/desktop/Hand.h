#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/xcb/Connection.h"

namespace nevo::desktoptest {

/// Mouse and keyboard, as a person at this display would use them. Each verb returns when the
/// server has taken the last of it in.
class Hand {
public:
    explicit Hand(const xcb::Connection& connection) : server(connection) {}

    void moveTo(Point place);
    void click(Point place, int button = 1);
    /// Drags with button 1, in steps. `underway` is called after the first point of the way, since
    /// nobody is as quick as this hand.
    void drag(Point from, Point to, const std::function<void()>& underway = {});
    /// Holds Super meanwhile.
    void superDrag(Point from, Point to, const std::function<void()>& underway = {});
    void press(xcb_keysym_t key);
    /// Presses `key` while holding the others.
    void press(xcb_keysym_t key, const std::vector<xcb_keysym_t>& held);
    /// ASCII, as the keyboard of the United States has it.
    void type(const std::string& text);
    void hold(xcb_keysym_t key);
    void letGo(xcb_keysym_t key);
    /// The key that gives `symbol` now; ends the test when there is none.
    xcb_keycode_t codeOf(xcb_keysym_t symbol) const;

private:
    void fake(std::uint8_t type, std::uint8_t detail, Point place = {});
    void flush();

    const xcb::Connection& server;
    std::chrono::steady_clock::time_point lastClick;
};

inline constexpr xcb_keysym_t spaceKey = 0x20;
inline constexpr xcb_keysym_t tabKey = 0xff09;
inline constexpr xcb_keysym_t returnKey = 0xff0d;
inline constexpr xcb_keysym_t escapeKey = 0xff1b;
inline constexpr xcb_keysym_t homeKey = 0xff50;
inline constexpr xcb_keysym_t leftKey = 0xff51;
inline constexpr xcb_keysym_t upKey = 0xff52;
inline constexpr xcb_keysym_t rightKey = 0xff53;
inline constexpr xcb_keysym_t downKey = 0xff54;
inline constexpr xcb_keysym_t endKey = 0xff57;
inline constexpr xcb_keysym_t menuKey = 0xff67;
inline constexpr xcb_keysym_t numLockKey = 0xff7f;
inline constexpr xcb_keysym_t leftShiftKey = 0xffe1;
inline constexpr xcb_keysym_t capsLockKey = 0xffe5;
inline constexpr xcb_keysym_t leftAltKey = 0xffe9;
inline constexpr xcb_keysym_t leftSuperKey = 0xffeb;

}  // namespace nevo::desktoptest
