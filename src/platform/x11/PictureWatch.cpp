#include "platform/x11/PictureWatch.h"

#include <xcb/damage.h>

#include <map>

namespace nevo {

struct PictureWatch::Held {
    struct Entry {
        xcb_window_t window;
        std::function<void()> changed;
    };

    explicit Held(XServer& x) : server(x) {}
    void hear(const xcb_generic_event_t& event);

    XServer& server;
    /// 0 without the extension.
    std::uint8_t notifyEvent = 0;
    std::map<xcb_damage_damage_t, Entry> entries;
};

void PictureWatch::Held::hear(const xcb_generic_event_t& event) {
    if (notifyEvent == 0 || (event.response_type & 0x7f) != notifyEvent) return;
    auto found = entries.find(reinterpret_cast<const xcb_damage_notify_event_t&>(event).damage);
    if (found == entries.end()) return;
    // From a copy: the handler may end the watch.
    auto call = found->second.changed;
    call();
}

PictureWatch::PictureWatch(XServer& x, EventPump& pump) : held(std::make_shared<Held>(x)) {
    const auto* extension = xcb_get_extension_data(x.get(), &xcb_damage_id);
    if (extension == nullptr || extension->present == 0) return;
    // The server knows no request of the extension before its version was asked for.
    xcb::Reply<xcb_damage_query_version_reply_t> version(
        xcb_damage_query_version_reply(x.get(), xcb_damage_query_version(x.get(), 1, 1), nullptr));
    if (!version) return;
    held->notifyEvent = static_cast<std::uint8_t>(extension->first_event + XCB_DAMAGE_NOTIFY);
    pump.watch([weak = std::weak_ptr(held)](const xcb_generic_event_t& event) {
        if (auto all = weak.lock()) all->hear(event);
    });
}

PictureWatch::~PictureWatch() = default;

Registration PictureWatch::watch(xcb_window_t window, std::function<void()> changed) {
    if (held->notifyEvent == 0) return {};
    auto* c = held->server.get();
    xcb_damage_damage_t damage = xcb_generate_id(c);
    xcb_damage_create(c, damage, window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    held->server.flush();
    held->entries.emplace(damage, Held::Entry{window, std::move(changed)});
    return Registration([weak = std::weak_ptr(held), damage] {
        auto all = weak.lock();
        if (!all || all->entries.erase(damage) == 0) return;
        // Of a window that has gone there is nothing to destroy: an error that nobody waits for.
        xcb_damage_destroy(all->server.get(), damage);
        all->server.flush();
    });
}

void PictureWatch::willRead(xcb_window_t window) {
    for (const auto& [damage, entry] : held->entries) {
        if (entry.window == window)
            xcb_damage_subtract(held->server.get(), damage, XCB_NONE, XCB_NONE);
    }
}

}  // namespace nevo
