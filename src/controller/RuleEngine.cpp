#include <fmt/format.h>

#include "controller/StatusBarController.h"
#include "controller/visibleZone.h"
#include "core/debugLog.h"
#include "core/describe.h"
#include "core/notificationNames.h"
#include "discovery/ItemIdentity.h"

namespace nevo {

namespace {

/// A rule that is set again within this time is the same change told twice.
constexpr double duplicateWindow = 2.0;
constexpr double alwaysShowSettle = 0.3;
constexpr double dividerOpenSettle = 0.5;
constexpr double collapseSettle = 0.1;
constexpr double snapshotSettle = 1.0;
/// Where an always-hidden item is dragged to: left of everything.
constexpr double hiddenTargetX = 50.0;

}  // namespace

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
    std::string key = id + ":" + raw;
    auto last = self->lastRuleChangeTime.find(key);
    double now = self->platform.runLoop.now();
    if (last != self->lastRuleChangeTime.end() && now - last->second < duplicateWindow) {
        debugLog(fmt::format("[Rules] skip duplicate {} for {}", raw, id));
        co_return;
    }
    self->lastRuleChangeTime[key] = now;
    self.reset();
    co_await handleRuleChange(owner, id, *rule);
}

Task<> StatusBarController::handleRuleChange(std::weak_ptr<StatusBarController> owner,
                                             std::string id, IconRule rule) {
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
        self = owner.lock();
        if (!self) co_return;
        self->updateSnapshot(items, false);
        item = self->findItem(id);
    }
    if (rule != IconRule::alwaysHide) {
        self->preferences.restoreAndLog(
            item ? item->bundleID : bundleIDFromPersistedID(id).value_or(""), id);
    }
    auto window = item ? std::optional(item->windowID) : self->findWindowByProcess(id);
    if (!window) {
        debugLog("[Rules] handleRuleChange: item not found even after rescan+PID fallback for " +
                 id);
        co_return;
    }
    debugLog(
        fmt::format("[Rules] handleRuleChange rule={} wid={} id={}", rawValue(rule), *window, id));
    self.reset();
    if (rule == IconRule::alwaysShow) {
        co_await applyAlwaysShow(owner, *window, id);
    } else if (rule == IconRule::alwaysHide) {
        co_await applyAlwaysHide(owner, *window, id);
    } else if (auto held = owner.lock()) {
        held->applyAutomatic(*window, id);
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

void StatusBarController::applyAutomatic(WindowNumber window, const std::string& persistedID) {
    alwaysShowProtectedWIDs.erase(window);
    // The rule of the program in front comes first, as long as it is there.
    bool isOverridden = isHiddenByAppRule(window);
    bool wasHidden = sectionManager.alphaHiddenWindows.erase(window) > 0;
    if (!isOverridden)
        wasHidden = sectionManager.passinglyTransparentWindows.erase(window) > 0 || wasHidden;
    if (sectionManager.isHiddenDividerCollapsed()) {
        hideByAlpha(window);
        debugLog(fmt::format("[Rules] auto (collapsed): keep hidden wid={}", window));
    } else if (wasHidden && !isOverridden) {
        services.mover.setWindowAlpha(window, 1.0);
        debugLog(fmt::format("[Rules] auto: restored wid={}", window));
    }
    updateAlwaysHiddenDivider();
    decoyController->handleRuleChange(persistedID, IconRule::automatic);
}

bool StatusBarController::hideByAlpha(WindowNumber window) {
    bool ok = services.mover.setWindowAlpha(window, 0.0);
    sectionManager.alphaHiddenWindows.insert(window);
    return ok;
}

/// The section may have been opened since, which forgets what is transparent.
void StatusBarController::hideAgain(WindowNumber window) {
    services.mover.setWindowAlpha(window, 0.0);
    if (!sectionManager.alphaHiddenWindows.contains(window))
        sectionManager.passinglyTransparentWindows.insert(window);
}

void StatusBarController::showByAlpha(WindowNumber window) {
    sectionManager.alphaHiddenWindows.erase(window);
    // The rule of the program in front comes first, as long as it is there.
    if (isHiddenByAppRule(window)) return;
    sectionManager.passinglyTransparentWindows.erase(window);
    services.mover.setWindowAlpha(window, 1.0);
}

Task<> StatusBarController::applyAlwaysShow(std::weak_ptr<StatusBarController> owner,
                                            WindowNumber window, std::string persistedID) {
    auto self = owner.lock();
    if (!self) co_return;
    self->showByAlpha(window);
    self->platform.windows.setSetsCursorInBackground(true);
    self.reset();
    co_await sleep(alwaysShowSettle);
    self = owner.lock();
    if (!self) co_return;
    if (auto target = self->alwaysShowTarget(window)) {
        ItemMover& mover = self->services.mover;
        self.reset();
        // Where it ended up is the monitor's business.
        co_await mover.moveItem(window, *target);
        self = owner.lock();
        if (!self) co_return;
    }
    self->alwaysShowProtectedWIDs.insert(window);
    self->decoyController->handleRuleChange(persistedID, IconRule::alwaysShow);
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

bool StatusBarController::stillHides(const std::string& id) const {
    IconRules rules = appState.rules.loadIconRules();
    auto stored = rules.find(id);
    return stored != rules.end() && stored->second == IconRule::alwaysHide;
}

Task<> StatusBarController::applyAlwaysHide(std::weak_ptr<StatusBarController> owner,
                                            WindowNumber window, std::string id) {
    auto self = owner.lock();
    if (!self) co_return;
    self->alwaysShowProtectedWIDs.erase(window);
    bool ok = self->hideByAlpha(window);
    self->decoyController->handleRuleChange(id, IconRule::alwaysHide);
    debugLog(fmt::format("[Rules] alwaysHide wid={} alpha=0 ok={}", window, describe(ok)));
    auto frame = self->services.mover.readableFrame(window);
    bool standsOnBar = frame && frame->x > 0;
    if (!standsOnBar) {
        self->services.mover.setWindowAlpha(window, 0.0);
        self->updateAlwaysHiddenDivider();
    }
    self.reset();
    if (standsOnBar) co_await moveBehindDivider(owner, id, window, frame->midY());

    co_await sleep(snapshotSettle);
    self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& scanner = self->services.scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    self.reset();
    ScannedBarItems items = co_await scanner.scanCached(own, 3.0);
    self = owner.lock();
    if (!self) co_return;
    self->updateSnapshot(items, false);
    if (self->stillHides(id)) self->hideAgain(window);
    self->decoyController->handleRuleChange(id, IconRule::alwaysHide);
}

Task<> StatusBarController::moveBehindDivider(std::weak_ptr<StatusBarController> owner,
                                              std::string id, WindowNumber window, double y) {
    auto self = owner.lock();
    if (!self) co_return;
    ItemMover& mover = self->services.mover;
    self->platform.windows.setSetsCursorInBackground(true);
    // The whole bar goes blank while the divider is open, so that nothing is seen to jump about.
    std::vector<WindowNumber> others = self->otherMenuBarWindows();
    for (WindowNumber other : others) {
        mover.setWindowAlpha(other, 0.0);
        self->sectionManager.blankedWindows.insert(other);
    }
    self->refreshToggleButton();
    self->sectionManager.setDividerLength(*self->sectionManager.hiddenDivider, false);
    if (StatusItemButton* button = self->sectionManager.toggleItem->button()) button->setAlpha(1.0);
    self.reset();
    co_await sleep(dividerOpenSettle);
    // The tear-down makes the bar opaque again.
    if (owner.expired()) co_return;
    Point target{hiddenTargetX, y};
    bool moved = co_await mover.moveItem(window, target);
    if (!moved) {
        co_await sleep(dividerOpenSettle);
        if (owner.expired()) co_return;
        moved = co_await mover.moveItem(window, target);
    }
    debugLog(fmt::format("[Rules] alwaysHide moveItem wid={} moved={}", window, describe(moved)));
    self = owner.lock();
    if (!self) co_return;
    self->performCollapse();
    self.reset();
    co_await sleep(collapseSettle);
    self = owner.lock();
    if (!self) co_return;
    for (WindowNumber other : others) {
        self->sectionManager.blankedWindows.erase(other);
        bool staysHidden = self->sectionManager.alphaHiddenWindows.contains(other) ||
                           self->isHiddenByAppRule(other);
        if (!staysHidden) mover.setWindowAlpha(other, 1.0);
    }
    if (self->stillHides(id)) self->hideAgain(window);
    self->updateAlwaysHiddenDivider();
}

std::vector<WindowNumber> StatusBarController::otherMenuBarWindows() const {
    auto own = sectionManager.ownWindowIDs();
    std::vector<WindowNumber> others;
    for (WindowNumber window : services.scanner.menuBarWindowIDs()) {
        if (!own.contains(window)) others.push_back(window);
    }
    return others;
}

void StatusBarController::updateAlwaysHiddenDivider() {
    IconRules rules = appState.rules.loadIconRules();
    ScannedBarItems all = snapshotItems({SectionName::hidden, SectionName::visible});
    std::vector<std::string> hideIDs;
    std::vector<std::string> otherIDs;
    for (const ScannedBarItem& item : all) {
        auto match = matchIconRule(item, rules, all);
        bool hides = match && match->second == IconRule::alwaysHide;
        (hides ? hideIDs : otherIDs).push_back(item.persistedID);
    }
    if (!otherIDs.empty()) preferences.restoreAll(otherIDs, all);
    if (hideIDs.empty()) {
        sectionManager.deactivateAlwaysHiddenDivider();
    } else {
        sectionManager.recreateAlwaysHiddenDivider(hideIDs, all);
    }
    debugLog(fmt::format("[Rules] updateAlwaysHiddenDivider: alwaysHide={}", hideIDs.size()));
}

}  // namespace nevo
