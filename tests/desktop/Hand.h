#pragma once

#include <chrono>

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
    /// Holds Super and drags with button 1, in steps.
    void superDrag(Point from, Point to);
    void press(xcb_keysym_t key);

private:
    void fake(std::uint8_t type, std::uint8_t detail, Point place = {});
    void flush();
    xcb_keycode_t codeOf(xcb_keysym_t key) const;

    const xcb::Connection& server;
    std::chrono::steady_clock::time_point lastClick;
};

inline constexpr xcb_keysym_t returnKey = 0xff0d;
inline constexpr xcb_keysym_t upKey = 0xff52;
inline constexpr xcb_keysym_t leftSuperKey = 0xffeb;

}  // namespace nevo::desktoptest
