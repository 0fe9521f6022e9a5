#include "Server.h"

#include <poll.h>
#include <xcb/xtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace nevo::bench {

double milliseconds(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double, std::milli>(to - from).count();
}

Server::Server() {
    std::string failure;
    connection = xcb::Connection::open(failure);
    if (!connection) giveUp(failure);
    atoms = std::make_unique<xcb::Atoms>(connection->get(), std::span<const char* const>());
}

void Server::fake(std::uint8_t type, std::uint8_t detail, Point place) const {
    xcb_test_fake_input(get(), type, detail, XCB_CURRENT_TIME, root(),
                        static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y), 0);
    connection->flush();
}

void Server::moveTo(Point place) const { fake(XCB_MOTION_NOTIFY, 0, place); }

Clock::time_point Server::press() const {
    auto now = Clock::now();
    fake(XCB_BUTTON_PRESS, 1);
    return now;
}

Clock::time_point Server::release() const {
    auto now = Clock::now();
    fake(XCB_BUTTON_RELEASE, 1);
    return now;
}

void Server::settle() const {
    std::free(xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr));
    if (connection->isBroken()) giveUp("The display has gone.");
}

xcb::Reply<xcb_generic_event_t> Server::next(std::chrono::microseconds patience) const {
    using Event = xcb::Reply<xcb_generic_event_t>;
    connection->flush();
    if (auto event = Event(xcb_poll_for_event(get()))) return event;
    pollfd descriptor{connection->fileDescriptor(), POLLIN, 0};
    timespec time{patience.count() / 1'000'000, patience.count() % 1'000'000 * 1000};
    ::ppoll(&descriptor, 1, &time, nullptr);
    if (connection->isBroken()) giveUp("The display has gone.");
    return Event(xcb_poll_for_event(get()));
}

void Server::select(xcb_window_t window, std::uint32_t events) const {
    std::array<std::uint32_t, 1> mask{events};
    xcb_change_window_attributes(get(), window, XCB_CW_EVENT_MASK, mask.data());
}

void rest(std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }

void waitFor(const char* what, const std::function<bool()>& condition) {
    auto deadline = Clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (Clock::now() > deadline) giveUp(std::string("It isn't so that ") + what + ".");
        rest(std::chrono::milliseconds(5));
    }
}

void giveUp(const std::string& why) {
    std::fprintf(stderr, "%s\n", why.c_str());
    std::exit(1);
}

}  // namespace nevo::bench
