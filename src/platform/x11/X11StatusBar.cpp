#include "platform/x11/X11StatusBar.h"

#include <algorithm>

#include "platform/menubar/BarScale.h"
#include "platform/x11/X11StatusItem.h"

namespace nevo {

X11StatusBar::X11StatusBar(XServer& x, EventPump& pump, BarClient& client, RunLoop& loop,
                           Screens& screens, LocalMonitors& monitors,
                           std::function<void()> flushPositions)
    : context(std::make_shared<StatusBarContext>(
          StatusBarContext{x, client, loop, screens, monitors, std::move(flushPositions), {}})) {
    pump.watch([weak = std::weak_ptr(context)](const xcb_generic_event_t& event) {
        auto held = weak.lock();
        if (!held) return;
        // Handling may remove items: one that is gone is no longer in the list.
        auto before = held->items;
        for (auto* item : before) {
            bool isAlive =
                std::find(held->items.begin(), held->items.end(), item) != held->items.end();
            if (isAlive && item->handle(event)) return;
        }
    });
    client.appeared = [weak = std::weak_ptr(context)] {
        auto held = weak.lock();
        if (!held) return;
        if (held->flushPositions) held->flushPositions();
        for (auto* item : held->items) item->dock();
    };
}

X11StatusBar::~X11StatusBar() { context->bar.appeared = nullptr; }

std::unique_ptr<StatusItem> X11StatusBar::statusItem(double length) {
    return std::make_unique<X11StatusItem>(context, length);
}

double X11StatusBar::thickness() const {
    double height = context->bar.barFrame().height;
    return height > 0 ? height / context->server.coordinates.scale : usualBarThickness;
}

std::optional<double> X11StatusBar::systemAreaLeft() const {
    auto root = context->bar.systemAreaLeft();
    if (!root) return std::nullopt;
    return context->server.coordinates.fromRoot(Point{*root, 0}).x;
}

}  // namespace nevo
