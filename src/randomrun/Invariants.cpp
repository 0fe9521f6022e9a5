#include "randomrun/Invariants.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "core/ItemId.h"
#include "core/notificationNames.h"
#include "entry/NevoApp.h"

namespace nevo {

namespace {

/// The bar has laid out by then, and what was announced has come.
constexpr double settleTime = 1.0;
/// What Nevo may hold at rest, whatever has happened to it: a little more than it needs.
constexpr std::size_t mostTimers = 6;
constexpr std::size_t mostMonitors = 10;
constexpr std::size_t mostObservers = 14;
/// The replay of rules waits for a first scan without end.
constexpr std::size_t mostTasks = 1;

constexpr const char* outerDivider = "always-hidden-divider";

bool has(const std::string& line, const char* part) { return line.find(part) != std::string::npos; }

/// From a log line that ends with the window's number.
WindowNumber windowOf(const std::string& line) {
    return static_cast<WindowNumber>(std::stoul(line.substr(line.rfind("wid=") + 4)));
}

}  // namespace

Invariants::Invariants(ScenarioRun& of)
    : run(of),
      desktop(of.desktop()),
      store(desktop.defaults.standard(), desktop.notifications, storeChanges) {
    ruleObserver =
        desktop.notifications.addObserver(nevoIconRulesChanged, [this](const Notification& told) {
            rulesWritten = true;
            auto id = told.userInfo.find("persistedID");
            auto raw = told.userInfo.find("rule");
            if (id == told.userInfo.end() || raw == told.userInfo.end()) return;
            expectedRules.erase(id->second);
            IconRule rule = iconRuleFrom(raw->second).value_or(IconRule::automatic);
            if (rule != IconRule::automatic) expectedRules[id->second] = rule;
        });
    appRuleObserver =
        desktop.notifications.addObserver(nevoAppRulesChanged, [this](const Notification& told) {
            rulesWritten = true;
            auto bundle = told.userInfo.find("appBundleID");
            if (bundle == told.userInfo.end()) return;
            // What the rule says isn't told; those of other programs stay as they are.
            AppRules stored = store.loadAppRules();
            auto rule = stored.find(bundle->second);
            expectedAppRules.erase(bundle->second);
            if (rule != stored.end()) expectedAppRules.insert(*rule);
        });
}

void Invariants::noteTrace(const std::string& line) {
    if (has(line, "nevo_icon_rules")) rulesWritten = true;
    if (has(line, "nevo_app_rules")) rulesWritten = true;
    for (const char* outside : {"set nevo nevo_icon_rules", "set nevo nevo_app_rules"}) {
        if (has(line, outside)) rulesWrittenOutside = true;
    }
    if (has(line, "set nevo \"NSStatusItem Preferred Position")) ownPlacesWritten = true;
    // A rule that hides an item ends with a closed section, whatever it was before.
    if (has(line, "[Rules] alwaysHide moveItem")) mayBeClosedUnasked = true;
    // The end of a drag closes it too, even if it has been opened in the moment between.
    if (has(line, "[CmdDrag] reconciled and divider re-collapsed")) mayBeClosedUnasked = true;
    // Where nothing is left to hide, the section stays as a change of displays has opened it.
    if (has(line, "[Nevo] Screen configuration changed")) mayBeOpenUnasked = true;
    noteReason(line);
}

/// What hides single items until somebody shows them again, beside the rule "always hide".
void Invariants::noteReason(const std::string& line) {
    // Whatever is transparent when the displays change is left so; and so is an item when its rule
    // is taken back while it can't be found, for the second time within moments, or by others.
    for (const char* reason :
         {"[Nevo] Screen configuration changed", "[Rules] skip duplicate auto",
          "set nevo nevo_icon_rules", "[Rules] handleRuleChange: item not found even after"}) {
        if (!has(line, reason)) continue;
        for (WindowNumber window : desktop.bar.order()) {
            if (desktop.windows.find(window)->alpha < 1) hiddenWithReason.insert(window);
        }
    }
    for (const char* reason : {"[CmdDrag] reconcile: hide wid=", "[ItemMonitor] alpha-hide wid=",
                               "[Rules] auto (collapsed): keep hidden wid=", "[AppRule] Hide "}) {
        if (!has(line, reason)) continue;
        hiddenWithReason.insert(windowOf(line));
    }
    // A rule of the program in front shows what was hidden, and hides it again when it goes.
    if (has(line, "[AppRule] Show alpha-hidden")) shownForNow.insert(windowOf(line));
    if (has(line, "[AppRule] Restoring overrides")) hiddenWithReason.merge(shownForNow);
}

std::optional<Broken> Invariants::afterLine() {
    noteStart();
    if (auto broken = checkClock()) return broken;
    if (auto broken = checkCursor()) return broken;
    if (auto broken = checkRow()) return broken;
    if (auto broken = checkRules()) return broken;
    return checkEnd();
}

void Invariants::noteStart() {
    bool running = desktop.application.isRunning();
    auto nevo = run.nevo();
    // In shelf mode any combination is repaired by the next toggle, and the mode can change at any
    // moment.
    if (nevo && isShelfMode(desktop.screens, nevo->delegate().state())) {
        mayBeClosedUnasked = mayBeOpenUnasked = true;
    }
    if (running == wasRunning) return;
    wasRunning = running;
    if (running) {
        quitAt.reset();
        mayBeClosedUnasked = mayBeOpenUnasked = ownPlacesWritten = false;
        hiddenWithReason.clear();
        shownForNow.clear();
        bundlesOfSeveral.clear();
        if (!isAnythingTransparent())
            alphaFailuresAtStart = desktop.faults.struckCount(SimOperation::setWindowAlpha);
    } else if (!desktop.application.hasCrashed()) {
        quitAt = desktop.loop.now();
    }
}

bool Invariants::isAnythingTransparent() const {
    std::vector<WindowNumber> order = desktop.bar.order();
    return std::any_of(order.begin(), order.end(), [&](WindowNumber window) {
        return desktop.windows.find(window)->alpha < 1;
    });
}

std::optional<Broken> Invariants::checkClock() {
    double now = desktop.loop.now();
    if (now < lastTime) return Broken{"clock", fmt::format("{} s came after {} s", now, lastTime)};
    lastTime = now;
    return std::nullopt;
}

std::optional<Broken> Invariants::checkCursor() const {
    // Moves block until they are over, so no line ever finds one under way.
    int hidden = desktop.events.state().hideCount;
    if (hidden == 0) return std::nullopt;
    return Broken{"cursor",
                  fmt::format("the cursor has been hidden {} times more than shown", hidden)};
}

std::optional<Broken> Invariants::checkRow() {
    std::vector<WindowNumber> order = desktop.bar.order();
    std::set<std::string> bundles;
    for (WindowNumber window : order) {
        const std::string& bundle = desktop.bar.find(window)->domain;
        if (!bundles.insert(bundle).second) bundlesOfSeveral.insert(bundle);
    }
    std::size_t expected = 0;
    for (const SimOtherProgram& program : desktop.applications.all()) {
        for (const SimItemPlan& plan : program.items) {
            auto count = std::count(order.begin(), order.end(), plan.window);
            if (count != (program.running ? 1 : 0)) {
                return Broken{"row", fmt::format("{} of {} stands {} times in the bar", plan.label,
                                                 program.handle, count)};
            }
            expected += program.running ? 1 : 0;
        }
    }
    auto own = std::count_if(order.begin(), order.end(),
                             [&](WindowNumber window) { return desktop.bar.find(window)->own; });
    if (order.size() == expected + static_cast<std::size_t>(own)) return std::nullopt;
    return Broken{"row", fmt::format("{} items stand in the bar instead of {} and {} own ones",
                                     order.size(), expected, own)};
}

std::optional<Broken> Invariants::checkRules() {
    if (!std::exchange(rulesWritten, false)) return std::nullopt;
    IconRules stored = store.loadIconRules();
    AppRules ofPrograms = store.loadAppRules();
    if (std::exchange(rulesWrittenOutside, false)) {
        expectedRules = stored;
        expectedAppRules = ofPrograms;
    }
    if (ofPrograms != expectedAppRules) {
        return Broken{"rules", fmt::format("{} rules of programs are stored instead of {}",
                                           ofPrograms.size(), expectedAppRules.size())};
    }
    if (stored == expectedRules) return std::nullopt;
    auto text = [](const IconRules& rules) {
        std::string result;
        for (const auto& [id, rule] : rules) result += fmt::format(" {}={}", id, rawValue(rule));
        return result;
    };
    return Broken{"rules", fmt::format("the rules set are{}, those stored are{}",
                                       text(expectedRules), text(stored))};
}

std::optional<Broken> Invariants::checkEnd() {
    if (desktop.application.isRunning() || run.isNested()) return std::nullopt;
    auto left = [](const char* what, std::size_t count) {
        return Broken{"left-over", fmt::format("{} {} are left after Nevo's end", count, what)};
    };
    if (observerCount() > 0) return left("observers", observerCount());
    if (desktop.events.monitorCount() > 0) return left("monitors", desktop.events.monitorCount());
    if (desktop.hotKeys.count() > 0) return left("hot keys", desktop.hotKeys.count());
    if (desktop.loop.programTimerCount() > 0)
        return left("timers", desktop.loop.programTimerCount());
    if (desktop.loop.tasks().liveCount() > 0)
        return left("tasks", desktop.loop.tasks().liveCount());
    if (desktop.statusBar.itemCount() > 0) return left("items", desktop.statusBar.itemCount());

    bool due = quitAt && desktop.loop.now() >= *quitAt + settleTime;
    if (!due) return std::nullopt;
    quitAt.reset();
    std::vector<std::string> stranded = strandedItems();
    if (stranded.empty()) return std::nullopt;
    return Broken{"still-hidden",
                  fmt::format("Nevo has quit and {} can't be seen", fmt::join(stranded, ", "))};
}

std::size_t Invariants::observerCount() const {
    constexpr std::size_t ours = 2;
    return desktop.notifications.observerCount() - ours +
           desktop.workspaceNotifications.observerCount();
}

/// Items that float count as seen: the bar takes them back when the lease of whoever moved them
/// ends.
std::vector<std::string> Invariants::strandedItems() const {
    std::vector<std::string> stranded;
    bool readable = !desktop.screens.displays().empty() && !desktop.bar.isDragging();
    if (!readable) return stranded;
    double room = desktop.screens.displays().front().frame.width - SimBar::systemAreaWidth;
    for (WindowNumber window : desktop.bar.order()) room -= desktop.bar.find(window)->length;
    // A window that refuses can't be made opaque by anybody.
    bool refused = desktop.faults.struckCount(SimOperation::setWindowAlpha) > alphaFailuresAtStart;
    for (WindowNumber window : desktop.bar.order()) {
        const SimBar::Item* item = desktop.bar.find(window);
        bool transparent = !refused && desktop.windows.find(window)->alpha < 1;
        bool stands = item->length > 0 && item->jitter == 0 && !item->floating;
        bool pushedOff = room >= 0 && stands && !desktop.bar.isOnScreen(window);
        if (transparent || pushedOff) stranded.push_back(item->label);
    }
    return stranded;
}

bool Invariants::isAtRest() const {
    auto nevo = run.nevo();
    return !nevo ||
           (nevo->delegate().itemMover().programmaticMoveCount() == 0 &&
            desktop.loop.tasks().liveCount() <= mostTasks && desktop.loop.programWorkCount() == 0);
}

std::optional<Broken> Invariants::atRest() {
    auto nevo = run.nevo();
    if (!nevo || nevo->delegate().controller() == nullptr) return std::nullopt;
    if (auto broken = checkState()) return broken;
    if (auto broken = checkToggle()) return broken;
    if (auto broken = checkTransparency()) return broken;
    if (auto broken = checkOpenSection()) return broken;
    return checkGrowth();
}

std::optional<Broken> Invariants::checkState() {
    auto nevo = run.nevo();
    bool expanded = nevo->delegate().state().isExpanded();
    double length = run.ownItem("divider")->length();
    if (length != 0 && length != 10000) {
        return Broken{"state", fmt::format("the divider's length is {}", length)};
    }
    bool closed = length > 0;
    bool shelf = isShelfMode(desktop.screens, nevo->delegate().state());
    if (shelf) return std::nullopt;
    if (expanded != closed) {
        mayBeClosedUnasked = mayBeOpenUnasked = false;
        return std::nullopt;
    }
    if (closed ? mayBeClosedUnasked : mayBeOpenUnasked) return std::nullopt;
    return Broken{"state", fmt::format("isExpanded is {} in push mode while the divider is {}",
                                       expanded, closed ? "closed" : "open")};
}

std::optional<Broken> Invariants::checkToggle() const {
    SimStatusItem* toggle = run.ownItem("toggle");
    const SimStatusItemButton& button = toggle->shownButton();
    if (desktop.statusBar.itemCount() != 3) {
        return Broken{"own-items", fmt::format("Nevo has {} items", desktop.statusBar.itemCount())};
    }
    if (!toggle->isVisible() || !button.isEnabled() || button.isHidden() || button.alpha() < 1) {
        return Broken{"toggle", "the toggle can't be seen or clicked"};
    }
    if (desktop.bar.isOnScreen(toggle->window()) || !mustBeInReach(toggle->window()))
        return std::nullopt;
    return Broken{"toggle", fmt::format("the toggle stands at {}, off the screen",
                                        desktop.windows.find(toggle->window())->frame.x)};
}

/// Somebody else's writing can put the toggle left of its own divider, and a crowd of wide items
/// can push it away. The always-hidden divider has a place of its own, which doesn't follow a
/// toggle that has been dragged far to the left. A bar that obeys moves of Nevo's own items takes
/// them anywhere.
bool Invariants::mustBeInReach(WindowNumber toggle) const {
    bool readable = !desktop.screens.displays().empty() && !desktop.bar.isDragging();
    if (!readable || ownPlacesWritten || desktop.bar.find(toggle)->floating) return false;
    double room = desktop.screens.displays().front().frame.width - SimBar::systemAreaWidth;
    std::vector<WindowNumber> order = desktop.bar.order();
    for (auto at = std::find(order.begin(), order.end(), toggle); at != order.end(); ++at) {
        const SimBar::Item* item = desktop.bar.find(*at);
        bool isOuter = item->own && item->length > 0 && run.shortName(item->label) == outerDivider;
        if (isOuter) return false;
        if (item->length < MenuBarRow::collapsedLength) room -= item->length;
    }
    return room >= 0;
}

std::optional<Broken> Invariants::checkTransparency() const {
    if (desktop.faults.struckCount(SimOperation::setWindowAlpha) > alphaFailuresAtStart)
        return std::nullopt;
    auto nevo = run.nevo();
    const SectionManager& sections = nevo->delegate().controller()->sections();
    for (WindowNumber window : desktop.bar.order()) {
        const SimBar::Item* item = desktop.bar.find(window);
        bool known = sections.alphaHiddenWindows.contains(window) ||
                     sections.passinglyTransparentWindows.contains(window);
        if (desktop.windows.find(window)->alpha >= 1 || known) continue;
        return Broken{"transparency",
                      fmt::format("{} is transparent and Nevo doesn't know it", item->label)};
    }
    return std::nullopt;
}

/// Where the section is open, an item is seen unless there is a reason.
std::optional<Broken> Invariants::checkOpenSection() {
    const AppState& state = run.nevo()->delegate().state();
    bool open = state.isExpanded() && run.ownItem("divider")->length() == 0;
    if (!open || isShelfMode(desktop.screens, state)) return std::nullopt;
    bool refused = desktop.faults.struckCount(SimOperation::setWindowAlpha) > alphaFailuresAtStart;
    for (WindowNumber window : desktop.bar.order()) {
        if (desktop.windows.find(window)->alpha >= 1) {
            hiddenWithReason.erase(window);
        } else if (!refused && !hiddenWithReason.contains(window) && !isRuledHidden(window)) {
            return Broken{"unexplained", fmt::format("{} is transparent for no reason",
                                                     desktop.bar.find(window)->label)};
        }
    }
    return std::nullopt;
}

/// Any rule for its program counts, since ids change with an item's names. Where a program has had
/// several items, a rule may have been taken back of another one than it was set for.
bool Invariants::isRuledHidden(WindowNumber window) const {
    const std::string& bundle = desktop.bar.find(window)->domain;
    const SimOtherProgram* owner =
        desktop.applications.runningWithPid(desktop.windows.find(window)->pid);
    // The window server may tell of another program.
    if (owner == nullptr || owner->application.bundleIdentifier != bundle) return true;
    if (bundlesOfSeveral.contains(bundle)) return true;
    return std::any_of(expectedRules.begin(), expectedRules.end(), [&](const auto& entry) {
        // An item without a program has an id that ends with the separator.
        bool fits = entry.first.ends_with(bundle) || entry.first.ends_with(persistedIDSeparator);
        return entry.second == IconRule::alwaysHide && fits;
    });
}

bool Invariants::beforeClick() {
    wasExpandedBeforeClick.reset();
    auto nevo = run.nevo();
    if (!nevo || nevo->delegate().controller() == nullptr || !isAtRest()) return false;
    const AppState& state = nevo->delegate().state();
    const SimPointer& hand = desktop.events.state();
    SimStatusItem* toggle = run.ownItem("toggle");
    bool asked = state.autoHideEnabled() || state.showOnHover() || state.triggerMode() != "click";
    bool able = desktop.permissions.accessibility && !isShelfMode(desktop.screens, state) &&
                !hand.leftDown && hand.modifiers == 0 && desktop.bar.isOnScreen(toggle->window()) &&
                desktop.bar.layoutDelay < 0.1;
    bool must = able && !asked && !desktop.faults.isAnyPending() &&
                (!state.isExpanded() || isSomethingToHide());
    if (must) wasExpandedBeforeClick = state.isExpanded();
    return must;
}

/// An ordinary item left of the toggle, which every scan takes.
bool Invariants::isSomethingToHide() const {
    double toggleX = desktop.windows.find(run.ownItem("toggle")->window())->frame.x;
    for (const SimOtherProgram& program : desktop.applications.all()) {
        for (const SimItemPlan& plan : program.items) {
            bool ordinary = program.running && plan.layer == statusItemWindowLevel &&
                            plan.windowOwner.empty() && plan.name == "Item-0" && plan.width >= 10 &&
                            plan.width <= 100;
            if (ordinary && desktop.windows.find(plan.window)->frame.maxX() <= toggleX) return true;
        }
    }
    return false;
}

std::optional<Broken> Invariants::afterClick() const {
    auto nevo = run.nevo();
    if (!nevo || !wasExpandedBeforeClick) return std::nullopt;
    bool expanded = nevo->delegate().state().isExpanded();
    bool closed = run.ownItem("divider")->length() > 0;
    if (expanded != *wasExpandedBeforeClick && closed != expanded) return std::nullopt;
    return Broken{"click", fmt::format("after a click the divider is {} and isExpanded {}, as it "
                                       "was before",
                                       closed ? "closed" : "open", expanded)};
}

std::optional<Broken> Invariants::checkGrowth() const {
    struct Bound {
        const char* what;
        std::size_t count;
        std::size_t most;
    };
    for (const Bound& bound : {Bound{"tasks", desktop.loop.tasks().liveCount(), mostTasks},
                               Bound{"timers", desktop.loop.programTimerCount(), mostTimers},
                               Bound{"monitors", desktop.events.monitorCount(), mostMonitors},
                               Bound{"observers", observerCount(), mostObservers},
                               Bound{"hot keys", desktop.hotKeys.count(), 1}}) {
        if (bound.count <= bound.most) continue;
        return Broken{"growth", fmt::format("Nevo has {} {} at rest", bound.count, bound.what)};
    }
    return std::nullopt;
}

}  // namespace nevo
