#include "platform/sim/SimScreens.h"

#include <algorithm>

namespace nevo {

SimScreens::SimScreens() : all{SimDisplay{1, {0, 0, 1440, 900}, 0, 2}} {}

std::vector<Screen> SimScreens::screens() const {
    std::vector<Screen> result;
    for (const SimDisplay& display : all) result.push_back(screen(display));
    return result;
}

std::optional<Screen> SimScreens::mainScreen() const {
    if (all.empty()) return std::nullopt;
    return screen(all.front());
}

void SimScreens::put(const SimDisplay& display) {
    auto found = std::find_if(all.begin(), all.end(),
                              [&](const SimDisplay& d) { return d.id == display.id; });
    if (found == all.end()) {
        all.push_back(display);
    } else {
        *found = display;
    }
    moveOrigin();
}

bool SimScreens::remove(std::uint32_t id) {
    std::size_t gone = std::erase_if(all, [&](const SimDisplay& d) { return d.id == id; });
    moveOrigin();
    return gone > 0;
}

void SimScreens::moveOrigin() {
    if (all.empty()) return;
    Rect origin = all.front().frame;
    for (SimDisplay& display : all) {
        display.frame.x -= origin.x;
        display.frame.y -= origin.y;
    }
}

Point SimScreens::flipped(Point place) const {
    if (all.empty()) return place;
    return {place.x, all.front().frame.height - place.y};
}

Rect SimScreens::flipped(const Rect& frame) const {
    if (all.empty()) return frame;
    return {frame.x, all.front().frame.height - frame.maxY(), frame.width, frame.height};
}

Screen SimScreens::screen(const SimDisplay& display) const {
    Screen result;
    result.id = display.id;
    result.frame = flipped(display.frame);
    result.visibleFrame = result.frame;
    result.visibleFrame.height -= thickness;
    result.safeAreaTop = display.notchInset;
    result.backingScale = display.scale;
    return result;
}

}  // namespace nevo
