#include "randomrun/Invariants.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "core/notificationNames.h"
#include "discovery/ItemIdentity.h"
#include "entry/NevoApp.h"

namespace nevo {

namespace {

/// What was announced has come by then.
constexpr double settleTime = 1.0;

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
    auto observe = [this](const char* name, void (Invariants::*note)(const Notification&)) {
        return desktop.notifications.addObserver(
            name, [this, note](const Notification& told) { (this->*note)(told); });
    };
    ruleObserver = observe(nevoIconRulesChanged, &Invariants::noteRule);
    appRuleObserver = observe(nevoAppRulesChanged, &Invariants::noteAppRule);
}

void Invariants::noteRule(const Notification& told) {
    rulesWritten = true;
    auto id = told.userInfo.find("persistedID");
    auto raw = told.userInfo.find("rule");
    if (id == told.userInfo.end() || raw == told.userInfo.end()) return;
    expectedRules.erase(id->second);
    touchedRules.insert(id->second);
    // One that no item has is taken for any of its program.
    if (!seenIds().contains(id->second)) touchedRules.insert(lastPartOfID(id->second));
    for (const ScannedBarItem& item : seenItems()) {
        if (item.persistedID == id->second) touchedWindows.insert(item.windowID);
    }
    IconRule rule = iconRuleFrom(raw->second).value_or(IconRule::automatic);
    if (rule != IconRule::automatic) expectedRules[id->second] = rule;
}

void Invariants::noteAppRule(const Notification& told) {
    rulesWritten = true;
    auto bundle = told.userInfo.find("appBundleID");
    if (bundle == told.userInfo.end()) return;
    // What the rule says isn't told; those of other programs stay as they are.
    AppRules stored = store.loadAppRules();
    auto rule = stored.find(bundle->second);
    expectedAppRules.erase(bundle->second);
    if (rule != stored.end()) expectedAppRules.insert(*rule);
}

void Invariants::noteTrace(const std::string& line) {
    // What is done, and what Nevo says to it; the rest is the desktop's.
    bool isStored = has(line, "nevo_icon_rules") || has(line, "nevo_app_rules");
    rulesWritten = rulesWritten || isStored;
    placesChanged = placesChanged || has(line, "nevo_rule_places");
    noteHand(line);
    if (!has(line, "  >  ") && !has(line, "  log  ")) return;
    for (const char* outside : {"set nevo nevo_icon_rules", "set nevo nevo_app_rules"}) {
        if (has(line, outside)) rulesWrittenOutside = true;
    }
    if (has(line, "  >  ") && !has(line, "  >        wait")) decoysDifferSince.reset();
    if (has(line, "set nevo \"NSStatusItem Preferred Position")) ownPlacesWritten = true;
    // A rule that hides an item ends with a closed section, whatever it was before.
    if (has(line, "[Rules] alwaysHide moveItem")) mayBeClosedUnasked = true;
    // The end of a drag closes it too, even if it has been opened in the moment between.
    if (has(line, "[CmdDrag] reconciled and divider re-collapsed")) mayBeClosedUnasked = true;
    // Where nothing is left to hide, the section stays as a change of displays has opened it.
    if (has(line, "[Nevo] Screen configuration changed")) mayBeOpenUnasked = true;
    noteReason(line);
    noteShelf(line);
}

/// What hides single items until somebody shows them again, beside the rule "always hide".
void Invariants::noteReason(const std::string& line) {
    // Whatever is transparent when the displays change is left so; and so is an item when its rule
    // is taken back while it can't be found, for the second time within moments, or by others.
    for (const char* reason :
         {"[Nevo] Screen configuration changed", "[Rules] skip duplicate auto",
          "set nevo nevo_icon_rules", "[Rules] handleRuleChange: item not found even after"}) {
        if (has(line, reason)) noteTransparent();
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

void Invariants::noteTransparent() {
    for (WindowNumber window : desktop.bar.order()) {
        if (desktop.windows.find(window)->alpha < 1) hiddenWithReason.insert(window);
    }
}

std::optional<Broken> Invariants::afterLine() {
    noteStart();
    if (auto broken = checkClock()) return broken;
    if (auto broken = checkCursor()) return broken;
    if (auto broken = checkRow()) return broken;
    if (auto broken = checkRules()) return broken;
    if (auto broken = checkOrder()) return broken;
    return checkEnd();
}

void Invariants::noteStart() {
    bool running = desktop.application.isRunning();
    auto nevo = run.nevo();
    // In shelf mode any combination is repaired by the next toggle, and the mode can change at any
    // moment.
    if (nevo && isShelfMode(desktop.screens, nevo->delegate().state())) {
        mayBeClosedUnasked = mayBeOpenUnasked = true;
    } else {
        mayBarDiffer = true;
    }
    if (running == wasRunning) return;
    wasRunning = running;
    if (running) {
        leftoversDueAt.reset();
        mayBeClosedUnasked = mayBeOpenUnasked = ownPlacesWritten = false;
        hiddenWithReason.clear();
        shownForNow.clear();
        broughtOut.clear();
        bundlesOfSeveral.clear();
        if (!isAnythingTransparent())
            alphaFailuresAtStart = desktop.faults.struckCount(SimOperation::setWindowAlpha);
    } else if (!desktop.application.hasCrashed()) {
        leftoversDueAt = desktop.loop.now() + settleTime;
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
    noteBundles(order);
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

/// Which programs have several items, as the window server tells it: it may take another program
/// for the owner of one.
void Invariants::noteBundles(const std::vector<WindowNumber>& order) {
    std::set<std::string> seen;
    for (WindowNumber window : order) {
        const SimOtherProgram* owner =
            desktop.applications.runningWithPid(desktop.windows.find(window)->pid);
        if (owner == nullptr) continue;
        const std::string& bundle = owner->application.bundleIdentifier;
        if (!seen.insert(bundle).second) bundlesOfSeveral.insert(bundle);
    }
}

std::optional<Broken> Invariants::checkRules() {
    if (!std::exchange(rulesWritten, false)) return std::nullopt;
    IconRules stored = store.loadIconRules();
    AppRules ofPrograms = store.loadAppRules();
    if (std::exchange(rulesWrittenOutside, false)) {
        for (const auto& [id, rule] : expectedRules) touchedRules.insert(id);
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
    if (desktop.panels.count() > 0) return left("panels", desktop.panels.count());
    if (desktop.controlWindows.count() > 0) return left("windows", desktop.controlWindows.count());

    bool due = leftoversDueAt && desktop.loop.now() >= *leftoversDueAt && desktop.bar.hasSettled();
    if (!due) return std::nullopt;
    leftoversDueAt.reset();
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

}  // namespace nevo
