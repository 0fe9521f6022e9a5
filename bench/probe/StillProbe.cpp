#include <xcb/damage.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Probes.h"

namespace nevo::bench {

namespace {

using namespace std::chrono_literals;

/// The top of the screen, where a panel of any host has room.
constexpr std::uint16_t stripHeight = 40;
/// A host that takes so long between two icons counts as done after the first.
constexpr auto stillness = 3s;
constexpr auto patience = 30s;

/// What the top of the screen shows.
class StripWatch {
public:
    explicit StripWatch(const Server& display) : server(display) {
        auto c = server.get();
        firstDamageEvent = xcb_get_extension_data(c, &xcb_damage_id)->first_event;
        std::free(xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr));
        xcb_damage_create(c, xcb_generate_id(c), server.root(),
                          XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
        looks = picture();
    }

    /// Whether that event has changed it; what is painted anew just as it was hasn't.
    bool isChangedBy(const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != firstDamageEvent) return false;
        auto& damage = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
        if (damage.area.y >= stripHeight) return false;
        auto now = picture();
        if (now == looks) return false;
        looks = std::move(now);
        return true;
    }

private:
    std::vector<std::uint8_t> picture() const {
        auto c = server.get();
        const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
        xcb::Reply<xcb_get_image_reply_t> image(
            xcb_get_image_reply(c,
                                xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, server.root(), 0, 0,
                                              screen->width_in_pixels, stripHeight, ~0U),
                                nullptr));
        if (!image) giveUp("The screen can't be read.");
        const auto* pixels = xcb_get_image_data(image.get());
        return {pixels, pixels + xcb_get_image_data_length(image.get())};
    }

    const Server& server;
    int firstDamageEvent = 0;
    std::vector<std::uint8_t> looks;
};

}  // namespace

void watchUntilStill(const Server& server) {
    StripWatch watch(server);
    std::puts("watching");
    std::fflush(stdout);
    auto begin = Clock::now();
    auto last = begin;
    while (last == begin || Clock::now() - last < stillness) {
        if (Clock::now() - begin > patience) giveUp("The top of the screen isn't still.");
        auto event = server.next(100ms);
        auto received = Clock::now();
        if (event && watch.isChangedBy(*event)) last = received;
    }
    std::printf("shown %.6f\n", std::chrono::duration<double>(last.time_since_epoch()).count());
}

}  // namespace nevo::bench
