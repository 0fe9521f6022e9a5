#include "controller/StatusBarController.h"

namespace nevo {

void StatusBarController::resetAutoHideTimer() {
    autoHideTimer.reset();
    if (!appState.autoHideEnabled() || !appState.isExpanded()) return;
    auto weak = weak_from_this();
    autoHideTimer = platform.runLoop.timer(appState.autoHideDelay(), false, [weak] {
        if (auto self = weak.lock()) self->laterOnMain(&StatusBarController::autoHideFired);
    });
}

void StatusBarController::startShelfAutoHideTimer() {
    autoHideTimer.reset();
    if (!appState.autoHideEnabled()) return;
    auto weak = weak_from_this();
    autoHideTimer = platform.runLoop.timer(appState.autoHideDelay(), false, [weak] {
        if (auto self = weak.lock()) self->laterOnMain(&StatusBarController::shelfAutoHideFired);
    });
}

void StatusBarController::shelfAutoHideFired() {
    if (isShelfIn(ShelfState::Kind::panelVisible)) shelfController->dismissShelf();
}

void StatusBarController::autoHideFired() {
    if (!appState.isExpanded()) return;
    if (isShelfMode()) {
        startCollapse(nullptr);
    } else {
        toggle();
    }
}

}  // namespace nevo
