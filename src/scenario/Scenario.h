#pragma once

#include <istream>
#include <vector>

#include "scenario/Command.h"

namespace nevo {

/// A scenario's text, read: one step a line.
struct Scenario {
    struct Line {
        int number = 0;
        std::string text;
        Step step;
    };
    /// For messages: the file's name.
    std::string name;
    std::vector<Line> lines;
    /// "NAME:LINE: message" for each line that can't be read; empty when all could.
    std::vector<std::string> errors;
};

Scenario readScenario(const std::string& name, std::istream& text);

}  // namespace nevo
