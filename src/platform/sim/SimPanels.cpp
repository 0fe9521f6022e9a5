#include "platform/sim/SimPanels.h"

#include <fmt/format.h>

#include <algorithm>

namespace nevo {

SimPanel::SimPanel(SimPanels& all, const PanelConfiguration& of) : panels(all), configuration(of) {
    SimWindow window;
    window.pid = panels.program.pid;
    window.ownerName = panels.program.name;
    window.layer = configuration.level;
    window.frame = panels.screens.flipped(configuration.frame);
    window.mapped = false;
    number = panels.windows.create(window);
    panels.all.push_back(this);
}

SimPanel::~SimPanel() {
    *alive = false;
    orderOut();
    std::erase(panels.all, this);
    panels.windows.destroy(number);
}

void SimPanel::setFrame(Rect frame) {
    configuration.frame = frame;
    panels.windows.find(number)->frame = panels.screens.flipped(frame);
}

std::optional<Screen> SimPanel::screen() const {
    for (const Screen& each : panels.screens.screens()) {
        if (each.frame.intersects(configuration.frame)) return each;
    }
    return std::nullopt;
}

void SimPanel::setView(const PanelView& view, std::optional<Animation>) {
    for (PanelView& each : shownViews) {
        if (each.key == view.key) each = view;
    }
}

void SimPanel::bringViewToFront(const std::string& key) {
    std::stable_partition(shownViews.begin(), shownViews.end(),
                          [&](const PanelView& view) { return view.key != key; });
}

void SimPanel::animateAlpha(double alpha, Animation animation, std::function<void()> done) {
    panelAlpha = alpha;
    panels.loop.postAfter(animation.seconds,
                          [stillThere = std::weak_ptr(alive), call = std::move(done)] {
                              auto there = stillThere.lock();
                              if (there && *there && call) call();
                          });
}

void SimPanel::orderFront() {
    auto own = std::find(panels.all.begin(), panels.all.end(), this);
    std::rotate(own, own + 1, panels.all.end());
    SimWindow& window = *panels.windows.find(number);
    if (window.mapped) return;
    window.mapped = true;
    const Rect& place = configuration.frame;
    panels.trace.note("panel",
                      fmt::format("{}x{} at {},{}", place.width, place.height, place.x, place.y));
}

void SimPanel::orderOut() {
    SimWindow* window = panels.windows.find(number);
    if (!window->mapped) return;
    window->mapped = false;
    isKey = false;
    pressedView.clear();
    panels.trace.note("panel", "gone");
}

bool SimPanel::isVisible() const { return panels.windows.find(number)->mapped; }

const PanelView* SimPanel::view(const std::string& key) const {
    for (const PanelView& each : shownViews) {
        if (each.key == key) return &each;
    }
    return nullptr;
}

const PanelView* SimPanel::viewAt(Point inPanel) const {
    for (auto each = shownViews.rbegin(); each != shownViews.rend(); ++each) {
        if (each->takesMouse && each->frame.contains(inPanel)) return &*each;
    }
    return nullptr;
}

void SimPanel::deliver(const Event& event) {
    Point place{event.location.x - configuration.frame.x, event.location.y - configuration.frame.y};
    if (event.type == EventType::scrollWheel) {
        const PanelView* under = viewAt(place);
        auto scrolled = onEvent;
        if (under != nullptr && scrolled)
            scrolled({event.type, under->key, place, event.modifiers, event.scroll});
        return;
    }
    bool isPress = event.type == EventType::leftMouseDown ||
                   event.type == EventType::rightMouseDown ||
                   event.type == EventType::otherMouseDown;
    if (isPress) {
        const PanelView* under = viewAt(place);
        pressedView = under != nullptr ? under->key : "";
    }
    if (pressedView.empty() || event.type == EventType::mouseMoved || !onEvent) return;
    PanelEvent told{event.type, pressedView, place, event.modifiers};
    bool isRelease = event.type == EventType::leftMouseUp ||
                     event.type == EventType::rightMouseUp || event.type == EventType::otherMouseUp;
    if (isRelease) pressedView.clear();
    // A copy: the handler may destroy the panel, and itself with it.
    auto handler = onEvent;
    handler(told);
}

void SimPanel::deliver(PanelKey key) {
    auto handler = onKey;
    if (handler) handler(key);
}

std::unique_ptr<Panel> SimPanels::create(const PanelConfiguration& configuration) {
    return std::make_unique<SimPanel>(*this, configuration);
}

std::vector<SimPanel*> SimPanels::visible() const {
    std::vector<SimPanel*> result;
    std::copy_if(all.begin(), all.end(), std::back_inserter(result),
                 [](const SimPanel* panel) { return panel->isVisible(); });
    return result;
}

SimPanel* SimPanels::at(Point place) const {
    Point flipped = screens.flipped(place);
    for (auto each = all.rbegin(); each != all.rend(); ++each) {
        const PanelConfiguration& shown = (*each)->shownConfiguration();
        if ((*each)->isVisible() && !shown.ignoresMouseEvents && shown.frame.contains(flipped))
            return *each;
    }
    return nullptr;
}

SimPanel* SimPanels::key() const {
    auto found = std::find_if(all.rbegin(), all.rend(),
                              [](const SimPanel* panel) { return panel->hasKeys(); });
    return found == all.rend() ? nullptr : *found;
}

SimPanel* SimPanels::find(WindowNumber window) const {
    auto found = std::find_if(all.begin(), all.end(), [window](const SimPanel* panel) {
        return panel->window() == window;
    });
    return found == all.end() ? nullptr : *found;
}

}  // namespace nevo
