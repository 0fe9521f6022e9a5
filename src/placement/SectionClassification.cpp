#include <fmt/format.h>

#include <algorithm>

#include "core/debugLog.h"
#include "core/describe.h"
#include "core/screenOf.h"
#include "placement/SectionManager.h"

namespace nevo {

namespace {

constexpr double minUsableDividerWidth = 2.0;
/// A divider further left of the toggle than this isn't beside it: the toggle decides.
constexpr double maxDividerDistance = 200.0;

}  // namespace

SectionSnapshot SectionManager::classify(const ScannedBarItems& items) const {
    SectionSnapshot result{
        {SectionName::visible, {}}, {SectionName::hidden, {}}, {SectionName::alwaysHidden, {}}};
    auto split = chooseSplit();
    if (!split) {
        debugLog("[Classify] no reference frame, all visible");
        result[SectionName::visible] = items;
        return result;
    }
    for (const ScannedBarItem& item : scopedToScreen(items, split->scopingFrame)) {
        bool isHidden = item.centerX < split->x - boundaryTolerance ||
                        opacity.has(ItemOpacity::Reason::broughtOut, item.windowID);
        result[isHidden ? SectionName::hidden : SectionName::visible].push_back(item);
    }
    debugLog(fmt::format("[Classify] result: {} hidden, {} visible, splitX={}",
                         result[SectionName::hidden].size(), result[SectionName::visible].size(),
                         describe(split->x)));
    return result;
}

bool SectionManager::isBehindAlwaysHiddenDivider(double centerX) const {
    // It is gone for a moment while it is replaced.
    if (!alwaysHiddenDivider || !alwaysHiddenDivider->isVisible() ||
        !isCollapsed(*alwaysHiddenDivider))
        return false;
    auto divider = frame(*alwaysHiddenDivider);
    return divider && !divider->isEmpty() && centerX < divider->midX();
}

std::optional<SectionManager::Split> SectionManager::chooseSplit() const {
    auto dividerFrame = frame(*hiddenDivider);
    auto toggleFrame = frame(*toggleItem);
    bool collapsed = isCollapsed(*hiddenDivider);
    debugLog(fmt::format("[Classify] divider={} toggle={} collapsed={}", describe(dividerFrame),
                         describe(toggleFrame), describe(collapsed)));
    // The frame of a collapsed divider says nothing, while everything left of the toggle is hidden
    // then.
    bool usable = dividerFrame && dividerFrame->width > minUsableDividerWidth && !collapsed;
    if (usable && toggleFrame) {
        double midX = dividerFrame->midX();
        if (midX <= toggleFrame->x + boundaryTolerance &&
            toggleFrame->x - midX < maxDividerDistance) {
            debugLog("[Classify] using divider midX=" + describe(midX));
            return Split{midX, dividerFrame};
        }
    } else if (usable) {
        debugLog("[Classify] fallback to divider midX=" + describe(dividerFrame->midX()));
        return Split{dividerFrame->midX(), dividerFrame};
    }
    if (!toggleFrame) return std::nullopt;
    debugLog("[Classify] using toggle origin.x=" + describe(toggleFrame->x));
    return Split{toggleFrame->x, collapsed ? std::nullopt : toggleFrame};
}

ScannedBarItems SectionManager::scopedToScreen(const ScannedBarItems& items,
                                               const std::optional<Rect>& frame) const {
    auto screen = frame ? screenOf(platform.screens, *frame) : std::nullopt;
    if (!screen) return items;
    ScannedBarItems kept;
    auto isOn = [](const Screen& each, double x) {
        return x >= each.frame.minX() && x <= each.frame.maxX();
    };
    auto all = platform.screens.screens();
    for (const ScannedBarItem& item : items) {
        double x = item.centerX;
        // Off every screen an item is in this bar, which has no room for it.
        // Another screen may be there.
        bool isOff = x < screen->frame.minX() &&
                     (platform.windows.slotFrame(item.windowID) ||
                      std::none_of(all.begin(), all.end(),
                                   [&](const Screen& each) { return isOn(each, x); }));
        if (isOn(*screen, x) || isOff || isBehindAlwaysHiddenDivider(x)) kept.push_back(item);
    }
    if (kept.size() < items.size()) {
        debugLog(fmt::format("[Classify] scoped to screen={}, items={}/{}", describe(screen->frame),
                             kept.size(), items.size()));
    }
    return kept;
}

}  // namespace nevo
