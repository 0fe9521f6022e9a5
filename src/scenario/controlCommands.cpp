#include <fmt/format.h>

#include <algorithm>

#include "core/ShelfAppearanceTheme.h"
#include "scenario/commandSupport.h"

namespace nevo {

namespace {

using Kind = Control::Kind;

/// A step that needs the control called `key`, which a person can see and operate.
Step withControl(const std::string& key,
                 std::function<Outcome(ScenarioRun&, const Control&)> action) {
    return [=](ScenarioRun& run) {
        auto found = run.desktop().controlWindows.control(key);
        if (found) return action(run, *found);
        return Outcome::unreadable("no window shows a control \"" + key + "\"; there are " +
                                   listed(run.desktop().controlWindows.keys()));
    };
}

/// One that isn't dimmed, of one of the kinds.
Step withWorking(const std::string& key, std::vector<Kind> kinds,
                 std::function<Outcome(const Control&)> action) {
    return withControl(key, [=](ScenarioRun&, const Control& control) {
        bool fits = std::find(kinds.begin(), kinds.end(), control.kind) != kinds.end();
        if (!fits) return Outcome::unreadable("\"" + key + "\" can't be operated that way");
        if (!control.isEnabled) return Outcome::unreadable("\"" + key + "\" is dimmed");
        return action(control);
    });
}

Step readReducedMotion(LineReader& reader) {
    bool reduced = reader.choice("the state", {"on", "off"}) == "on";
    return [reduced](ScenarioRun& run) {
        run.desktop().controlWindows.setReducedMotion(reduced);
        return Outcome{};
    };
}

Step readTransition(LineReader& reader) {
    std::string expected = reader.choice("the transition", {"none", "cross-fade", "move"});
    return [expected](ScenarioRun& run) {
        Transition last = run.desktop().controlWindows.lastTransition();
        const char* actual = last == Transition::none   ? "none"
                             : last == Transition::move ? "move"
                                                        : "cross-fade";
        return Outcome::compare("the transition", expected, actual);
    };
}

Step readPress(LineReader& reader) {
    std::string key = reader.word("KEY");
    return withWorking(key, {Kind::button, Kind::link, Kind::card, Kind::dropZone},
                       [=](const Control& control) {
                           if (!control.press) return Outcome::failed(key + " does nothing");
                           control.press();
                           return Outcome{};
                       });
}

Step readSwitch(LineReader& reader) {
    std::string key = reader.word("KEY");
    bool on = reader.choice("the state", {"on", "off"}) == "on";
    return withWorking(key, {Kind::toggle}, [=](const Control& control) {
        control.setOn(on);
        return Outcome{};
    });
}

Step readSelect(LineReader& reader) {
    std::string key = reader.word("KEY");
    std::string value = reader.word("VALUE");
    return withWorking(
        key, {Kind::picker, Kind::radioGroup, Kind::tabs}, [=](const Control& control) {
            std::vector<std::string> values;
            for (const auto& option : control.options) values.push_back(option.value);
            if (control.kind == Kind::tabs) {
                for (const Control& page : control.children) values.push_back(page.key);
            }
            if (std::find(values.begin(), values.end(), value) == values.end())
                return Outcome::unreadable("\"" + key + "\" offers " + listed(values));
            control.select(value);
            return Outcome{};
        });
}

Step readSlide(LineReader& reader) {
    std::string key = reader.word("KEY");
    double number = reader.number("NUMBER");
    return withWorking(key, {Kind::slider}, [=](const Control& control) {
        if (number < control.least || number > control.most) {
            return Outcome::unreadable(
                fmt::format("\"{}\" goes from {} to {}", key, control.least, control.most));
        }
        control.slide(number);
        return Outcome{};
    });
}

Step readPickColor(LineReader& reader) {
    std::string key = reader.word("KEY");
    std::string text = reader.word("COLOR");
    return withWorking(key, {Kind::colorWell}, [=](const Control& control) {
        auto color = colorFromHex(text);
        if (!color) return Outcome::unreadable("\"" + text + "\" is no colour such as #0A0D12");
        control.pickColor(*color);
        return Outcome{};
    });
}

Step readReorder(LineReader& reader) {
    std::string key = reader.word("KEY");
    std::vector<std::string> values = reader.rest("VALUE", 1);
    return withWorking(key, {Kind::orderList}, [=](const Control& control) {
        control.reorder(values);
        return Outcome{};
    });
}

Step readDropFile(LineReader& reader) {
    std::string key = reader.word("KEY");
    std::string path = reader.word("PATH");
    return withWorking(key, {Kind::dropZone}, [=](const Control& control) {
        control.takeFile(path);
        return Outcome{};
    });
}

Step readCloseWindow(LineReader&) {
    return [](ScenarioRun& run) {
        if (run.desktop().controlWindows.closeFront()) return Outcome{};
        return Outcome::unreadable("no window is open that has a close button");
    };
}

Step readWindow(LineReader& reader) {
    std::string name = reader.word("NAME");
    std::string expected = reader.choice("the state", {"shown", "closed"});
    return [=](ScenarioRun& run) {
        bool shown = run.desktop().controlWindows.named(name) != nullptr;
        return Outcome::compare("the window " + name, expected, shown ? "shown" : "closed");
    };
}

Step readControl(LineReader& reader) {
    std::string key = reader.word("KEY");
    std::string expected =
        reader.choice("the state", {"shown", "absent", "on", "off", "dimmed", "working"});
    return [=](ScenarioRun& run) {
        auto control = run.desktop().controlWindows.control(key);
        std::string actual = control ? "shown" : "absent";
        if (control && (expected == "on" || expected == "off"))
            actual = control->isOn ? "on" : "off";
        if (control && (expected == "dimmed" || expected == "working"))
            actual = control->isEnabled ? "working" : "dimmed";
        return Outcome::compare(key, expected, actual);
    };
}

/// What a person reads in it: the chosen value, the number, the order or the text.
std::string valueOf(const Control& control) {
    switch (control.kind) {
        case Kind::picker:
        case Kind::radioGroup:
        case Kind::tabs:
            return control.selected;
        case Kind::slider:
            return control.numberText;
        case Kind::colorWell:
            return hexFromColor(control.color);
        case Kind::orderList: {
            std::string values;
            for (const auto& option : control.options)
                values += (values.empty() ? "" : ", ") + option.value;
            return values;
        }
        default:
            return control.detail.empty() ? control.title : control.title + " / " + control.detail;
    }
}

Step readShown(LineReader& reader) {
    std::string key = reader.word("KEY");
    std::string expected = reader.word("VALUE");
    return withControl(key, [=](ScenarioRun&, const Control& control) {
        return Outcome::compare("the value of " + key, expected, valueOf(control));
    });
}

}  // namespace

std::vector<Command> controlCommands() {
    return {
        {"press-button", "KEY", "Presses a button, a card or a drop zone of an open window.",
         readPress},
        {"switch", "KEY on|off", "Switches a toggle of an open window.", readSwitch},
        {"select", "KEY VALUE", "Chooses in a picker or a radio group, or a tab by its key.",
         readSelect},
        {"slide", "KEY NUMBER", "Moves a slider.", readSlide},
        {"pick-color", "KEY COLOR", "Picks a colour such as #0A0D12.", readPickColor},
        {"reorder", "KEY VALUE...", "Drags the rows of a list into this order.", readReorder},
        {"drop-file", "KEY PATH", "Drops a file on a drop zone.", readDropFile},
        {"close-front", "", "Closes the window in front by its own button.", readCloseWindow},
        {"reduced-motion", "on|off", "The user wants less motion in windows, or as much as usual.",
         readReducedMotion},
        {"expect transition", "none|cross-fade|move",
         "How a window's content came last, when it didn't simply stand there.", readTransition},
        {"expect window", "NAME shown|closed",
         "Whether a window is open: settings, first-run, screen-recording-prompt.", readWindow},
        {"expect control", "KEY shown|absent|on|off|dimmed|working",
         "Whether a control can be seen, is on, or can be operated.", readControl},
        {"expect value", "KEY VALUE",
         "What a control shows: the chosen value, a slider's number, a list's order, a text.",
         readShown},
    };
}

}  // namespace nevo
