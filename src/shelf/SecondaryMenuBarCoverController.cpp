#include "shelf/SecondaryMenuBarCoverController.h"

#include <set>

namespace nevo {

namespace {

/// All spaces, stationary, ignore the cycle, stand beside full screen.
constexpr unsigned coverCollection = 0x151;

}  // namespace

SecondaryMenuBarCoverController::SecondaryMenuBarCoverController(const Platform& desktop)
    : platform(desktop) {}

std::shared_ptr<SecondaryMenuBarCoverController> SecondaryMenuBarCoverController::create(
    const Platform& platform) {
    std::shared_ptr<SecondaryMenuBarCoverController> covers(
        new SecondaryMenuBarCoverController(platform));
    covers->observer = platform.notifications.addObserver(
        screenParametersChangedNotification,
        [&platform, weak = std::weak_ptr(covers)](const Notification&) {
            platform.runLoop.post([weak] {
                if (auto self = weak.lock()) self->update();
            });
        });
    return covers;
}

void SecondaryMenuBarCoverController::update() {
    auto screens = platform.screens.screens();
    std::set<std::uint32_t> seen;
    if (isEnabled) {
        for (const Screen& screen : screens) {
            // The one with the menu bar, wherever the window in use is, and its mirrors.
            if (screen.frame.intersects(screens.front().frame)) continue;
            seen.insert(screen.id);
            cover(screen);
        }
    }
    std::erase_if(windows, [&](const auto& entry) { return !seen.contains(entry.first); });
}

void SecondaryMenuBarCoverController::cover(const Screen& screen) {
    double barHeight = screen.frame.maxY() - screen.visibleFrame.maxY();
    if (!(barHeight > 0)) return;
    Rect frame{screen.frame.x, screen.frame.maxY() - barHeight, screen.frame.width, barHeight};
    PanelView effect;
    effect.key = "cover";
    effect.frame = {0, 0, frame.width, frame.height};
    effect.material = Material::menu;
    std::unique_ptr<Panel>& window = windows[screen.id];
    if (window) {
        window->setFrame(frame);
    } else {
        PanelConfiguration made;
        made.frame = frame;
        made.level = menuBarWindowLevel + 1;
        made.collectionBehavior = coverCollection;
        window = platform.panels.create(made);
    }
    window->setViews({effect});
    window->orderFront();
}

}  // namespace nevo
