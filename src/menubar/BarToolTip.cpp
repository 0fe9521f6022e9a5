#include <algorithm>

#include "menubar/Bar.h"

namespace nevo::menubar {

using namespace std::chrono_literals;

namespace {
/// The pointer that only passes asks for nothing.
constexpr auto toolTipDelay = 600ms;
constexpr int gap = 2;
}  // namespace

/// The pointer has come over an item, or has left it.
void Bar::onFaceCrossing(const BarItem& item, bool enters) {
    endToolTip();
    if (!enters || drag) return;
    toolTipItem = item.key;
    toolTipDue = Clock::now() + toolTipDelay;
}

void Bar::endToolTip() {
    toolTipDue.reset();
    toolTipItem = 0;
    toolTip.hide();
}

void Bar::showToolTip() {
    toolTipDue.reset();
    const BarItem* item = items.withKey(toolTipItem);
    if (item == nullptr || item->notifier == nullptr || !isVisible(*item)) return;
    std::string line = item->notifier->properties().toolTip;
    if (line.empty()) line = item->title;
    if (line.empty()) return;
    const PixelRect& bar = windows.front()->rect();
    const PixelRect& frame = item->frame->rect();
    std::replace(line.begin(), line.end(), '\n', ' ');
    toolTip.show(line, bar.x + frame.x + frame.width / 2, bar.y + bar.height + gap, bar.x,
                 bar.x + bar.width, options.height);
}

}  // namespace nevo::menubar
