#include "scenario/commandSupport.h"
#include "surfaces/HotKeyService.h"

namespace nevo {

namespace {

Outcome notRunning() { return Outcome::unreadable("Nevo isn't running"); }

Step readStart(LineReader&) {
    return [](ScenarioRun& run) {
        if (run.startNevo()) return Outcome{};
        return Outcome::unreadable("Nevo is running already");
    };
}

Step readQuit(LineReader&) {
    return [](ScenarioRun& run) {
        if (!run.desktop().application.isRunning()) return notRunning();
        run.desktop().loop.post([&run] { run.desktop().application.terminate(); });
        return Outcome{};
    };
}

Step readCrash(LineReader&) {
    return [](ScenarioRun& run) {
        if (!run.desktop().application.isRunning()) return notRunning();
        run.desktop().application.die();
        return Outcome{};
    };
}

Step readToggle(LineReader&) {
    return [](ScenarioRun& run) { return run.toggle() ? Outcome{} : notRunning(); };
}

Step readFirstRun(LineReader& reader) {
    bool finish = reader.choice("what is done in it", {"ready", "finish"}) == "finish";
    return [finish](ScenarioRun& run) {
        OnboardingCoordinator* flow = run.firstRun();
        if (flow == nullptr) return notRunning();
        if (!flow->openStep()) return Outcome::unreadable("the first-run flow isn't open");
        finish ? flow->finish() : flow->notifyReady();
        return Outcome{};
    };
}

Step readRule(LineReader& reader) {
    std::string id = reader.word("ID");
    std::string raw = reader.choice("the rule", {"auto", "alwaysShow", "alwaysHide"});
    return [=](ScenarioRun& run) {
        AppState* state = run.state();
        if (state == nullptr) return notRunning();
        state->setIconRule(*iconRuleFrom(raw), id);
        return Outcome{};
    };
}

Step readAppRule(LineReader& reader) {
    std::string bundleID = reader.word("BUNDLE-ID");
    AppRule rule;
    auto verb = reader.choice("what it does", {"none", "show", "hide"});
    auto* ids = verb == "hide" ? &rule.hiddenIcons : &rule.visibleIcons;
    while (verb != "none" && !reader.atEnd() && reader.error().empty()) {
        if (auto other = reader.takeOneOf({"show", "hide"})) {
            ids = *other == "hide" ? &rule.hiddenIcons : &rule.visibleIcons;
        } else {
            ids->insert(reader.word("ID"));
        }
    }
    return [=](ScenarioRun& run) {
        AppState* state = run.state();
        if (state == nullptr) return notRunning();
        state->rules.setAppRule(rule, bundleID);
        return Outcome{};
    };
}

Step readHotKey(LineReader& reader) {
    std::string combination = reader.atEnd() ? "⌘⇧B" : reader.word("SHORTCUT");
    return [combination](ScenarioRun& run) {
        Shortcut shortcut = parseShortcut(combination);
        bool taken = run.desktop().hotKeys.press(shortcut.keyCode, shortcut.modifiers);
        run.desktop().trace.note("key", combination + (taken ? "" : " (nobody's)"));
        return Outcome{};
    };
}

Step readBundle(LineReader& reader) {
    std::string identifier = reader.word("BUNDLE-ID");
    return [identifier](ScenarioRun& run) {
        run.desktop().program.bundleIdentifier = identifier;
        run.desktop().defaults.setOwnDomain(identifier);
        return Outcome{};
    };
}

Step readPermission(LineReader& reader) {
    bool accessibility =
        reader.choice("the permission", {"accessibility", "screen-recording"}) == "accessibility";
    bool granted = reader.choice("the answer", {"granted", "denied"}) == "granted";
    return [=](ScenarioRun& run) {
        SimPermissions& permissions = run.desktop().permissions;
        (accessibility ? permissions.accessibility : permissions.screenRecording) = granted;
        return Outcome{};
    };
}

Step readPost(LineReader& reader, bool workspace) {
    std::string name = reader.word("NAME");
    UserInfo info;
    while (!reader.atEnd() && reader.error().empty()) {
        std::string key = reader.word("KEY");
        info[key] = reader.word("VALUE");
    }
    return [=](ScenarioRun& run) {
        SimDesktop& desktop = run.desktop();
        auto& centre = workspace ? desktop.workspaceNotifications : desktop.notifications;
        desktop.loop.post([&centre, name, info] { centre.post(name, info); });
        return Outcome{};
    };
}

Step readChoose(LineReader& reader) {
    std::string key = reader.word("KEY");
    return [key](ScenarioRun& run) {
        if (run.desktop().menus.choose(key)) return Outcome{};
        const auto* rows = run.desktop().menus.openMenu();
        if (rows == nullptr) return Outcome::unreadable("no menu is open");
        std::vector<std::string> keys;
        for (const MenuItem& row : *rows) {
            if (!row.isSeparator()) keys.push_back(row.key);
        }
        return Outcome::unreadable("the menu has no row \"" + key + "\"; it has " + listed(keys));
    };
}

Step readDismiss(LineReader&) {
    return [](ScenarioRun& run) {
        if (run.desktop().menus.openMenu() == nullptr) {
            return Outcome::unreadable("no menu is open");
        }
        run.desktop().menus.dismiss();
        return Outcome{};
    };
}

}  // namespace

std::vector<Command> nevoCommands() {
    return {
        {"start", "", "Starts Nevo.", readStart},
        {"quit", "", "Asks Nevo to quit, as its menu does.", readQuit},
        {"crash", "", "Ends Nevo's process without its quit sequence.", readCrash},
        {"toggle", "", "Does what the hot key does.", readToggle},
        {"first-run", "ready|finish",
         "Asks for a permission in the open first-run flow (ready), or ends the flow.",
         readFirstRun},
        {"rule", "ID auto|alwaysShow|alwaysHide",
         "Pins an item, as the settings do. ID is its name, \" >>> \" and its program's bundle "
         "identifier.",
         readRule},
        {"app-rule", "BUNDLE-ID none|[show ID...] [hide ID...]",
         "Sets what is shown and hidden while that program is in front, as the settings do.",
         readAppRule},
        {"hot-key", "[SHORTCUT]",
         "Presses a combination such as ⌘⌥X; ⌘⇧B if not given. Nevo hears it only if it has "
         "claimed it.",
         readHotKey},
        {"nevo-bundle", "BUNDLE-ID",
         "Nevo's own bundle identifier, \"\" for none, at its next start; com.nevoapp.Nevo if not "
         "given. Its stored values are in the domain of that name.",
         readBundle},
        {"permission", "accessibility|screen-recording granted|denied",
         "Grants or takes away what the user has to allow; both are granted from the start.",
         readPermission},
        {"post", "NAME [KEY VALUE]...", "Posts a notification on the default centre.",
         [](LineReader& reader) { return readPost(reader, false); }},
        {"post-workspace", "NAME [KEY VALUE]...",
         "Posts a notification on the workspace's centre, for example "
         "NSWorkspaceDidWakeNotification.",
         [](LineReader& reader) { return readPost(reader, true); }},
        {"choose", "KEY", "Chooses a row of the open menu, by the key of its title.", readChoose},
        {"dismiss-menu", "", "Closes the open menu without a choice.", readDismiss},
    };
}

}  // namespace nevo
