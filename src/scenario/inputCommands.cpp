#include <fmt/format.h>

#include <map>

#include "scenario/commandSupport.h"

namespace nevo {

namespace {

/// Seconds between the steps of a drag by hand.
constexpr double dragStep = 0.1;
constexpr int dragSteps = 4;

/// An item or a picture of one in a panel, whose centre is meant, or a place.
struct Target {
    /// "slot" or "decoy"; empty for the item itself.
    std::string picture;
    std::string item;
    Point place;
};

Target readTarget(LineReader& reader) {
    Target target;
    if (reader.atNumber()) {
        target.place = readPlace(reader);
    } else {
        if (auto picture = reader.takeOneOf({"slot", "decoy"})) target.picture = *picture;
        target.item = reader.word("ITEM or X Y");
    }
    return target;
}

Step atTarget(const Target& target, std::function<void(ScenarioRun&, Point)> action) {
    if (target.item.empty()) {
        return [place = target.place, action = std::move(action)](ScenarioRun& run) {
            action(run, place);
            return Outcome{};
        };
    }
    if (!target.picture.empty()) {
        return withWindow(target.item, [target, action](ScenarioRun& run, WindowNumber window) {
            auto place = pictureOf(run, target.picture, window);
            if (!place)
                return Outcome::unreadable("no " + target.picture + " shows " + target.item);
            action(run, place->center());
            return Outcome{};
        });
    }
    return withWindow(target.item,
                      [action = std::move(action)](ScenarioRun& run, WindowNumber window) {
                          action(run, run.desktop().windows.find(window)->frame.center());
                          return Outcome{};
                      });
}

Step readPointer(LineReader& reader) {
    return atTarget(readTarget(reader),
                    [](ScenarioRun& run, Point place) { run.desktop().events.move(place); });
}

Step readClick(LineReader& reader, bool right) {
    Target target = readTarget(reader);
    ModifierFlags modifiers = readModifiers(reader);
    return atTarget(target, [right, modifiers](ScenarioRun& run, Point place) {
        SimEvents& hand = run.desktop().events;
        ModifierFlags held = hand.modifierFlags();
        if (hand.state().location != place) hand.move(place);
        hand.setModifiers(held | modifiers);
        hand.press(right);
        hand.release(right);
        // The keys are let go of when the program has had its turn with the click.
        run.desktop().loop.desktopAfter(0, [&hand, held] { hand.setModifiers(held); });
    });
}

Step readMiddleClick(LineReader& reader) {
    return atTarget(readTarget(reader), [](ScenarioRun& run, Point place) {
        run.desktop().events.move(place);
        run.desktop().events.clickMiddle();
    });
}

Step readScroll(LineReader& reader) {
    Target target = readTarget(reader);
    bool isUp = reader.choice("the way", {"up", "down"}) == "up";
    return atTarget(target, [isUp](ScenarioRun& run, Point place) {
        run.desktop().events.move(place);
        run.desktop().events.scroll({0, isUp ? 1.0 : -1.0});
    });
}

Step readPress(LineReader& reader, bool down) {
    bool right = reader.take("right");
    return [right, down](ScenarioRun& run) {
        SimEvents& hand = run.desktop().events;
        down ? hand.press(right) : hand.release(right);
        return Outcome{};
    };
}

Step readKey(LineReader& reader) {
    static const std::map<std::string, PanelKey> keys{
        {"left", PanelKey::left},    {"right", PanelKey::right}, {"up", PanelKey::up},
        {"down", PanelKey::down},    {"home", PanelKey::first},  {"end", PanelKey::last},
        {"return", PanelKey::press}, {"menu", PanelKey::menu},   {"escape", PanelKey::cancel}};
    std::vector<std::string> names;
    for (const auto& [name, key] : keys) names.push_back(name);
    PanelKey key = keys.at(reader.choice("the key", names));
    return [key](ScenarioRun& run) {
        run.desktop().loop.post([&panels = run.desktop().panels, key] {
            if (SimPanel* panel = panels.key()) panel->deliver(key);
        });
        return Outcome{};
    };
}

Step readDisableTap(LineReader& reader) {
    bool user = reader.choice("the reason", {"timeout", "user"}) == "user";
    return [user](ScenarioRun& run) {
        run.desktop().events.disableTaps(user ? EventType::tapDisabledByUserInput
                                              : EventType::tapDisabledByTimeout);
        return Outcome{};
    };
}

Step readHold(LineReader& reader) {
    ModifierFlags modifiers = readModifiers(reader);
    return [modifiers](ScenarioRun& run) {
        run.desktop().events.setModifiers(modifiers);
        return Outcome{};
    };
}

void dragByHand(ScenarioRun& run, Point from, Point to, ModifierFlags keys) {
    SimEvents& hand = run.desktop().events;
    SimRunLoop& loop = run.desktop().loop;
    ModifierFlags held = hand.modifierFlags();
    hand.move(from);
    hand.setModifiers(held | keys);
    hand.press(false);
    for (int step = 1; step <= dragSteps; ++step) {
        double part = static_cast<double>(step) / dragSteps;
        Point place{from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
        loop.desktopAfter(dragStep * step, [&hand, place] { hand.move(place); });
    }
    loop.desktopAfter(dragStep * (dragSteps + 1), [&hand, held] {
        hand.release(false);
        hand.setModifiers(held);
    });
    run.pass(dragStep * (dragSteps + 1));
}

Step readDrag(LineReader& reader) {
    Target from = readTarget(reader);
    if (!reader.take("to")) reader.fail("\"to\" is missing");
    double x = reader.number("X");
    std::optional<double> y;
    if (reader.atNumber()) y = reader.number("Y");
    ModifierFlags keys = reader.take("bare") ? 0 : commandModifier;
    return atTarget(from, [x, y, keys](ScenarioRun& run, Point place) {
        dragByHand(run, place, Point{x, y.value_or(place.y)}, keys);
    });
}

}  // namespace

std::vector<Command> inputCommands() {
    return {
        {"pointer", "[slot|decoy] ITEM|X Y",
         "Moves the pointer to an item's centre or a place; drags while the left button is down.",
         readPointer},
        {"click", "[slot|decoy] ITEM|X Y [command] [option] [shift] [control]",
         "A left click, keys held.", [](LineReader& reader) { return readClick(reader, false); }},
        {"right-click", "[slot|decoy] ITEM|X Y [command] [option] [shift] [control]",
         "A right click, keys held.", [](LineReader& reader) { return readClick(reader, true); }},
        {"middle-click", "[slot|decoy] ITEM|X Y", "A click with the middle button.",
         readMiddleClick},
        {"scroll", "[slot|decoy] ITEM|X Y up|down", "Turns the wheel by a notch.", readScroll},
        {"press", "[right]", "Presses a button where the pointer is.",
         [](LineReader& reader) { return readPress(reader, true); }},
        {"release", "[right]", "Lets go of a button.",
         [](LineReader& reader) { return readPress(reader, false); }},
        {"hold", "[command] [option] [shift] [control]",
         "Holds these keys from now on; none lets go of all.", readHold},
        {"key", "left|right|up|down|home|end|return|menu|escape",
         "Presses a key. The shelf gets it if it has taken the keys, else the window in use.",
         readKey},
        {"disable-tap", "timeout|user", "The system disables Nevo's event tap.", readDisableTap},
        {"drag", "[slot|decoy] ITEM|X Y to X [Y] [bare]",
         "A drag by hand with Command held, or without with bare, to a place: the button goes "
         "down, the pointer moves in four steps, the button comes up, 0.1 s each.",
         readDrag, true},
    };
}

}  // namespace nevo
