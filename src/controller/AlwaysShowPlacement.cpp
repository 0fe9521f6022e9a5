#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "controller/StatusBarController.h"
#include "controller/visibleZone.h"
#include "core/debugLog.h"
#include "core/describe.h"
#include "discovery/ItemIdentity.h"

namespace nevo {

namespace {

constexpr double itemPitch = 22.0;
constexpr double smallestToggleWidth = 44.0;
constexpr double toggleGap = 8.0;
constexpr double zoneMargin = 15.0;
/// What the system's own items take up at the right end, where none of them can be read.
constexpr double systemItemsWidth = 150.0;
constexpr double rightEdgeWithoutScreen = 1290.0;

int capacityOf(double width) {
    return std::max(1, static_cast<int>(std::trunc(width / itemPitch)));
}

}  // namespace

Task<> StatusBarController::moveAlwaysShowItems(std::weak_ptr<StatusBarController> owner) {
    auto self = owner.lock();
    if (!self) co_return;
    AlwaysShowPlan plan = self->planAlwaysShowPlacement();
    ItemMover& mover = self->services.mover;
    self.reset();
    for (std::size_t i = 0; i < plan.items.size(); ++i) {
        ScannedBarItem item = plan.items[i];
        // One whose frame doesn't read keeps its place free.
        Point target{plan.baseX + static_cast<double>(i) * itemPitch, 0};
        auto frame = mover.readableFrame(item.windowID);
        if (!frame) continue;
        target.y = frame->midY();
        bool ok = co_await mover.moveItem(item.windowID, target);
        self = owner.lock();
        if (!self) co_return;
        self.reset();
        debugLog(fmt::format("[Rules] moveAlwaysShowItems: wid={} label={} from={} to={} ok={}",
                             item.windowID, item.label, describe(frame->x), describe(target),
                             describe(ok)));
    }
}

StatusBarController::AlwaysShowPlan StatusBarController::planAlwaysShowPlacement() {
    ScannedBarItems all = snapshotItems({SectionName::hidden, SectionName::visible});
    IconRules rules = appState.rules.loadIconRules();
    ScannedBarItems eligible;
    for (const ScannedBarItem& item : all) {
        auto match = matchIconRule(item, rules, all);
        bool shows = match && match->second == IconRule::alwaysShow;
        if (shows && !isPhantomID(item.persistedID)) eligible.push_back(item);
    }
    if (eligible.empty()) {
        debugLog("[Rules] moveAlwaysShowItems: no eligible items");
        return {};
    }
    for (const ScannedBarItem& item : eligible) {
        preferences.restoreAndLog(item.bundleID, item.persistedID);
        showByRule(item.windowID);
    }
    // Where the toggle stands now: programs have come and gone since it was last noted.
    Rect toggle = SectionManager::frame(*sectionManager.toggleItem).value_or(savedItemFrame);
    SafeZone zone = alwaysShowSafeZone(all, toggle);
    double nevoX = toggle.minX();
    auto screen = platform.screens.mainScreen();
    double farRight = (screen ? screen->frame.width : widthWithoutScreen) - rightMargin;
    ScannedBarItems toMove;
    for (const ScannedBarItem& item : eligible) {
        auto frame = services.mover.readableFrame(item.windowID);
        if (!frame) continue;
        if (frame->x <= nevoX || frame->x >= farRight) toMove.push_back(item);
    }
    if (toMove.empty()) {
        debugLog(fmt::format("[Rules] moveAlwaysShowItems: all {} items already in safe zone, skip",
                             eligible.size()));
        return {};
    }
    std::size_t count = toMove.size();
    toMove.resize(std::min(count, static_cast<std::size_t>(zone.capacity)));
    debugLog(fmt::format("[Rules] moveAlwaysShowItems: moving {}/{} (cap={}) baseX={}",
                         toMove.size(), count, zone.capacity, describe(zone.baseX)));
    return {std::move(toMove), zone.baseX};
}

StatusBarController::SafeZone StatusBarController::alwaysShowSafeZone(const ScannedBarItems& all,
                                                                      const Rect& toggle) const {
    StatusItemButton* button = sectionManager.toggleItem->button();
    double nevoX = toggle.minX();
    double toggleWidth = std::max(toggle.width, button ? button->bounds().width : 0.0);
    double baseX = nevoX + std::max(toggleWidth, smallestToggleWidth) + toggleGap;
    auto screen = platform.screens.mainScreen();
    double screenWidth = screen ? screen->frame.width : widthWithoutScreen;

    std::optional<double> rightEdge;
    for (const ScannedBarItem& item : all) {
        if (item.bundleID != controlCenterBundleID) continue;
        auto frame = services.mover.readableFrame(item.windowID);
        if (frame && frame->x > nevoX) rightEdge = std::min(rightEdge.value_or(frame->x), frame->x);
    }
    if (!rightEdge) rightEdge = platform.statusBar.systemAreaLeft();
    if (!rightEdge) rightEdge = screen ? screenWidth - systemItemsWidth : rightEdgeWithoutScreen;
    if (*rightEdge - zoneMargin > baseX)
        return {baseX, capacityOf(*rightEdge - zoneMargin - baseX)};
    baseX = nevoX + besideToggle;
    debugLog("[Rules] moveAlwaysShowItems: no right safe zone, placing at nevoX+60=" +
             describe(baseX));
    return {baseX, capacityOf(screenWidth - baseX - rightMargin)};
}

}  // namespace nevo
