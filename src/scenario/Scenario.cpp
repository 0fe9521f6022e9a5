#include "scenario/Scenario.h"

#include <fmt/format.h>

namespace nevo {

Scenario readScenario(const std::string& name, std::istream& text) {
    Scenario scenario;
    scenario.name = name;
    std::string line;
    for (int number = 1; std::getline(text, line); ++number) {
        auto complain = [&](const std::string& message) {
            scenario.errors.push_back(fmt::format("{}:{}: {}", name, number, message));
        };
        auto words = splitLine(line);
        if (!words) {
            complain("a quote isn't closed");
            continue;
        }
        if (words->empty()) continue;
        LineReader reader(*words);
        Step step = readCommand(reader, false);
        if (reader.error().empty()) {
            line.erase(0, line.find_first_not_of(" \t"));
            scenario.lines.push_back({number, line, std::move(step)});
        } else {
            complain(reader.error());
        }
    }
    return scenario;
}

}  // namespace nevo
