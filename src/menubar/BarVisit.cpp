#include "menubar/Bar.h"

namespace nevo::menubar {

void Bar::onVisitMessage(BarItem& item, bool comes, int x, xcb_window_t lease) {
    if (!comes) {
        if (isVisiting(item) && visit->lease == lease) endVisit();
        return;
    }
    endVisit();
    const PixelRect& bar = windows.front()->rect();
    bool isInSight = item.floats || (item.slot.x + item.slot.width > bar.x &&
                                     item.slot.x < bar.x + bar.width && item.slot.width > 0);
    if (isInSight) return;
    visit = Visit{item.key, x, lease};
    // Above all that stands there already.
    item.frame->raise();
    needsLayout = true;
}

void Bar::endVisit() {
    if (!visit) return;
    visit.reset();
    needsLayout = true;
}

bool Bar::isVisiting(const BarItem& item) const { return visit && visit->item == item.key; }

}  // namespace nevo::menubar
