#include <xcb/damage.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "Probes.h"
#include "desktop/BarView.h"

namespace nevo::bench {

namespace {

using namespace std::chrono_literals;
using desktoptest::BarView;
using desktoptest::Item;

constexpr auto patience = 5s;
/// Quicker ones are double clicks to the manager, and while it opens or closes it takes none.
constexpr auto betweenClicks = 450ms;
/// The shelf is painted long before, and its live pictures are looked at again only later.
constexpr auto paintTime = 250ms;
/// What is loaded once is loaded by then.
constexpr int rehearsals = 2;

struct Times {
    double mapped;
    double painted;
};

/// Nevo's toggle, and the shelf below the bar.
class ShelfWatch {
public:
    explicit ShelfWatch(const Server& display) : server(display), view(display.server()) {
        waitFor("Nevo's toggle is on the screen", [this] { return findToggle(); });
        auto c = server.get();
        firstDamageEvent = xcb_get_extension_data(c, &xcb_damage_id)->first_event;
        std::free(xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr));
        // On the root window: one on the shelf's own would come after the shelf's first painting.
        xcb_damage_create(c, xcb_generate_id(c), server.root(),
                          XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
        server.select(server.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
        server.moveTo(toggle.place.center());
        server.settle();
    }

    /// Opens the shelf for the first time: it will always look as it does then.
    void rehearse() {
        click();
        until("no shelf comes", server.release(),
              [this](const auto& event) { return showsShelf(event); });
        rest(paintTime);
        looks = picture();
    }

    /// From the release until the shelf's window is there, and until it shows what it did before.
    Times open() {
        click();
        auto released = server.release();
        auto mapped = until("no shelf comes", released,
                            [this](const auto& event) { return showsShelf(event); });
        auto painted = until("the shelf looks different", released, [this](const auto& event) {
            return isDamage(event) && picture() == looks;
        });
        return {mapped, painted};
    }

    /// From the release until the shelf's window has gone.
    double close() {
        click();
        return until("the shelf doesn't go", server.release(), [this](const auto& event) {
            if ((event.response_type & 0x7f) != XCB_UNMAP_NOTIFY) return false;
            return reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window == shelf;
        });
    }

private:
    bool findToggle() {
        auto items = view.items();
        auto found = std::find_if(items.begin(), items.end(), [](const Item& item) {
            return item.name == "Nevo_Toggle" && item.onScreen;
        });
        if (found != items.end()) toggle = *found;
        return found != items.end();
    }

    /// All of a click but the release.
    void click() {
        rest(betweenClicks);
        while (server.next(0us)) {
        }
        server.press();
        server.settle();
    }

    /// Milliseconds from the release to the event. That it takes time to find out whether it is
    /// the one isn't counted.
    template <class Condition>
    double until(const char* what, Clock::time_point released, Condition condition) {
        while (Clock::now() - released < patience) {
            auto event = server.next(patience);
            auto now = Clock::now();
            if (event && condition(*event)) return milliseconds(released, now);
        }
        giveUp(std::string("After a click on the toggle ") + what + ".");
    }

    /// Whether the shelf's window has come, whose shadow may reach into the bar. Decoys of the
    /// items have one too, but within the bar.
    bool showsShelf(const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_MAP_NOTIFY) return false;
        auto& mapped = reinterpret_cast<const xcb_map_notify_event_t&>(event);
        auto place = placeOf(mapped.window);
        if (!place || place->midY() < view.frame().maxY()) return false;
        shelf = mapped.window;
        // All of it that can be seen below the bar, in which a clock goes on.
        Rect screen = placeOf(server.root()).value_or(Rect());
        double left = std::max(place->x, screen.x);
        double top = std::max(place->y, view.frame().maxY());
        shelfPlace = {left, top, std::min(place->maxX(), screen.maxX()) - left,
                      std::min(place->maxY(), screen.maxY()) - top};
        return true;
    }

    bool isDamage(const xcb_generic_event_t& event) const {
        if ((event.response_type & 0x7f) != firstDamageEvent) return false;
        auto& area = reinterpret_cast<const xcb_damage_notify_event_t&>(event).area;
        Rect damaged{static_cast<double>(area.x), static_cast<double>(area.y),
                     static_cast<double>(area.width), static_cast<double>(area.height)};
        return damaged.intersects(shelfPlace);
    }

    /// Of a child of the root window, or of that itself.
    std::optional<Rect> placeOf(xcb_window_t window) const {
        xcb::Reply<xcb_get_geometry_reply_t> g(
            xcb_get_geometry_reply(server.get(), xcb_get_geometry(server.get(), window), nullptr));
        if (!g) return std::nullopt;
        return Rect{static_cast<double>(g->x), static_cast<double>(g->y),
                    static_cast<double>(g->width), static_cast<double>(g->height)};
    }

    /// The screen where the shelf is.
    std::vector<std::uint8_t> picture() const {
        xcb::Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(
            server.get(),
            xcb_get_image(server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, server.root(),
                          static_cast<std::int16_t>(shelfPlace.x),
                          static_cast<std::int16_t>(shelfPlace.y),
                          static_cast<std::uint16_t>(shelfPlace.width),
                          static_cast<std::uint16_t>(shelfPlace.height), ~0U),
            nullptr));
        if (!image) giveUp("The shelf isn't on the screen.");
        const auto* pixels = xcb_get_image_data(image.get());
        return {pixels, pixels + xcb_get_image_data_length(image.get())};
    }

    const Server& server;
    BarView view;
    Item toggle;
    int firstDamageEvent = 0;
    xcb_window_t shelf = 0;
    Rect shelfPlace;
    std::vector<std::uint8_t> looks;
};

}  // namespace

void timeShelf(const Server& server, int count) {
    ShelfWatch watch(server);
    for (int i = 0; i < rehearsals; ++i) {
        watch.rehearse();
        watch.close();
    }
    for (int i = 0; i < count; ++i) {
        Times times = watch.open();
        std::printf("open %.3f\nopen-painted %.3f\n", times.mapped, times.painted);
        std::printf("close %.3f\n", watch.close());
    }
}

void openShelf(const Server& server) { ShelfWatch(server).rehearse(); }

}  // namespace nevo::bench
