#include <cstdio>

#include "Probes.h"
#include "TrayIcon.h"

namespace nevo::bench {

namespace {

using namespace std::chrono_literals;

/// A press that hasn't arrived by then went elsewhere.
constexpr auto missedAfter = 500ms;

/// Milliseconds until the press arrived; nothing when it hit something else.
std::optional<double> clickOnce(const Server& server, xcb_window_t icon) {
    auto place = middleOf(server, icon);
    if (!place) giveUp("The icon has lost its place.");
    server.moveTo(*place);
    auto pressed = server.press();
    std::optional<double> result;
    while (!result && Clock::now() - pressed < missedAfter) {
        auto event = server.next(missedAfter);
        if (event && (event->response_type & 0x7f) == XCB_BUTTON_PRESS) {
            result = milliseconds(pressed, Clock::now());
        }
    }
    server.release();
    server.settle();
    return result;
}

}  // namespace

void timeClicks(const Server& server, int count) {
    xcb_window_t icon = dockIcon(server, "bench-probe", XCB_EVENT_MASK_BUTTON_PRESS);
    int missed = 0;
    for (int hits = 0; hits < count;) {
        if (auto time = clickOnce(server, icon)) {
            std::printf("click %.3f\n", *time);
            ++hits;
        } else if (++missed > count) {
            giveUp("Most clicks miss the icon.");
        }
        // No multiple of the bar's rhythm, so that presses fall into every part of it.
        rest(37ms);
    }
    std::printf("missed %d\n", missed);
}

}  // namespace nevo::bench
