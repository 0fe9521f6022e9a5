#include <fmt/format.h>

#include <cmath>
#include <utility>

#include "controller/StatusBarController.h"
#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

namespace {
constexpr int lastAttempt = 29;
constexpr double pollInterval = 0.1;
constexpr double stableDistance = 1.0;
/// Programs that dock one after another keep the toggle moving; what is to be hidden mustn't wait
/// for the last of them.
constexpr int longEnough = 7;
}  // namespace

void StatusBarController::startFirstCollapse() {
    if (isFirstCollapseHeld) return;
    if (platform.accessibility.isProcessTrusted()) {
        waitForStableToggle(0);
    } else {
        debugLog("[Nevo] auto-hide skipped: Accessibility permission required");
    }
}

void StatusBarController::releaseFirstCollapse() {
    if (std::exchange(isFirstCollapseHeld, false)) startFirstCollapse();
}

void StatusBarController::waitForStableToggle(int attempt) {
    // The user's own toggle is the first.
    if (hasUserToggled) return;
    if (attempt > lastAttempt) {
        debugLog("[Nevo] Gave up waiting for stable position after 30 attempts");
        startOwnCollapse();
        return;
    }
    platform.runLoop.postAfter(pollInterval, [weak = weak_from_this(), attempt] {
        if (auto self = weak.lock()) self->pollStableToggle(attempt);
    });
}

void StatusBarController::pollStableToggle(int attempt) {
    if (hasUserToggled) return;
    if (auto frame = toggleButtonScreenFrame()) {
        bool usable = isPlausibleToggleFrame(*frame);
        debugLog(fmt::format("[Nevo] Attempt {}: toggleItem x={}, lastX={}, usable={}, frame={}",
                             attempt, describe(frame->x), describe(lastStableX), describe(usable),
                             describe(*frame)));
        if (usable && attempt == longEnough) startOwnCollapse();
        if (usable && std::abs(frame->x - lastStableX) < stableDistance) {
            savedItemFrame = *frame;
            recordCanonicalToggleX();
            startOwnCollapse();
            return;
        }
        lastStableX = usable ? frame->x : -1.0;
    }
    waitForStableToggle(attempt + 1);
}

}  // namespace nevo
