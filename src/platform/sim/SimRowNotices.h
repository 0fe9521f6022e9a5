#pragma once

#include <optional>
#include <vector>

#include "platform/NotificationCenter.h"
#include "platform/sim/SimApplication.h"
#include "platform/sim/SimBar.h"

namespace nevo {

/// Posts `screenParametersChangedNotification` when the bar's row has changed, as the real desktop
/// does: an item has come or gone, or stands elsewhere in the order. Once the row has been left in
/// peace for a moment, and soon even if it never is.
class SimRowNotices {
public:
    SimRowNotices(SimRunLoop& runLoop, const SimBar& row, const SimApplication& self,
                  NotificationCenter& center)
        : loop(runLoop), bar(row), application(self), notifications(center) {}

    /// The program starts: its own items' coming is no change.
    void restart();
    void rowChanged();

private:
    using Row = std::vector<WindowNumber>;
    void countFromNow();
    void announce();

    SimRunLoop& loop;
    const SimBar& bar;
    const SimApplication& application;
    NotificationCenter& notifications;
    /// Nothing until the program's own items have come.
    std::optional<Row> announced;
    std::optional<Row> seen;
    /// Counts the changes, and the announcements: for what was meant to happen after an earlier
    /// one.
    int changes = 0;
    int announcements = 0;
    bool isPending = false;
};

}  // namespace nevo
