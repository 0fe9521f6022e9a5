#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/Geometry.h"
#include "platform/xcb/Atoms.h"
#include "platform/xcb/Connection.h"

namespace nevo::bench {

using Clock = std::chrono::steady_clock;

/// Milliseconds from one moment to another.
double milliseconds(Clock::time_point from, Clock::time_point to);

/// The display as a person with a stopwatch has it: a mouse, and the moment at which something came
/// about. A broken connection ends the program.
class Server {
public:
    Server();

    xcb_connection_t* get() const { return connection->get(); }
    const xcb::Connection& server() const { return *connection; }
    xcb_window_t root() const { return connection->root(); }
    xcb_atom_t atom(const char* name) const { return (*atoms)[name]; }

    void moveTo(Point place) const;
    /// Button 1 down or up, where the pointer is. Gives the moment just before the server is asked.
    Clock::time_point press() const;
    Clock::time_point release() const;
    /// Waits until the server has done all that it was asked for.
    void settle() const;

    /// The next event, however it came; nothing when none comes within that time.
    xcb::Reply<xcb_generic_event_t> next(std::chrono::microseconds patience) const;
    /// Selects events on a window that may be gone.
    void select(xcb_window_t window, std::uint32_t events) const;

private:
    void fake(std::uint8_t type, std::uint8_t detail, Point place = {}) const;

    std::unique_ptr<xcb::Connection> connection;
    std::unique_ptr<xcb::Atoms> atoms;
};

/// A moment's wait, in which others may work.
void rest(std::chrono::milliseconds time);

/// Looks at `condition` each 5 ms. Ends the program with `what` when it doesn't come about in 20 s.
void waitFor(const char* what, const std::function<bool()>& condition);

/// Ends the program with a sentence on standard error.
[[noreturn]] void giveUp(const std::string& why);

}  // namespace nevo::bench
