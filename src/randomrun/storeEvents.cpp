#include <fmt/format.h>

#include "randomrun/EventKind.h"

namespace nevo {

namespace {

Lines displayMode(Stage& stage) {
    Lines lines{fmt::format("set nevo displayMode string {}",
                            stage.random.oneOf({"push", "push", "shelf"}))};
    // Somebody who writes the file doesn't tell.
    if (stage.random.chance(85)) lines.push_back("post nevoDisplayModeChanged");
    return lines;
}

Lines setting(Stage& stage) {
    static const std::vector<std::string> settings = {
        "autoHideEnabled bool true",
        "autoHideEnabled bool false",
        "autoHideDelay number 0.5",
        "autoHideDelay int 4",
        "autoHideDelay number 30",
        "showOnHover bool true",
        "showOnHover bool false",
        "hoverDelay number 0.3",
        "hoverDelay number 2",
        "nevo_trigger_mode string click",
        "nevo_trigger_mode string clickBlank",
        "nevo_trigger_mode string hoverBlank",
        "animationsEnabled bool false",
        "animationsEnabled bool true",
        "toggleShortcut string ⌘⌥X",
        "toggleShortcut string ⌘⇧B",
        "hideSecondaryMenuBar bool true",
    };
    return {"set nevo " + stage.random.oneOf(settings)};
}

Lines icon(Stage& stage) {
    Lines lines{fmt::format("set nevo nevo_custom_icon_name string {}",
                            stage.random.oneOf({"brand:pocket", "wifi", "gearshape", "brand:no"}))};
    if (stage.random.chance(20)) lines = {"set nevo nevo_custom_icon_data bytes 89504e47"};
    lines.push_back("post nevoIconChanged");
    return lines;
}

Lines spacing(Stage& stage) {
    return {fmt::format("set nevo nevo_icon_spacing string {}",
                        stage.random.oneOf({"compact", "relaxed", "default"})),
            "post nevoSpacingChanged"};
}

Lines shelfLooks(Stage& stage) {
    return {fmt::format("set nevo nevo_shelf_bar_style string {}",
                        stage.random.oneOf({"classic", "capsule", "minimal", "none"})),
            "post nevoShelfAppearanceChanged"};
}

/// Somebody writes nonsense into Nevo's settings.
Lines brokenValue(Stage& stage) {
    const char* key = stage.random.oneOf(
        {"nevo_icon_rules", "nevo_app_rules", "displayMode", "autoHideDelay", "hoverDelay",
         "autoHideEnabled", "nevo_trigger_mode", "nevo_custom_icon_name", "nevo_custom_icon_data",
         "nevo_shelf_item_order", "decoyItems", "toggleShortcut", "nevo_onboarding_completed"});
    const char* value = stage.random.oneOf(
        {"bytes 00ff", "bytes 7b7d", "bytes 7b2261223a317d", "string \"\"", "string nonsense",
         "int -1", "number -3.5", "number 1e300", "int 30", "bool true", "list a b"});
    if (stage.random.chance(20)) return {fmt::format("unset nevo {}", key)};
    return {fmt::format("set nevo {} {}", key, value)};
}

/// Saved places of the others' items, as a program or a person may write them.
Lines savedPosition(Stage& stage) {
    std::string program = stage.anyProgram(stage.random.chance(50));
    if (program.empty()) return {};
    return {fmt::format("set {} \"NSStatusItem Preferred Position {}\" {}", program,
                        stage.random.oneOf({"Item-0", "Item-1", "Second"}),
                        stage.random.oneOf({"number 0", "number 60", "number 212", "number 7000",
                                            "int 400", "string far"}))};
}

/// The same of Nevo's own items.
Lines ownPosition(Stage& stage) {
    return {fmt::format("set nevo \"NSStatusItem Preferred Position {}\" {}",
                        stage.random.oneOf({"Nevo_Toggle", "Nevo_Separator"}),
                        stage.random.oneOf({"number 0", "number 90", "number 250", "string far"}))};
}

Lines openable(Stage& stage) {
    std::string program = stage.anyProgram(true);
    if (program.empty()) return {};
    return {fmt::format("domain {} {}", program, stage.random.oneOf({"openable", "unopenable"}))};
}

}  // namespace

std::vector<EventKind> storeEvents() {
    constexpr auto either = EventKind::Menu::either;
    return {
        {"display mode", 2, displayMode, either},
        {"setting", 5, setting, either},
        {"icon", 1, icon},
        {"spacing", 1, spacing},
        {"shelf looks", 1, shelfLooks},
        {"broken value", 1, brokenValue, either},
        {"saved position", 2, savedPosition},
        {"own position", 1, ownPosition},
        {"openable", 1, openable},
    };
}

}  // namespace nevo
