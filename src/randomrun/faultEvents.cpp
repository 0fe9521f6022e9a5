#include <fmt/format.h>

#include "randomrun/EventKind.h"

namespace nevo {

namespace {

Lines fault(Stage& stage, bool forGood) {
    if (stage.isCalm) return {};
    const std::string& operation = stage.random.oneOf(SimFaults::names());
    std::string line = "fault " + operation;
    std::string item = stage.random.chance(20) ? stage.anyItem() : "";
    if (stage.isNevoRunning() && stage.random.chance(10)) item = "toggle";
    if (!item.empty()) line += " on " + item;
    line += forGood ? " always" : fmt::format(" times {}", stage.random.between(1, 3));
    stage.faults.insert(operation);
    return {line};
}

Lines shortFault(Stage& stage) { return fault(stage, false); }
Lines lastingFault(Stage& stage) { return fault(stage, true); }

/// No way to an item's picture works, in a Nevo that has none yet.
Lines pictureFaults(Stage& stage) {
    if (stage.isCalm || !stage.isNevoRunning()) return {};
    const char* capture = stage.random.oneOf({"captureImage", "captureImage", "shareableContent"});
    Lines lines{"crash", "start"};
    for (const char* operation : {"windowImage", capture, "compositeImage"}) {
        lines.push_back(fmt::format("fault {} times 4", operation));
        stage.faults.insert(operation);
    }
    lines.push_back("wait 3");
    return lines;
}

Lines mend(Stage& stage) {
    if (stage.faults.empty()) return {};
    std::string operation = *std::next(
        stage.faults.begin(), static_cast<std::ptrdiff_t>(stage.random.below(stage.faults.size())));
    stage.faults.erase(operation);
    return {"mend " + operation};
}

}  // namespace

std::vector<EventKind> faultEvents() {
    constexpr auto either = EventKind::Menu::either;
    return {
        {"fault", 8, shortFault, either},
        {"lasting fault", 3, lastingFault, either},
        {"picture faults", 1, pictureFaults},
        {"mend", 6, mend, either},
    };
}

}  // namespace nevo
