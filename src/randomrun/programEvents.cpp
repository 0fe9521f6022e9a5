#include <fmt/format.h>

#include "randomrun/EventKind.h"

namespace nevo {

namespace {

constexpr std::size_t mostPrograms = 10;
constexpr std::size_t mostItems = 16;

/// What a program can be: its bundle identifier and further words of `app`.
const std::vector<std::string> programKinds = {
    "com.example.mail",
    "com.example.music policy regular",
    "org.example.chat name Battery",
    "com.apple.controlcenter name \"Control Center\" no-icon",
    "com.apple.systemuiserver name SystemUIServer",
    "com.microsoft.OneDrive",
    "com.example.istat no-icon",
    "com.example.tool.helper name 42",
    "com.example.silent no-name no-icon",
    "com.example.background policy prohibited",
    "plain",
    "\"\" name nameless",
};

bool isCrowded(Stage& stage) {
    std::size_t count = 0;
    for (const SimOtherProgram& program : stage.desktop.applications.all())
        count += program.items.size();
    return count >= mostItems;
}

std::string itemLine(Stage& stage, const std::string& program) {
    static const std::vector<std::string> names = {
        "Item-0",   "Item-0", "Item-0", "Item-1", "Item-7", "Wi-Fi", "com.example.named",
        "Nevo_Like"};
    std::string line = fmt::format("item {} {} width {}", stage.newHandle("i"), program,
                                   stage.random.between(16, 60));
    if (stage.random.chance(60)) line += " name " + stage.random.oneOf(names);
    if (stage.random.chance(15))
        line += " title " + quoted(stage.random.oneOf({"Sound", "7", "x y"}));
    if (stage.random.chance(10)) line += " no-accessibility";
    if (stage.random.chance(4)) line += fmt::format(" layer {}", stage.random.oneOf({"0", "24"}));
    if (stage.random.chance(6)) line += " window-of " + stage.anyProgram(stage.random.chance(90));
    return line;
}

Lines newProgram(Stage& stage) {
    if (stage.desktop.applications.all().size() >= mostPrograms) return {};
    std::string handle = stage.newHandle("p");
    std::string options = stage.random.chance(5) ? " launching" : "";
    Lines lines{fmt::format("app {} {}{}", handle, stage.random.oneOf(programKinds), options)};
    for (int count = isCrowded(stage) ? 0 : stage.random.between(0, 2); count > 0; --count) {
        std::string line = itemLine(stage, handle);
        if (line.ends_with(" window-of ")) continue;
        lines.push_back(line);
    }
    return lines;
}

Lines newItem(Stage& stage) {
    std::string handle = stage.anyProgram(stage.random.chance(90));
    if (handle.empty() || isCrowded(stage)) return {};
    std::string line = itemLine(stage, handle);
    return line.ends_with(" window-of ") ? Lines{} : Lines{line};
}

Lines removeItem(Stage& stage) {
    std::string item = stage.anyItem();
    if (item.empty()) return {};
    return {"remove-item " + item};
}

Lines resizeItem(Stage& stage) {
    std::string item = stage.anyItem();
    if (item.empty()) return {};
    int width =
        stage.random.chance(5) ? stage.random.between(0, 700) : stage.random.between(10, 90);
    return {fmt::format("resize-item {} {}", item, width)};
}

/// Its accessibility name changes: the item goes and comes back with another one.
Lines retitleItem(Stage& stage) {
    std::string item = stage.anyItem();
    std::string program = stage.anyProgram(true);
    if (item.empty() || program.empty()) return {};
    return {"remove-item " + item, fmt::format("item {} {} title {}", stage.newHandle("i"), program,
                                               quoted(stage.random.oneOf({"Volume", "1234", ""})))};
}

Lines launch(Stage& stage) {
    std::string program = stage.anyProgram(false);
    if (program.empty()) return {};
    return {"launch " + program};
}

Lines kill(Stage& stage) {
    std::string program = stage.anyProgram(true);
    if (program.empty()) return {};
    return {"kill " + program};
}

Lines restart(Stage& stage) {
    std::string program = stage.anyProgram(true);
    if (program.empty()) return {};
    return {"kill " + program, fmt::format("wait {}", stage.random.oneOf({"0.01", "0.2", "3"})),
            "launch " + program};
}

/// It ends while Nevo is at work on what was asked for a moment ago.
Lines killDuringMove(Stage& stage) {
    std::string program = stage.anyProgram(true);
    if (program.empty() || !stage.isNevoRunning()) return {};
    const char* rule = stage.random.oneOf({"alwaysShow", "alwaysHide"});
    return {fmt::format("rule {} {}", stage.anyRuleId(), rule),
            fmt::format("after 0.{} kill {}", stage.random.between(30, 75), program), "wait 1"};
}

Lines hang(Stage& stage) {
    std::string program = stage.anyProgram(true);
    if (program.empty()) return {};
    return {"hang " + program + (stage.random.chance(50) ? " no-more" : "")};
}

Lines finishLaunching(Stage& stage) {
    std::string program = stage.anyProgram(true);
    if (program.empty()) return {};
    return {"finish-launching " + program};
}

Lines activate(Stage& stage) {
    std::string program = stage.anyProgram(true);
    if (program.empty()) return {};
    return {"activate " + program};
}

Lines openWindow(Stage& stage) {
    std::string program = stage.anyProgram(true);
    if (program.empty() || stage.run.plainWindows.size() >= 4) return {};
    std::string line = fmt::format("window {} {} {} {} 200", stage.newHandle("w"), program,
                                   stage.placeBelowBar(), stage.random.between(5, 600));
    if (stage.random.chance(30)) line += " layer 25";
    if (stage.random.chance(10)) line += " in-menu-bar-list";
    return {line};
}

Lines closeWindow(Stage& stage) {
    if (stage.run.plainWindows.empty()) return {};
    return {"close-window " + stage.run.plainWindows.begin()->first};
}

}  // namespace

Lines openingLines(Stage& stage) {
    Lines lines;
    // The first one is ordinary, so that there is always something to hide.
    std::string first = stage.newHandle("p");
    lines.push_back(fmt::format("app {} com.example.first", first));
    lines.push_back(fmt::format("item {} {}", stage.newHandle("i"), first));
    lines.push_back(fmt::format("item {} {} name Second", stage.newHandle("i"), first));
    // Of this one the items are told apart by their labels.
    std::string second = stage.newHandle("p");
    lines.push_back(fmt::format("app {} com.microsoft.OneDrive", second));
    lines.push_back(fmt::format("item {} {}", stage.newHandle("i"), second));
    for (int i = 0; i < 3; ++i) {
        for (std::string& line : newProgram(stage)) lines.push_back(std::move(line));
    }
    // Most users have been through the first run.
    if (stage.random.chance(10)) lines.push_back("unset nevo nevo_onboarding_completed");
    if (stage.random.chance(30)) lines.push_back("set nevo displayMode string shelf");
    lines.push_back("wait 1");
    return lines;
}

std::vector<EventKind> programEvents() {
    constexpr auto either = EventKind::Menu::either;
    return {
        {"new program", 1, newProgram, either},
        {"new item", 2, newItem, either},
        {"remove item", 2, removeItem, either},
        {"resize item", 3, resizeItem, either},
        {"retitle item", 1, retitleItem},
        {"launch", 6, launch, either},
        {"kill", 2, kill, either},
        {"restart", 2, restart},
        {"kill during move", 1, killDuringMove},
        {"hang", 1, hang, either},
        {"finish launching", 1, finishLaunching},
        {"activate", 4, activate, either},
        {"open window", 1, openWindow},
        {"close window", 1, closeWindow},
    };
}

}  // namespace nevo
