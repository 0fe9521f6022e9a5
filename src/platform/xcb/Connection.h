#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace nevo::xcb {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// Something that xcb allocated: a reply, an event, an error.
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter>;

/// A connection to the X server, closed when it goes.
class Connection {
public:
    /// Opens `$DISPLAY`. Nullptr on failure, with one plain sentence for people in `failure`.
    static std::unique_ptr<Connection> open(std::string& failure);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    xcb_connection_t* get() const { return handle; }
    int screenNumber() const { return number; }
    const xcb_screen_t& screen() const { return *theScreen; }
    xcb_window_t root() const { return theScreen->root; }
    int fileDescriptor() const { return xcb_get_file_descriptor(handle); }
    /// True once the server is gone or has thrown us out: nothing works any more.
    bool isBroken() const { return xcb_connection_has_error(handle) != 0; }
    void flush() const { xcb_flush(handle); }

private:
    Connection(xcb_connection_t* opened, int screenIndex, const xcb_screen_t* screenFound)
        : handle(opened), number(screenIndex), theScreen(screenFound) {}

    xcb_connection_t* handle;
    int number;
    const xcb_screen_t* theScreen;
};

/// True when the server answered that the request was in order. Waits for the answer.
bool succeeded(xcb_connection_t* connection, xcb_void_cookie_t checkedCookie);

}  // namespace nevo::xcb
