#include <fmt/format.h>

#include "controller/StatusBarController.h"
#include "controller/visibleZone.h"
#include "core/debugLog.h"
#include "core/describe.h"
#include "core/notificationNames.h"
#include "discovery/ItemIdentity.h"

namespace nevo {

namespace {
constexpr double alwaysShowSettle = 0.3;
}

void StatusBarController::observeRules() {
    auto weak = weak_from_this();
    notificationObservers.push_back(platform.notifications.addObserver(
        nevoIconRulesChanged, [weak](const Notification& notification) {
            if (auto self = weak.lock())
                spawn(self->platform.runLoop, filterRuleChange(weak, notification.userInfo));
        }));
}

Task<> StatusBarController::filterRuleChange(std::weak_ptr<StatusBarController> owner,
                                             UserInfo info) {
    auto self = owner.lock();
    if (!self || !info.contains("persistedID") || !info.contains("rule")) co_return;
    std::string id = info["persistedID"];
    std::string raw = info["rule"];
    auto rule = iconRuleFrom(raw);
    if (!rule) co_return;

    IconRules rules = self->appState.rules.loadIconRules();
    auto stored = rules.find(id);
    IconRule current = stored == rules.end() ? IconRule::automatic : stored->second;
    if (*rule != current) {
        debugLog(fmt::format("[Rules] skip stale notification {} for {}, current={}", raw, id,
                             rawValue(current)));
        co_return;
    }
    double now = self->platform.runLoop.now();
    if (self->ruleChanges.isDuplicate(id, *rule, now)) {
        debugLog(fmt::format("[Rules] skip duplicate {} for {}", raw, id));
        co_return;
    }
    self->ruleChanges.accept(id, *rule, now);
    if (!self->ruleChanges.begin(id)) co_return;
    RuleChange change;
    do {
        change = self->ruleChanges.newest(id);
        self.reset();
        co_await handleRuleChange(owner, change);
        self = owner.lock();
        if (!self) co_return;
    } while (!self->ruleChanges.isNewest(change));
    self->ruleChanges.end(id);
}

/// The controller, while the change is still to be carried out; nullptr otherwise.
std::shared_ptr<StatusBarController> StatusBarController::carryingOut(
    const std::weak_ptr<StatusBarController>& owner, const RuleChange& change) {
    auto self = owner.lock();
    return self && self->ruleChanges.isNewest(change) ? self : nullptr;
}

Task<> StatusBarController::handleRuleChange(std::weak_ptr<StatusBarController> owner,
                                             RuleChange change) {
    std::string id = change.persistedID;
    IconRule rule = change.rule;
    if (isPhantomID(id)) {
        debugLog("[Rules] handleRuleChange skip phantom/system id=" + id);
        co_return;
    }
    auto self = owner.lock();
    if (!self) co_return;
    auto item = self->findItem(id);
    if (!item) {
        debugLog(
            fmt::format("[Rules] handleRuleChange: not found in snapshot for {}, rescanning", id));
        MenuBarScanner& scanner = self->services.scanner;
        std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
        self.reset();
        ScannedBarItems items = co_await scanner.scanCached(own, 0.0);
        self = carryingOut(owner, change);
        if (!self) co_return;
        self->updateSnapshot(items, false);
        item = self->findItem(id);
    }
    if (rule != IconRule::alwaysHide) {
        auto place =
            rule == IconRule::automatic ? self->rulePlaces.position(id) : std::optional<double>();
        self->preferences.restoreAndLog(
            item ? item->bundleID : bundleIDFromPersistedID(id).value_or(""), id, place);
    }
    auto window = item ? std::optional(item->windowID) : self->findWindowByProcess(id);
    if (!window) {
        debugLog("[Rules] handleRuleChange: item not found even after rescan+PID fallback for " +
                 id);
        co_return;
    }
    debugLog(
        fmt::format("[Rules] handleRuleChange rule={} wid={} id={}", rawValue(rule), *window, id));
    if (rule != IconRule::automatic) self->rulePlaces.remember(*window, self->snapshotIDs());
    self.reset();
    if (rule == IconRule::alwaysShow) {
        co_await applyAlwaysShow(owner, change, *window);
    } else if (rule == IconRule::alwaysHide) {
        co_await applyAlwaysHide(owner, change, *window);
    } else {
        co_await applyAutomatic(owner, change, *window);
    }
}

std::optional<ScannedBarItem> StatusBarController::findItem(const std::string& persistedID) const {
    ScannedBarItems candidates =
        snapshotItems({SectionName::hidden, SectionName::visible, SectionName::alwaysHidden});
    if (auto* exact = findByPersistedID(candidates, persistedID)) return *exact;
    std::string bundle = lastPartOfID(persistedID);
    if (bundle.empty()) return std::nullopt;
    for (const ScannedBarItem& candidate : candidates) {
        if (candidate.bundleID != bundle) continue;
        debugLog("[Rules] findItem: exact miss, matched by bundleID=" + bundle);
        return candidate;
    }
    return std::nullopt;
}

std::optional<WindowNumber> StatusBarController::findWindowByProcess(
    const std::string& persistedID) const {
    std::string bundle = lastPartOfID(persistedID);
    auto windows = platform.windows.windowList(WindowListOption::onScreenOnly);
    if (bundle.empty() || !windows) return std::nullopt;
    auto own = sectionManager.ownWindowIDs();
    for (const WindowDescription& window : *windows) {
        if (!window.number || !window.ownerPid || window.layer != statusItemWindowLevel) continue;
        if (own.contains(*window.number)) continue;
        auto app = platform.workspace.runningApplication(*window.ownerPid);
        if (!app || app->bundleIdentifier != bundle) continue;
        debugLog(fmt::format("[Rules] findItem: PID fallback matched wid={} pid={} bundle={}",
                             *window.number, *window.ownerPid, bundle));
        return window.number;
    }
    return std::nullopt;
}

ScannedBarItems StatusBarController::snapshotItems(
    std::initializer_list<SectionName> sections) const {
    ScannedBarItems items;
    for (SectionName section : sections) {
        auto part = sectionManager.lastExpandedSnapshot.find(section);
        if (part == sectionManager.lastExpandedSnapshot.end()) continue;
        items.insert(items.end(), part->second.begin(), part->second.end());
    }
    return items;
}

std::map<WindowNumber, std::string> StatusBarController::snapshotIDs() const {
    std::map<WindowNumber, std::string> ids;
    for (const ScannedBarItem& item : snapshotItems({SectionName::hidden, SectionName::visible}))
        ids.emplace(item.windowID, item.persistedID);
    return ids;
}

Task<> StatusBarController::applyAutomatic(std::weak_ptr<StatusBarController> owner,
                                           RuleChange change, WindowNumber window) {
    std::string id = change.persistedID;
    auto self = owner.lock();
    if (!self) co_return;
    bool wasHidden = self->sectionManager.opacity.alphaHiddenWindows().contains(window);
    self->sectionManager.opacity.setRule(window, false, false);
    self.reset();
    co_await returnToPlace(owner, id, window);
    self = carryingOut(owner, change);
    if (!self) co_return;
    ItemOpacity& opacity = self->sectionManager.opacity;
    bool isCollapsed = self->sectionManager.isHiddenDividerCollapsed();
    if (isCollapsed && self->rulePlaces.isLeftOfToggle(window)) {
        opacity.add(ItemOpacity::Reason::stray, window);
        debugLog(fmt::format("[Rules] auto (collapsed): keep hidden wid={}", window));
    } else if (wasHidden) {
        opacity.remove(ItemOpacity::Reason::stray, window);
        debugLog(fmt::format("[Rules] auto: restored wid={}", window));
    }
    self.reset();
    co_await arrangeAlwaysHidden(owner);
}

/// Takes an item whose rule has ended back to where it stood before. The place stays remembered
/// until that has been possible: its program may not be there.
Task<> StatusBarController::returnToPlace(std::weak_ptr<StatusBarController> owner, std::string id,
                                          WindowNumber window) {
    auto self = owner.lock();
    if (!self) co_return;
    auto target = self->rulePlaces.target(window, self->snapshotIDs());
    if (!target) co_return;
    ItemMover& mover = self->services.mover;
    Point place = *target;
    self.reset();
    bool moved = co_await mover.reorderInPlace(window, place);
    self = owner.lock();
    if (self && moved) self->rulePlaces.forget(id);
}

void StatusBarController::showByRule(WindowNumber window) {
    sectionManager.opacity.remove(ItemOpacity::Reason::stray, window);
    sectionManager.opacity.setRule(window, false, true);
}

Task<> StatusBarController::applyAlwaysShow(std::weak_ptr<StatusBarController> owner,
                                            RuleChange change, WindowNumber window) {
    auto self = owner.lock();
    if (!self) co_return;
    self->showByRule(window);
    self->platform.windows.setSetsCursorInBackground(true);
    self.reset();
    co_await sleep(alwaysShowSettle);
    self = carryingOut(owner, change);
    if (!self) co_return;
    if (auto target = self->alwaysShowTarget(window)) {
        ItemMover& mover = self->services.mover;
        Point place = *target;
        self.reset();
        // Where it ended up is the monitor's business.
        co_await mover.moveItem(window, place);
        self = carryingOut(owner, change);
        if (!self) co_return;
    }
    self.reset();
    co_await arrangeAlwaysHidden(owner);
}

std::optional<Point> StatusBarController::alwaysShowTarget(WindowNumber window) {
    auto frame = services.mover.readableFrame(window);
    if (!frame) return std::nullopt;
    auto toggle = SectionManager::frame(*sectionManager.toggleItem);
    double nevoX = toggle ? toggle->x : 0.0;
    auto screens = platform.screens.screens();
    double screenWidth = screens.empty() ? widthWithoutScreen : screens.front().frame.width;
    bool onPrimary = !toggle || (toggle->x >= 0 && toggle->y >= 0 && toggle->x < screenWidth);
    if (!onPrimary) {
        // A drag across screens doesn't work; the window server's own move does.
        Point to{nevoX + besideToggle, frame->y};
        debugLog(fmt::format(
            "[Rules] alwaysShow: wid={} secondary screen SLSMoveWindow from={} to=({},{})", window,
            describe(frame->x), describe(to.x), describe(to.y)));
        debugLog("[Rules] alwaysShow: SLSMoveWindow ok=" +
                 describe(platform.windows.moveWindow(window, to)));
        return std::nullopt;
    }
    if (frame->x > nevoX && frame->x < screenWidth - rightMargin) {
        debugLog(fmt::format("[Rules] alwaysShow: wid={} already visible at x={}, skip move",
                             window, describe(frame->x)));
        return std::nullopt;
    }
    Point target{nevoX + besideToggle, frame->midY()};
    debugLog(fmt::format("[Rules] alwaysShow: wid={} from={} to={}", window, describe(frame->x),
                         describe(target)));
    return target;
}

}  // namespace nevo
