#include "platform/xcb/Connection.h"

namespace nevo::xcb {

namespace {
const xcb_screen_t* screenAt(xcb_connection_t* connection, int index) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0; xcb_screen_next(&screens), --index) {
        if (index == 0) return screens.data;
    }
    return nullptr;
}
}  // namespace

std::unique_ptr<Connection> Connection::open(std::string& failure) {
    const char* display = std::getenv("DISPLAY");
    if (display == nullptr || *display == '\0') {
        failure = "There is no X display: the environment variable DISPLAY is not set.";
        return nullptr;
    }
    int index = 0;
    xcb_connection_t* handle = xcb_connect(nullptr, &index);
    const xcb_screen_t* screen =
        xcb_connection_has_error(handle) == 0 ? screenAt(handle, index) : nullptr;
    if (screen == nullptr) {
        xcb_disconnect(handle);
        failure = std::string("The X display \"") + display + "\" could not be opened.";
        return nullptr;
    }
    return std::unique_ptr<Connection>(new Connection(handle, index, screen));
}

Connection::~Connection() { xcb_disconnect(handle); }

bool succeeded(xcb_connection_t* connection, xcb_void_cookie_t checkedCookie) {
    Reply<xcb_generic_error_t> error(xcb_request_check(connection, checkedCookie));
    return error == nullptr && xcb_connection_has_error(connection) == 0;
}

}  // namespace nevo::xcb
