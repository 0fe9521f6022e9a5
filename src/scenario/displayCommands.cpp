#include "scenario/commandSupport.h"

namespace nevo {

namespace {

std::uint32_t readDisplayId(LineReader& reader) {
    int id = reader.whole("ID");
    if (id < 1) reader.fail("ID must be 1 or more");
    return static_cast<std::uint32_t>(std::max(id, 1));
}

Step readDisplay(LineReader& reader) {
    SimDisplay display;
    display.id = readDisplayId(reader);
    Point origin = readPlace(reader);
    double width = reader.amount("WIDTH");
    double height = reader.amount("HEIGHT");
    display.frame = {origin.x, origin.y, width, height};
    while (auto option = reader.takeOneOf({"scale", "notch"})) {
        (*option == "scale" ? display.scale : display.notchInset) = reader.amount(*option);
    }
    return [display](ScenarioRun& run) {
        run.desktop().putDisplay(display);
        return Outcome{};
    };
}

Step readRemoveDisplay(LineReader& reader) {
    std::uint32_t id = readDisplayId(reader);
    return [id](ScenarioRun& run) {
        if (run.desktop().removeDisplay(id)) return Outcome{};
        return Outcome::unreadable("there is no display " + std::to_string(id));
    };
}

Step readBarHeight(LineReader& reader) {
    double height = reader.amount("POINTS");
    return [height](ScenarioRun& run) {
        run.desktop().screens.setBarHeight(height);
        run.desktop().bar.layOutLater();
        return Outcome{};
    };
}

Step readLayoutDelay(LineReader& reader) {
    double delay = reader.amount("SECONDS");
    return [delay](ScenarioRun& run) {
        run.desktop().bar.layoutDelay = delay;
        return Outcome{};
    };
}

Step readJitter(LineReader& reader) {
    std::string item = reader.word("ITEM");
    double points = reader.number("POINTS");
    double seconds = reader.amount("SECONDS");
    return withWindow(item, [=](ScenarioRun& run, WindowNumber window) {
        run.desktop().bar.jitter(window, points, seconds);
        return Outcome{};
    });
}

Step readOwnMoves(LineReader& reader) {
    bool allowed = reader.choice("the answer", {"allowed", "refused"}) == "allowed";
    return [allowed](ScenarioRun& run) {
        run.desktop().windowServer.ownMovesAllowed = allowed;
        return Outcome{};
    };
}

Step readFault(LineReader& reader) {
    std::string name = reader.choice("OPERATION", SimFaults::names());
    std::string item;
    if (reader.take("on")) item = reader.word("ITEM");
    std::optional<int> times = 1;
    if (reader.take("always")) {
        times.reset();
    } else if (reader.take("times")) {
        times = reader.whole("COUNT");
        if (*times < 1) reader.fail("COUNT must be 1 or more");
    } else if (!reader.atEnd() && !reader.take("once")) {
        reader.fail("how often must be once, times COUNT or always");
    }
    SimOperation operation = SimFaults::operation(name).value_or(SimOperation::windowCount);
    if (item.empty()) {
        return [operation, times](ScenarioRun& run) {
            run.desktop().faults.add(operation, std::nullopt, times);
            return Outcome{};
        };
    }
    return withWindow(item, [operation, times](ScenarioRun& run, WindowNumber window) {
        run.desktop().faults.add(operation, window, times);
        return Outcome{};
    });
}

Step readMend(LineReader& reader) {
    std::string name = reader.choice("OPERATION", SimFaults::names());
    SimOperation operation = SimFaults::operation(name).value_or(SimOperation::windowCount);
    return [operation](ScenarioRun& run) {
        run.desktop().faults.clear(operation);
        return Outcome{};
    };
}

}  // namespace

std::vector<Command> displayCommands() {
    return {
        {"display", "ID X Y WIDTH HEIGHT [scale FACTOR] [notch POINTS]",
         "Adds a display, or changes the one with that ID; the program is told. X and Y are its "
         "top "
         "left corner. Display 1, 1440 by 900 with scale 2, is there from the start and is the "
         "main "
         "one.",
         readDisplay},
        {"remove-display", "ID",
         "Unplugs a display; the program is told. When the main one goes, the next one becomes it.",
         readRemoveDisplay},
        {"bar-height", "POINTS", "The height of the menu bar; 24 from the start.", readBarHeight},
        {"layout-delay", "SECONDS",
         "How long the bar takes to lay out after a change; 0.02 from the start.", readLayoutDelay},
        {"jitter", "ITEM POINTS SECONDS",
         "The bar can't make up its mind: each 0.1 s ITEM stands at another place, up to POINTS to "
         "the right, for SECONDS.",
         readJitter},
        {"own-moves", "allowed|refused",
         "Whether the bar obeys direct moves of Nevo's own items; refused from the start.",
         readOwnMoves},
        {"fault", "OPERATION [on ITEM] [once|times COUNT|always]",
         "Makes an operation of the desktop fail: the next time, a number of times or always; only "
         "for ITEM if given. The operations stand below.",
         readFault},
        {"mend", "OPERATION", "Takes back all faults of an operation.", readMend},
    };
}

}  // namespace nevo
