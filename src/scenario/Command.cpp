#include "scenario/Command.h"

#include <fmt/format.h>

#include <algorithm>

namespace nevo {

const std::vector<Command>& commands() {
    static const std::vector<Command> table = [] {
        std::vector<Command> all;
        for (auto group : {displayCommands, programCommands, nevoCommands, inputCommands,
                           storeCommands, timeCommands, barExpectations, nevoExpectations,
                           panelCommands, controlCommands, installationCommands}) {
            for (Command& command : group()) all.push_back(std::move(command));
        }
        return all;
    }();
    return table;
}

namespace {
std::string allowedNames(const std::string& prefix) {
    std::vector<std::string> names;
    for (const Command& command : commands()) {
        bool isExpectation = command.name.rfind("expect ", 0) == 0;
        if (prefix.empty() && !isExpectation) names.push_back(command.name);
        if (!prefix.empty() && isExpectation) names.push_back(command.name.substr(prefix.size()));
    }
    if (prefix.empty()) names.push_back("expect");
    return listed(names);
}
}  // namespace

Step readCommand(LineReader& reader, bool delayed) {
    std::string name = reader.word("the command");
    std::string prefix;
    if (name == "expect") {
        prefix = "expect ";
        name += ' ';
        name += reader.word("what is expected");
    }
    if (!reader.error().empty()) return {};
    auto found = std::find_if(commands().begin(), commands().end(),
                              [&](const Command& c) { return c.name == name; });
    if (found == commands().end()) {
        reader.fail(fmt::format("there is no \"{}\"; allowed: {}", name, allowedNames(prefix)));
        return {};
    }
    if (delayed && found->takesTime) {
        reader.fail(fmt::format("{} takes time itself and can't follow \"after\"", name));
        return {};
    }
    Step step = found->read(reader);
    if (!reader.atEnd()) {
        reader.fail(fmt::format("too many words; the form is: {} {}", name, found->arguments));
    } else if (!reader.error().empty()) {
        std::string reason = reader.error();
        reader = LineReader({});
        reader.fail(fmt::format("{}; the form is: {} {}", reason, name, found->arguments));
    }
    return step;
}

}  // namespace nevo
