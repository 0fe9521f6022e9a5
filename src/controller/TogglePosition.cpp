#include <fmt/format.h>

#include <cmath>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"
#include "core/screenOf.h"

namespace nevo {

namespace {

constexpr double topTolerance = 4.0;
constexpr double bottomTolerance = 10.0;
/// A move of the canonical x by this much or less isn't a shift of the layout.
constexpr double layoutShift = 50.0;
constexpr double toleratedDrift = 20.0;

}  // namespace

std::optional<Rect> StatusBarController::toggleButtonScreenFrame() const {
    StatusItemButton* button = sectionManager.toggleItem->button();
    auto frame = button ? button->screenFrame() : std::nullopt;
    if (!frame) return std::nullopt;
    debugLog(fmt::format("[Nevo] toggleButtonScreenFrame: bounds={} frame={} screen={}",
                         describe(button->bounds()), describe(*frame),
                         describe(button->windowScreenFrame())));
    return frame;
}

bool StatusBarController::isPlausibleToggleFrame(const Rect& frame) const {
    if (frame.isEmpty()) return false;
    auto screen = screenOf(platform.screens, frame);
    if (!screen) return false;
    double top = screen->frame.maxY();
    return frame.maxY() <= top + topTolerance &&
           top - platform.statusBar.thickness() - bottomTolerance <= frame.y;
}

void StatusBarController::recordCanonicalToggleX() {
    auto frame = SectionManager::frame(*sectionManager.toggleItem);
    if (!frame || !isPlausibleToggleFrame(*frame)) return;
    if (canonicalToggleX < 0) {
        canonicalToggleX = frame->x;
        appState.setToggleX(frame->x);
        debugLog("[Nevo] canonical toggle X recorded: " + describeWhole(frame->x));
    } else if (std::abs(canonicalToggleX - frame->x) > layoutShift) {
        debugLog(
            fmt::format("[Nevo] canonical toggle X UPDATED from {} to {} (layout shift detected)",
                        describe(canonicalToggleX), describe(frame->x)));
        canonicalToggleX = frame->x;
        appState.setToggleX(frame->x);
    }
}

void StatusBarController::compensateDrift() {
    if (!(canonicalToggleX > 0.0)) {
        debugLog(fmt::format("[Nevo] compensateDrift skipped: canonicalToggleX={} (not yet set)",
                             describe(canonicalToggleX)));
        return;
    }
    auto frame = SectionManager::frame(*sectionManager.toggleItem);
    if (!frame) {
        debugLog("[Nevo] compensateDrift skipped: toggleItemFrame is nil");
        return;
    }
    auto window = toggleWindowID();
    if (!window) {
        debugLog("[Nevo] compensateDrift skipped: toggleWindowID is nil");
        return;
    }
    double drift = canonicalToggleX - frame->x;
    if (!(std::abs(drift) > toleratedDrift)) {
        debugLog(fmt::format(
            "[Nevo] compensateDrift: drift={}px ≤ 20, no move (current={} canonical={})",
            describe(drift), describe(frame->x), describe(canonicalToggleX)));
        return;
    }
    bool moved = platform.windows.moveWindow(*window, {canonicalToggleX, frame->y});
    debugLog(fmt::format("[Nevo] compensateDrift: drift={}px (current={} canonical={}), move {}",
                         describe(drift), describe(frame->x), describe(canonicalToggleX),
                         describe(moved)));
}

void StatusBarController::rescueTogglePosition() {
    if (sectionManager.isHiddenDividerCollapsed()) return;
    auto divider = SectionManager::frame(*sectionManager.hiddenDivider);
    auto toggle = SectionManager::frame(*sectionManager.toggleItem);
    auto window = toggleWindowID();
    if (!divider || !toggle || !window || !(toggle->x < divider->maxX())) return;
    double targetX = std::max(canonicalToggleX, divider->x + 2.0);
    bool ok = platform.windows.moveWindow(*window, {targetX, toggle->y});
    debugLog(fmt::format("[Nevo] RESCUE: toggle at x={} < divider right={}, move to x={} ok={}",
                         describe(toggle->x), describe(divider->maxX()), describe(targetX),
                         describe(ok)));
}

std::optional<WindowNumber> StatusBarController::toggleWindowID() const {
    StatusItemButton* button = sectionManager.toggleItem->button();
    auto number = button ? button->windowNumber() : std::nullopt;
    return number && *number >= 1 ? number : std::nullopt;
}

}  // namespace nevo
