#include <fmt/format.h>

#include "scenario/commandSupport.h"

namespace nevo {

namespace {

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
    return text.empty() ? "nothing" : text;
}

const SimWindow& frameOf(ScenarioRun& run, WindowNumber window) {
    return *run.desktop().windows.find(window);
}

Step readOrder(LineReader& reader) {
    std::vector<std::string> expected = reader.rest("ITEM", 0);
    return [expected](ScenarioRun& run) {
        std::vector<std::string> actual;
        for (WindowNumber window : run.desktop().bar.order()) {
            actual.push_back(run.shortName(run.desktop().bar.find(window)->label));
        }
        return Outcome::compare("the order", joined(expected), joined(actual));
    };
}

using Test = std::function<bool(ScenarioRun&, WindowNumber)>;

/// An expectation that each of some items meets a test.
Step readEach(LineReader& reader, const std::string& what, const Test& test) {
    std::vector<std::string> names = reader.rest("ITEM", 1);
    return [names, what, test](ScenarioRun& run) {
        for (const std::string& name : names) {
            std::string problem;
            WindowNumber window = run.window(name, problem);
            if (window == 0) return Outcome::unreadable(problem);
            if (test(run, window)) continue;
            const SimWindow& held = frameOf(run, window);
            return Outcome::failed(fmt::format("{}: expected {}, actual x {} width {} alpha {}",
                                               name, what, held.frame.x, held.frame.width,
                                               held.alpha));
        }
        return Outcome{};
    };
}

bool isOnScreen(ScenarioRun& run, WindowNumber window) {
    return run.desktop().bar.isOnScreen(window);
}

bool isShown(ScenarioRun& run, WindowNumber window) {
    return isOnScreen(run, window) && frameOf(run, window).alpha > 0;
}

Step readAlpha(LineReader& reader) {
    std::string item = reader.word("ITEM");
    double expected = reader.number("ALPHA");
    return withWindow(item, [=](ScenarioRun& run, WindowNumber window) {
        return Outcome::compare("alpha of " + item, fmt::format("{}", static_cast<float>(expected)),
                                fmt::format("{}", frameOf(run, window).alpha));
    });
}

Step readMeasure(LineReader& reader, const std::string& what,
                 const std::function<double(const SimWindow&)>& measure) {
    std::string item = reader.word("ITEM");
    double expected = reader.number("POINTS");
    double tolerance = reader.take("within") ? reader.amount("TOLERANCE") : 0;
    return withWindow(item, [=](ScenarioRun& run, WindowNumber window) {
        double actual = measure(frameOf(run, window));
        if (std::abs(actual - expected) <= tolerance) return Outcome{};
        return Outcome::failed(
            fmt::format("{} of {}: expected {}, actual {}", what, item, expected, actual));
    });
}

Step readLeftOf(LineReader& reader) {
    std::string left = reader.word("ITEM");
    std::string right = reader.word("ITEM");
    return withWindow(left, [=](ScenarioRun& run, WindowNumber window) {
        std::string problem;
        WindowNumber other = run.window(right, problem);
        if (other == 0) return Outcome::unreadable(problem);
        double leftX = frameOf(run, window).frame.x;
        double rightX = frameOf(run, other).frame.x;
        if (leftX < rightX) return Outcome{};
        return Outcome::failed(
            fmt::format("expected {} left of {}, actual x {} and {}", left, right, leftX, rightX));
    });
}

Step readNothingHidden(LineReader&) {
    return [](ScenarioRun& run) {
        return Outcome::compare("hidden items", "nothing", joined(run.desktop().hiddenItems()));
    };
}

Step readRunning(LineReader& reader) {
    std::string handle = reader.word("APP");
    std::string expected = reader.choice("the answer", {"yes", "no"});
    return withProgram(handle, [=](ScenarioRun&, SimOtherProgram& program) {
        return Outcome::compare(handle + " running", expected, yesOrNo(program.running));
    });
}

Step readFront(LineReader& reader) {
    std::string handle = reader.word("APP");
    if (handle == "nevo") {
        return [](ScenarioRun& run) {
            bool front = run.desktop().workspace.activePid() == run.desktop().program.pid;
            return Outcome::compare("Nevo in front", "yes", yesOrNo(front));
        };
    }
    return withProgram(handle, [=](ScenarioRun& run, SimOtherProgram& program) {
        bool front = run.desktop().workspace.activePid() == program.application.pid;
        return Outcome::compare(handle + " in front", "yes", yesOrNo(front));
    });
}

Step readClicks(LineReader& reader) {
    std::string item = reader.word("ITEM");
    int expected = reader.whole("COUNT");
    std::string kind = reader.takeOneOf({"left", "right", "middle", "wheel"}).value_or("");
    return withWindow(item, [=](ScenarioRun& run, WindowNumber) {
        return Outcome::compare("clicks on " + item, std::to_string(expected),
                                std::to_string(run.desktop().events.clickCount(item, kind)));
    });
}

Step readPointerAt(LineReader& reader) {
    Point expected = readPlace(reader);
    return [expected](ScenarioRun& run) {
        Point actual = run.desktop().events.state().location;
        return Outcome::compare("the pointer", fmt::format("{} {}", expected.x, expected.y),
                                fmt::format("{} {}", actual.x, actual.y));
    };
}

Step readCursor(LineReader& reader) {
    std::string expected = reader.choice("the state", {"shown", "hidden"});
    return [expected](ScenarioRun& run) {
        bool hidden = run.desktop().events.state().hideCount > 0;
        return Outcome::compare("the cursor", expected, hidden ? "hidden" : "shown");
    };
}

Step readDefault(LineReader& reader) {
    std::string domain = reader.word("DOMAIN");
    std::string key = reader.word("KEY");
    std::string expected = reader.take("none") ? "none" : describe(readValue(reader));
    return [=](ScenarioRun& run) {
        auto value = run.desktop().defaults.read(domainNamed(run, domain), key);
        return Outcome::compare("\"" + key + "\" of " + domain, expected,
                                value ? describe(*value) : "none");
    };
}

}  // namespace

