// A tray program that behaves badly, for tests and benchmarks of tray hosts:
// bad-client KIND [SEED] with one of the kinds below. Says "docked" when a tray host has taken its
// first window, and runs until it is ended.

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "platform/xcb/Atoms.h"
#include "platform/xcb/Connection.h"
#include "platform/xcb/Properties.h"

namespace {

using nevo::xcb::Reply;

constexpr std::uint32_t dockRequest = 0;
constexpr std::uint16_t iconSize = 22;

class BadClient {
public:
    explicit BadClient(const nevo::xcb::Connection& connection)
        : server(connection), c(connection.get()), atoms(c, {}) {}

    /// A window that could be docked; it wants to be shown if `mapped`.
    xcb_window_t create(bool mapped) {
        xcb_window_t window = xcb_generate_id(c);
        std::array<std::uint32_t, 2> values{0xcc3333, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
        xcb_create_window(c, XCB_COPY_FROM_PARENT, window, server.root(), 0, 0, iconSize, iconSize,
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());
        std::array<std::uint32_t, 2> info{0, mapped ? 1U : 0U};
        nevo::xcb::writeNumbers(c, window, atoms["_XEMBED_INFO"], atoms["_XEMBED_INFO"], info);
        return window;
    }

    void dock(xcb_window_t window) {
        Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
            c, xcb_get_selection_owner(c, atoms["_NET_SYSTEM_TRAY_S0"]), nullptr));
        if (!owner || owner->owner == XCB_WINDOW_NONE) return;
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = owner->owner;
        message.type = atoms["_NET_SYSTEM_TRAY_OPCODE"];
        message.data.data32[1] = dockRequest;
        message.data.data32[2] = window;
        xcb_send_event(c, 0, owner->owner, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(c);
    }

    void resize(xcb_window_t window, std::uint32_t width, std::uint32_t height) {
        std::array<std::uint32_t, 2> size{width, height};
        xcb_configure_window(c, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                             size.data());
        xcb_flush(c);
    }

    void destroy(xcb_window_t window) {
        xcb_destroy_window(c, window);
        xcb_flush(c);
    }

    /// Takes in events for that long; false when the display is gone.
    bool live(int milliseconds) {
        pollfd descriptor{server.fileDescriptor(), POLLIN, 0};
        ::poll(&descriptor, 1, milliseconds);
        while (Reply<xcb_generic_event_t> event{xcb_poll_for_event(c)}) {
            if ((event->response_type & 0x7f) != XCB_REPARENT_NOTIFY || saidDocked) continue;
            saidDocked = true;
            std::puts("docked");
            std::fflush(stdout);
        }
        return !server.isBroken();
    }

    void liveOn() {
        while (live(-1)) {
        }
    }

private:
    const nevo::xcb::Connection& server;
    xcb_connection_t* c;
    nevo::xcb::Atoms atoms;
    bool saidDocked = false;
};

void neverMaps(BadClient& client, unsigned) {
    client.dock(client.create(false));
    client.liveOn();
}

void asksForTooMuch(BadClient& client, unsigned) {
    xcb_window_t window = client.create(true);
    client.dock(window);
    do {
        client.resize(window, 4000, 4000);
    } while (client.live(100));
}

/// A thousand times a second.
void resizesWithoutEnd(BadClient& client, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::uint32_t> size(10, 70);
    xcb_window_t window = client.create(true);
    client.dock(window);
    do {
        client.resize(window, size(random), size(random));
    } while (client.live(1));
}

/// Two hundred windows dock, and leave at any moment after that, some of them at once; a dozen
/// stay.
void comesAndGoes(BadClient& client, unsigned seed) {
    constexpr int dockings = 200;
    constexpr std::size_t mostAtOnce = 12;
    std::mt19937 random(seed);
    std::vector<xcb_window_t> docked;
    for (int i = 0; i < dockings; ++i) {
        docked.push_back(client.create(random() % 4 != 0 || i >= dockings / 2));
        client.dock(docked.back());
        while (docked.size() > mostAtOnce || random() % 3 == 0) {
            if (docked.empty()) break;
            auto leaving = docked.begin() + static_cast<std::ptrdiff_t>(random() % docked.size());
            client.destroy(*leaving);
            docked.erase(leaving);
        }
        client.live(static_cast<int>(random() % 3));
    }
    while (docked.size() < mostAtOnce) {
        docked.push_back(client.create(true));
        client.dock(docked.back());
    }
    client.liveOn();
}

/// Well-behaved; whoever started it stops it.
void waits(BadClient& client, unsigned) {
    client.dock(client.create(true));
    client.liveOn();
}

}  // namespace

int main(int argc, char** argv) {
    const std::map<std::string, void (*)(BadClient&, unsigned)> kinds{
        {"unmapped", neverMaps},
        {"giant", asksForTooMuch},
        {"resizer", resizesWithoutEnd},
        {"crowd", comesAndGoes},
        {"plain", waits}};
    auto kind = argc > 1 ? kinds.find(argv[1]) : kinds.end();
    if (kind == kinds.end()) {
        std::fputs("Usage: bad-client unmapped|giant|resizer|crowd|plain [SEED]\n", stderr);
        return 2;
    }
    std::string failure;
    auto connection = nevo::xcb::Connection::open(failure);
    if (!connection) {
        std::fprintf(stderr, "%s\n", failure.c_str());
        return 1;
    }
    BadClient client(*connection);
    kind->second(client, argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1);
    return 0;
}
