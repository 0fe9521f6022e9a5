#include "platform/sim/SimRowNotices.h"

namespace nevo {

namespace {
// Seconds, from the last change and from the first that hasn't been announced.
constexpr double settleTime = 0.25;
constexpr double longestWait = 0.5;
}  // namespace

void SimRowNotices::restart() {
    announced.reset();
    seen.reset();
    isPending = false;
    ++changes;
    ++announcements;
    countFromNow();
}

/// Once the program has made all the items that it is making.
void SimRowNotices::countFromNow() {
    loop.desktopAfter(0, [this] {
        if (!announced) announced = seen = bar.placedItems();
    });
}

void SimRowNotices::rowChanged() {
    if (!application.isRunning()) return;
    if (!announced) return countFromNow();
    auto row = bar.placedItems();
    if (!row || row == seen) return;
    seen = row;
    loop.desktopAfter(settleTime, [this, change = ++changes] {
        if (change == changes) announce();
    });
    if (std::exchange(isPending, true)) return;
    loop.desktopAfter(longestWait, [this, before = announcements] {
        if (before == announcements) announce();
    });
}

void SimRowNotices::announce() {
    isPending = false;
    ++announcements;
    ++changes;
    if (!application.isRunning() || seen == announced) return;
    announced = seen;
    loop.post([this] { notifications.post(screenParametersChangedNotification); });
}

}  // namespace nevo
