#include <fmt/format.h>

#include "randomrun/EventKind.h"
#include "scenario/commandSupport.h"

namespace nevo {

namespace {

const char* shortWait(Stage& stage) {
    return stage.random.oneOf({"wait 0.05", "wait 0.2", "wait 0.4", "wait 3"});
}

Lines openShelf(Stage& stage) {
    bool isOpen = !stage.anyPicture("slot").empty();
    if (isOpen || !stage.isShelfInForce() || !stage.isToggleInReach()) return {};
    return {"click toggle", "wait 0.4"};
}

Lines clickSlot(Stage& stage) {
    std::string item = stage.anyPicture("slot");
    if (item.empty()) return {};
    return {"click slot " + item, shortWait(stage)};
}

/// Opens the shelf by the hot key, or closes it, and goes on with keys.
Lines useKeys(Stage& stage) {
    if (!stage.isShelfInForce() || !stage.isToggleInReach()) return {};
    Lines lines{"hot-key", "wait 0.4"};
    for (int i = 0; i < 4; ++i) {
        lines.push_back(std::string("key ") +
                        stage.random.oneOf({"left", "right", "up", "down", "home", "end"}));
    }
    lines.push_back(stage.random.oneOf({"key return", "key escape", "wait 61"}));
    lines.push_back(shortWait(stage));
    return lines;
}

/// From the closed shelf to an item that stands beside the toggle, and mostly to its end, which
/// comes after a minute.
Lines presentItem(Stage& stage) {
    std::string item = stage.anyItem();
    if (!stage.isShelfInForce() || !stage.isToggleInReach() || item.empty()) return {};
    return {"click toggle", "wait 0.4", "click slot " + item,
            fmt::format("wait {}", stage.random.oneOf({"0.1", "0.5", "5", "59.9", "61", "65"}))};
}

/// Something else happens to the shelf while an item is being brought out or taken back.
Lines interruptPresentation(Stage& stage) {
    std::string item = stage.anyPicture("slot");
    std::string other = stage.anyPicture("slot");
    if (item.empty()) return {};
    Lines lines{"click slot " + item,
                fmt::format("wait {}", stage.random.oneOf({"0.05", "0.19", "0.25", "0.6"})),
                stage.random.oneOf({"click toggle", "hot-key", "right-click toggle",
                                    "post nevoDisplayModeChanged"})};
    if (stage.random.chance(60)) lines.push_back(shortWait(stage));
    if (stage.random.chance(60)) lines.push_back("click slot " + other);
    return lines;
}

/// The program ends whose item was brought out.
Lines endPresentedProgram(Stage& stage) {
    std::string item = stage.anyPicture("slot");
    std::string program = stage.anyProgram(true);
    if (item.empty() || program.empty()) return {};
    return {"click slot " + item, fmt::format("wait {}", stage.random.oneOf({"0.1", "0.3", "3"})),
            "kill " + program, shortWait(stage)};
}

Lines openSlotMenu(Stage& stage) {
    std::string item = stage.anyPicture("slot");
    if (item.empty()) return {};
    if (stage.random.chance(30)) return {"click slot " + item + " control"};
    return {"right-click slot " + item};
}

/// Along the shelf, now and then out of it.
Lines dragSlot(Stage& stage) {
    std::string item = stage.anyPicture("slot");
    if (item.empty() || stage.desktop.events.state().leftDown) return {};
    std::string message;
    auto place = pictureOf(stage.run, "slot", stage.run.window(item, message));
    double goal = place->center().x + stage.random.between(-150, 150);
    std::string height =
        stage.random.chance(20) ? fmt::format(" {}", stage.random.between(0, 300)) : "";
    return {fmt::format("drag slot {} to {}{} bare", item, goal, height), shortWait(stage)};
}

Lines clickDecoy(Stage& stage) {
    std::string item = stage.anyPicture("decoy");
    if (item.empty()) return {};
    const char* form = stage.random.oneOf(
        {"click decoy {}", "click decoy {}", "click decoy {} command", "click decoy {} control",
         "right-click decoy {}", "middle-click decoy {}", "scroll decoy {} up"});
    return {fmt::format(fmt::runtime(form), item), shortWait(stage)};
}

/// The user wants other items in sight.
Lines markItems(Stage& stage) {
    std::string line = "set nevo decoyItems list";
    for (int count = stage.random.between(1, 4); count > 0; --count)
        line += fmt::format(" {}", stage.anyRuleId());
    return {line};
}

Lines answerPrompt(Stage& stage) {
    if (stage.desktop.controlWindows.named("screen-recording-prompt") == nullptr) return {};
    const char* button = stage.random.oneOf({"open_settings", "not_now", "restart"});
    bool isInFront =
        stage.desktop.controlWindows.front()->configuration.name == "screen-recording-prompt";
    Lines lines{isInFront && stage.random.chance(30)
                    ? std::string("close-front")
                    : std::string("press-button shelf.screen_recording_prompt.") + button};
    if (stage.random.chance(60)) lines.push_back("permission screen-recording granted");
    return lines;
}

/// The shelf can't show pictures: the next toggle says so.
Lines denyRecording(Stage& stage) {
    if (!stage.isShelfInForce() || !stage.isToggleInReach()) return {};
    return {"permission screen-recording denied", "click toggle", "wait 0.2"};
}

}  // namespace

std::vector<EventKind> shelfEvents() {
    constexpr auto either = EventKind::Menu::either;
    return {
        {"open shelf", 12, openShelf},
        {"click slot", 20, clickSlot},
        {"use keys", 4, useKeys},
        {"present item", 2, presentItem},
        {"interrupt presentation", 10, interruptPresentation},
        {"end presented program", 3, endPresentedProgram},
        {"slot menu", 16, openSlotMenu},
        {"drag slot", 16, dragSlot},
        {"click decoy", 8, clickDecoy},
        {"mark items", 6, markItems},
        {"answer prompt", 20, answerPrompt, either},
        {"deny recording", 1, denyRecording},
    };
}

}  // namespace nevo
