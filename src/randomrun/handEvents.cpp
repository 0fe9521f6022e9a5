#include <fmt/format.h>

#include "randomrun/EventKind.h"

namespace nevo {

namespace {

Lines clickToggle(Stage& stage) {
    if (!stage.isToggleInReach()) return {};
    return {"click toggle",
            fmt::format("wait {}", stage.random.oneOf({"0.05", "0.1", "0.2", "1"}))};
}

Lines doubleClickToggle(Stage& stage) {
    if (!stage.isToggleInReach()) return {};
    return {"click toggle", "wait 0.05", "click toggle"};
}

Lines optionClickToggle(Stage& stage) {
    if (!stage.isToggleInReach()) return {};
    return {"click toggle option"};
}

Lines openMenu(Stage& stage) {
    if (!stage.isToggleInReach()) return {};
    return {"right-click toggle"};
}

Lines clickItem(Stage& stage) {
    std::string item = stage.anyItemInReach();
    if (item.empty()) return {};
    return {(stage.random.chance(70) ? "click " : "right-click ") + item};
}

Lines clickBar(Stage& stage) { return {"click " + stage.placeOnBar()}; }

Lines clickElsewhere(Stage& stage) { return {"click " + stage.placeBelowBar()}; }

Lines restOnToggle(Stage& stage) {
    if (!stage.isToggleInReach()) return {};
    return {"pointer toggle", fmt::format("wait {}", stage.random.oneOf({"0.1", "0.4", "1"}))};
}

Lines restOnBar(Stage& stage) {
    return {"pointer " + stage.placeOnBar(),
            fmt::format("wait {}", stage.random.oneOf({"0.2", "0.6"}))};
}

Lines pointElsewhere(Stage& stage) { return {"pointer " + stage.placeBelowBar()}; }

/// A number that is somewhere on the bar, now and then beside it.
int dragGoal(Stage& stage) {
    int width = static_cast<int>(stage.mainWidth());
    return stage.random.chance(5) ? stage.random.between(-200, width + 200)
                                  : stage.random.between(width / 3, width - 100);
}

Lines dragItem(Stage& stage) {
    std::string item = stage.anyItemInReach();
    if (item.empty() || stage.desktop.events.state().leftDown) return {};
    return {fmt::format("drag {} to {}", item, dragGoal(stage)), "wait 0.3"};
}

Lines dragToggle(Stage& stage) {
    if (!stage.isToggleInReach() || stage.desktop.events.state().leftDown) return {};
    return {fmt::format("drag toggle to {}", dragGoal(stage)), "wait 0.3"};
}

/// One that ends when another event lets go, or never.
Lines beginDrag(Stage& stage) {
    std::string item = stage.anyBarItem();
    if (item.empty() || stage.desktop.events.state().leftDown) return {};
    return {"pointer " + item, "hold command", "press",
            fmt::format("pointer {} 12", dragGoal(stage)), "wait 0.2"};
}

Lines dragOn(Stage& stage) {
    if (!stage.desktop.events.state().leftDown) return {};
    return {fmt::format("pointer {} 12", dragGoal(stage)), "wait 0.1"};
}

Lines letGo(Stage& stage) {
    const SimPointer& pointer = stage.desktop.events.state();
    if (!pointer.leftDown && pointer.modifiers == 0) return {};
    Lines lines;
    if (pointer.leftDown) lines.push_back("release");
    if (pointer.modifiers != 0 && stage.random.chance(80)) lines.push_back("hold");
    return lines;
}

/// A Command-drag that is none of the bar's.
Lines dragElsewhere(Stage& stage) {
    if (stage.desktop.events.state().leftDown) return {};
    return {"pointer " + stage.placeBelowBar(), "hold command", "press",
            "pointer " + stage.placeBelowBar(), "release",      "hold"};
}

/// A hand that grabs something while Nevo moves an item itself.
Lines grabDuringMove(Stage& stage) {
    std::string item = stage.anyBarItem();
    if (!stage.isNevoRunning() || item.empty() || stage.desktop.events.state().leftDown) return {};
    const char* rule = stage.random.oneOf({"alwaysShow", "alwaysHide"});
    std::string grab = rule == std::string("alwaysShow") ? "0.3" : "0.5";
    std::string digit = std::to_string(stage.random.below(10));
    return {fmt::format("rule {} {}", stage.anyRuleId(), rule),
            "hold command",
            fmt::format("after {}{} press", grab, digit),
            fmt::format("after {}{}5 pointer {} 12", grab, digit, dragGoal(stage)),
            "after 0.9 release",
            "wait 1",
            "hold"};
}

}  // namespace

std::vector<EventKind> handEvents() {
    return {
        {"click", 12, clickToggle},
        {"double click", 2, doubleClickToggle},
        {"option click", 2, optionClickToggle},
        {"menu", 3, openMenu},
        {"click item", 3, clickItem},
        {"click bar", 4, clickBar},
        {"click elsewhere", 2, clickElsewhere},
        {"rest on toggle", 4, restOnToggle},
        {"rest on bar", 4, restOnBar},
        {"point elsewhere", 3, pointElsewhere, EventKind::Menu::either},
        {"drag item", 4, dragItem},
        {"drag toggle", 2, dragToggle},
        {"drag elsewhere", 1, dragElsewhere},
        {"begin drag", 2, beginDrag},
        {"drag on", 4, dragOn},
        {"let go", 10, letGo, EventKind::Menu::either},
        {"grab during move", 2, grabDuringMove},
    };
}

}  // namespace nevo
