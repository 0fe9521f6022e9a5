#include "scenario/commandSupport.h"

#include <fmt/format.h>

namespace nevo {

namespace {
Bytes readHex(LineReader& reader) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text = reader.word("the bytes");
    Bytes bytes;
    bool readable = text.size() % 2 == 0 && text.find_first_not_of(digits) == std::string::npos;
    if (!readable) reader.fail("bytes are pairs of the digits 0 to 9 and a to f");
    for (std::size_t i = 0; readable && i < text.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(text.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}
}  // namespace

Point readPlace(LineReader& reader) {
    double x = reader.number("X");
    double y = reader.number("Y");
    return {x, y};
}

ModifierFlags readModifiers(LineReader& reader) {
    ModifierFlags flags = 0;
    while (auto name = reader.takeOneOf({"command", "option", "shift", "control"})) {
        if (*name == "command") flags |= commandModifier;
        if (*name == "option") flags |= optionModifier;
        if (*name == "shift") flags |= shiftModifier;
        if (*name == "control") flags |= controlModifier;
    }
    return flags;
}

DefaultsValue readValue(LineReader& reader) {
    std::string kind =
        reader.choice("the kind of value", {"bool", "int", "number", "string", "bytes", "list"});
    if (kind == "bool") return reader.choice("the value", {"true", "false"}) == "true";
    if (kind == "int") return static_cast<std::int64_t>(reader.whole("the value"));
    if (kind == "number") return reader.number("the value");
    if (kind == "bytes") return readHex(reader);
    if (kind == "list") return reader.rest("the list", 0);
    return reader.word("the value");
}

Step withWindow(const std::string& name,
                std::function<Outcome(ScenarioRun&, WindowNumber)> action) {
    return [name, action = std::move(action)](ScenarioRun& run) {
        std::string problem;
        WindowNumber window = run.window(name, problem);
        return window == 0 ? Outcome::unreadable(problem) : action(run, window);
    };
}

Step withProgram(const std::string& handle,
                 std::function<Outcome(ScenarioRun&, SimOtherProgram&)> action) {
    return [handle, action = std::move(action)](ScenarioRun& run) {
        SimOtherProgram* program = run.desktop().applications.find(handle);
        if (program != nullptr) return action(run, *program);
        std::vector<std::string> known;
        for (const auto& other : run.desktop().applications.all()) known.push_back(other.handle);
        return Outcome::unreadable(fmt::format("there is no program \"{}\"; there are: {}", handle,
                                               known.empty() ? "none" : listed(known)));
    };
}

Step withOwnItem(const std::string& name,
                 std::function<Outcome(ScenarioRun&, SimStatusItem&)> action) {
    return [name, action = std::move(action)](ScenarioRun& run) {
        SimStatusItem* item = run.ownItem(name);
        if (item != nullptr) return action(run, *item);
        return Outcome::unreadable(
            fmt::format("Nevo has no status item \"{}\" now; its items are toggle, divider and "
                        "always-hidden-divider, while it runs",
                        name));
    };
}

std::string domainNamed(ScenarioRun& run, const std::string& name) {
    if (name == "nevo") return run.desktop().defaults.ownDomain();
    const SimOtherProgram* program = run.desktop().applications.find(name);
    return program != nullptr ? program->application.bundleIdentifier : name;
}

std::string yesOrNo(bool value) { return value ? "yes" : "no"; }

}  // namespace nevo
