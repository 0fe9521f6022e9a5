#include <fmt/format.h>

#include "entry/NevoApp.h"
#include "randomrun/EventKind.h"

namespace nevo {

namespace {

const char* anyRule(Stage& stage) {
    return stage.random.oneOf({"alwaysShow", "alwaysHide", "auto", "auto"});
}

Lines start(Stage& stage) {
    if (stage.isNevoRunning()) return {};
    stage.isCalm = stage.random.chance(50);
    Lines lines;
    if (stage.isCalm) {
        for (const std::string& operation : stage.faults) lines.push_back("mend " + operation);
        stage.faults.clear();
    }
    lines.push_back("start");
    lines.push_back(fmt::format("wait {}", stage.random.oneOf({"0.05", "1", "5"})));
    return lines;
}

Lines quit(Stage& stage) {
    if (!stage.isNevoRunning()) return {};
    return {"quit", "wait 1"};
}

Lines crash(Stage& stage) {
    if (!stage.isNevoRunning()) return {};
    return {"crash", "wait 1"};
}

Lines crashAndStart(Stage& stage) {
    if (!stage.isNevoRunning()) return {};
    return {"crash", "start"};
}

Lines setRule(Stage& stage) {
    if (!stage.isNevoRunning()) return {};
    return {fmt::format("rule {} {}", stage.anyRuleId(), anyRule(stage))};
}

/// Told twice, or taken back at once.
Lines hastyRule(Stage& stage) {
    if (!stage.isNevoRunning()) return {};
    std::string id = stage.anyRuleId();
    const char* rule = anyRule(stage);
    return {fmt::format("rule {} {}", id, rule), fmt::format("rule {} {}", id, anyRule(stage)),
            fmt::format("rule {} {}", id, rule)};
}

/// Taken back before Nevo has had its turn.
Lines staleRule(Stage& stage) {
    if (!stage.isNevoRunning()) return {};
    std::string id = stage.anyRuleId();
    return {fmt::format("after 0.1 rule {} alwaysShow", id),
            fmt::format("after 0.1 rule {} auto", id), "wait 0.2"};
}

/// Rules under names that a program's items had once.
Lines formerNames(Stage& stage) {
    if (!stage.isNevoRunning()) return {};
    std::string bundle = stage.random.chance(50) ? "com.microsoft.OneDrive" : stage.anyBundle();
    const char* rule = stage.random.oneOf({"alwaysShow", "alwaysHide", "auto"});
    return {fmt::format("rule {} {}", quoted("Former >>> " + bundle), rule),
            fmt::format("rule {} {}", quoted("Earlier >>> " + bundle), rule)};
}

Lines clearRules(Stage& stage) {
    auto* state = stage.run.state();
    if (state == nullptr) return {};
    Lines lines;
    for (const auto& [id, rule] : state->rules.loadIconRules()) {
        if (stage.random.chance(70)) lines.push_back(fmt::format("rule {} auto", quoted(id)));
    }
    return lines;
}

Lines setAppRule(Stage& stage) {
    if (!stage.isNevoRunning()) return {};
    std::string line = fmt::format("app-rule {} ", quoted(stage.anyBundle()));
    if (stage.random.chance(50)) return {line + "none"};
    bool shows = stage.random.chance(60);
    if (shows) line += "show " + stage.anyRuleId();
    if (!shows || stage.random.chance(50)) line += (shows ? " hide " : "hide ") + stage.anyRuleId();
    return {line};
}

/// A rule for a program that comes to the front and goes again.
Lines visitWithAppRule(Stage& stage) {
    std::string visited = stage.anyProgram(true);
    std::string next = stage.anyProgram(true);
    if (!stage.isNevoRunning() || visited.empty()) return {};
    std::string bundle = stage.desktop.applications.find(visited)->application.bundleIdentifier;
    return {fmt::format("app-rule {} show {} hide {}", quoted(bundle), stage.anyRuleId(),
                        stage.anyRuleId()),
            "activate " + visited, fmt::format("wait {}", stage.random.oneOf({"0.01", "0.5", "3"})),
            "activate " + next};
}

Lines hotKey(Stage& stage) {
    return {stage.random.chance(80) ? "hot-key" : "hot-key ⌘⌥X", "wait 0.15"};
}

Lines firstRun(Stage& stage) {
    OnboardingCoordinator* flow = stage.run.firstRun();
    if (flow == nullptr || !flow->openStep()) return {};
    return {stage.random.chance(40) ? "first-run ready" : "first-run finish"};
}

/// A hand in the settings window, which it opens first.
Lines operateSettings(Stage& stage) {
    const auto& windows = stage.desktop.controlWindows;
    if (windows.named("settings") == nullptr) {
        if (!stage.isToggleInReach() || stage.desktop.events.state().leftDown) return {};
        return {"right-click toggle", "choose menu_bar.context_menu.settings"};
    }
    Lines possible;
    auto offer = [&](const char* key, const std::string& line) {
        auto control = windows.control(key);
        if (control && control->isEnabled) possible.push_back(line);
    };
    const char* state = stage.random.oneOf({" on", " off"});
    for (const char* key : {"settings.general.launch_at_login", "settings.general.animations.label",
                            "settings.menu_bar.behavior.auto_hide"}) {
        offer(key, std::string("switch ") + key + state);
    }
    offer("settings.general.permissions.grant_button",
          "press-button settings.general.permissions.grant_button");
    offer("settings.rules.per_app.refresh_button",
          "press-button settings.rules.per_app.refresh_button");
    offer("settings.tabs", std::string("select settings.tabs ") +
                               stage.random.oneOf({"settings.tab.general", "settings.tab.menu_bar",
                                                   "settings.tab.rules"}));
    if (windows.front()->configuration.name == "settings") possible.push_back("close-front");
    return {stage.random.oneOf(possible), "wait 0.1"};
}

Lines choose(Stage& stage) {
    const auto* rows = stage.desktop.menus.openMenu();
    if (rows == nullptr) return {};
    std::vector<std::string> keys;
    for (const MenuItem& row : *rows) {
        if (!row.isSeparator() && row.isEnabled) keys.push_back(row.key);
    }
    if (keys.empty()) return {"dismiss-menu"};
    return {"choose " + quoted(stage.random.oneOf(keys))};
}

Lines dismiss(Stage&) { return {"dismiss-menu"}; }

}  // namespace

std::vector<EventKind> nevoEvents() {
    constexpr auto either = EventKind::Menu::either;
    constexpr auto open = EventKind::Menu::open;
    return {
        {"start", 60, start},
        {"quit", 1, quit, either},
        {"crash", 1, crash, either},
        {"crash and start", 1, crashAndStart},
        {"rule", 7, setRule, either},
        {"hasty rule", 1, hastyRule},
        {"stale rule", 1, staleRule},
        {"former names", 1, formerNames},
        {"clear rules", 2, clearRules},
        {"app rule", 3, setAppRule, either},
        {"visit with app rule", 2, visitWithAppRule},
        {"hot key", 5, hotKey, either},
        {"first run", 8, firstRun},
        {"settings", 5, operateSettings},
        {"choose", 30, choose, open},
        {"dismiss", 30, dismiss, open},
    };
}

}  // namespace nevo
