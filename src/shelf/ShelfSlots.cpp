#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "core/Texts.h"
#include "core/debugLog.h"
#include "core/describe.h"
#include "discovery/ItemIdentity.h"
#include "shelf/ShelfController.h"

namespace nevo {

namespace {

/// The rows of a slot's menu.
struct RuleOption {
    const char* key;
    IconRule rule;
};
constexpr std::array<RuleOption, 1> ruleOptions{{{"icon_rule.always_show", IconRule::alwaysShow}}};
/// The row below them.
constexpr const char* pictureInBar = "icon_rule.picture_in_bar";

/// The row's layout takes a moment when an item comes; the bar fades meanwhile.
constexpr double returnTime = 0.1;

}  // namespace

void ShelfController::bindBarCallbacks() {
    auto weak = weak_from_this();
    nevoBar->onItemClicked = [weak](const BarItem& item) {
        if (auto self = weak.lock()) self->onItemClicked(item);
    };
    nevoBar->onItemRightClicked = [weak](const BarItem& item, Point onScreen) {
        if (auto self = weak.lock()) self->onItemRightClicked(item, onScreen);
    };
    nevoBar->onCancelled = [weak] {
        if (auto self = weak.lock()) self->dismissShelf();
    };
    nevoBar->onItemsReordered = [weak](const std::vector<BarItem>& items) {
        if (auto self = weak.lock()) self->onItemsReordered(items);
    };
}

void ShelfController::onItemClicked(const BarItem& item) {
    ScannedBarItem record = recordOf(item);
    if (mover.readableFrame(record.windowID)) {
        presentSlot(record);
    } else {
        spawn(platform.runLoop, presentRenewed(weak_from_this(), record));
    }
}

/// The item of a slot whose window is gone may have come again, and nobody has told of it yet.
Task<> ShelfController::presentRenewed(std::weak_ptr<ShelfController> owner, ScannedBarItem item) {
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& itemScanner = self->scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    self.reset();
    co_await sleep(returnTime);
    ScannedBarItems items = co_await itemScanner.scanCached(own, 0.0);
    self = owner.lock();
    if (!self) co_return;
    if (!items.empty()) {
        self->sectionManager.lastExpandedSnapshot = self->sectionManager.classify(items);
        self->cachedItems = self->snapshotSection(SectionName::hidden);
    }
    const ScannedBarItem* again = findByPersistedID(items, item.persistedID);
    self->presentSlot(again != nullptr ? *again : item);
}

void ShelfController::presentSlot(const ScannedBarItem& item) {
    if (isIn(ShelfState::Kind::panelVisible)) {
        presentItem(item);
    } else {
        // Out of a bar that a rule of the front application has opened.
        bringOut(item);
    }
}

ScannedBarItem ShelfController::recordOf(const BarItem& item) const {
    auto cached =
        std::find_if(cachedItems.begin(), cachedItems.end(),
                     [&](const ScannedBarItem& each) { return each.windowID == item.windowID; });
    if (cached != cachedItems.end()) return *cached;
    ScannedBarItem record;
    record.bundleID = item.bundleID;
    record.ownerPID = item.ownerPID;
    record.label = item.label;
    record.persistedID = item.persistedID;
    record.centerX = item.centerX;
    record.width = item.width;
    record.icon = item.icon;
    record.windowID = item.windowID;
    return record;
}

std::vector<MenuItem> ShelfController::slotMenu(const BarItem& item) const {
    std::vector<MenuItem> rows;
    for (const RuleOption& option : ruleOptions) {
        MenuItem row;
        row.key = option.key;
        row.title = text(option.key);
        rows.push_back(row);
    }
    MenuItem picture;
    picture.key = pictureInBar;
    picture.title = text(pictureInBar);
    picture.isOn = appState.rules.decoyItems().contains(item.persistedID);
    // It would show nothing: the rule keeps the item out of sight.
    ScannedBarItem record = recordOf(item);
    auto match = matchIconRule(record, appState.rules.loadIconRules(), cachedItems);
    picture.isEnabled = !match || match->second != IconRule::alwaysHide;
    rows.push_back(picture);
    return rows;
}

void ShelfController::onItemRightClicked(const BarItem& item, Point onScreen) {
    Panel* panel = nevoBar->openPanel();
    if (!isIn(ShelfState::Kind::panelVisible) || panel == nullptr) return;
    Rect frame = panel->frame();
    auto closed = [weak = weak_from_this(), &runLoop = platform.runLoop,
                   item](std::optional<std::size_t> highlighted) {
        if (!highlighted) return;
        // The menu has to have finished closing.
        runLoop.post([weak, index = *highlighted, item] {
            if (auto self = weak.lock()) self->onSelect(index, item);
        });
    };
    Point place{onScreen.x - frame.x, onScreen.y - frame.y};
    platform.menus.popUp(slotMenu(item), place, *panel, closed);
}

void ShelfController::onSelect(std::size_t index, const BarItem& item) {
    if (index >= ruleOptions.size()) {
        bool isOne = !appState.rules.decoyItems().contains(item.persistedID);
        appState.rules.setDecoyItem(isOne, item.persistedID);
        debugLog(fmt::format("[Shelf] picture in the bar: {} for {}", describe(isOne),
                             item.persistedID));
        // So that it can be seen.
        dismissShelf();
        return;
    }
    const RuleOption& option = ruleOptions[index];
    debugLog(
        fmt::format("[Shelf] context menu applied: {} for {}", text(option.key), item.persistedID));
    IconRule current = appState.iconRule(item.persistedID);
    if (option.rule == current) appState.setIconRule(IconRule::automatic, item.persistedID);
    appState.setIconRule(option.rule, item.persistedID);
    dismissShelf();
    switch (option.rule) {
        case IconRule::automatic:
            debugLog("[Shelf] auto: clearing rule for " + item.persistedID);
            break;
        case IconRule::alwaysHide: {
            bool ok = sectionManager.opacity.setRule(item.windowID, true, false);
            debugLog(fmt::format("[Shelf] alwaysHide: alpha=0 wid={} ok={}", item.windowID,
                                 describe(ok)));
            break;
        }
        case IconRule::alwaysShow:
            sectionManager.opacity.remove(ItemOpacity::Reason::stray, item.windowID);
            sectionManager.opacity.setRule(item.windowID, false, true);
            break;
    }
}

void ShelfController::onItemsReordered(const std::vector<BarItem>& items) {
    std::vector<std::string> ids;
    for (const BarItem& item : items) ids.push_back(item.persistedID);
    appState.rules.saveShelfItemOrder(ids);
    debugLog(fmt::format("[Shelf] saved custom order count={}", ids.size()));
    // What has changed during the drag.
    renewSlots();
}

}  // namespace nevo