std::vector<Command> barExpectations() {
    return {
        {"expect order", "[ITEM]...",
         "These items, and no others, stand in the row from left to "
         "right, those pushed off or of width 0 too.",
         readOrder},
        {"expect left-of", "ITEM ITEM", "The first stands further left than the second.",
         readLeftOf},
        {"expect on-screen", "ITEM...", "Each stands on the main display, whatever its alpha.",
         [](LineReader& reader) { return readEach(reader, "on the screen", isOnScreen); }},
        {"expect pushed-off", "ITEM...", "Each stands outside the main display.",
         [](LineReader& reader) {
             return readEach(reader, "pushed off",
                             [](auto& run, auto window) { return !isOnScreen(run, window); });
         }},
        {"expect shown", "ITEM...", "Each can be seen: on the main display with alpha above 0.",
         [](LineReader& reader) { return readEach(reader, "shown", isShown); }},
        {"expect hidden", "ITEM...", "Each can't be seen: pushed off or with alpha 0.",
         [](LineReader& reader) {
             return readEach(reader, "hidden",
                             [](auto& run, auto window) { return !isShown(run, window); });
         }},
        {"expect floating", "ITEM...", "Each floats above the row, moved there directly.",
         [](LineReader& reader) {
             return readEach(reader, "floating", [](auto& run, auto window) {
                 const SimBar::Item* item = run.desktop().bar.find(window);
                 return item != nullptr && item->floating;
             });
         }},
        {"expect nothing-hidden", "",
         "No item of another program is pushed off, floating or transparent.", readNothingHidden},
        {"expect alpha", "ITEM ALPHA", "The window's alpha, 0 to 1.", readAlpha},
        {"expect x", "ITEM POINTS [within TOLERANCE]", "The left edge of the item's window.",
         [](LineReader& reader) {
             return readMeasure(reader, "x", [](const SimWindow& w) { return w.frame.x; });
         }},
        {"expect width", "ITEM POINTS [within TOLERANCE]", "The width of the item's window.",
         [](LineReader& reader) {
             return readMeasure(reader, "width", [](const SimWindow& w) { return w.frame.width; });
         }},
        {"expect default", "DOMAIN KEY none|(bool|int|number|string|bytes|list VALUE...)",
         "What is stored under a key.", readDefault},
        {"expect running", "APP yes|no", "Whether another program runs.", readRunning},
        {"expect front", "APP|nevo", "The program that was brought to the front last.", readFront},
        {"expect clicks", "ITEM COUNT [left|right|middle|wheel]",
         "How often another program's item was clicked.", readClicks},
        {"expect pointer", "X Y", "Where the pointer is.", readPointerAt},
        {"expect cursor", "shown|hidden", "Whether the cursor can be seen.", readCursor},
    };
}

}  // namespace nevo
