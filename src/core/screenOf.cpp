#include "core/screenOf.h"

namespace nevo {

std::optional<Screen> screenOf(const Screens& screens, const Rect& frame) {
    auto all = screens.screens();
    for (const Screen& screen : all) {
        if (screen.frame.contains(frame.center())) return screen;
    }
    for (const Screen& screen : all) {
        if (screen.frame.intersects(frame)) return screen;
    }
    return std::nullopt;
}

}  // namespace nevo
