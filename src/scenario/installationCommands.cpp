#include <algorithm>

#include "scenario/commandSupport.h"

namespace nevo {

namespace {

Step readInstalledAt(LineReader& reader) {
    std::string path = reader.word("PATH");
    return [path](ScenarioRun& run) {
        run.desktop().application.path = path;
        return Outcome{};
    };
}

Step readInformation(LineReader& reader) {
    std::string key = reader.word("KEY");
    std::string text = reader.word("TEXT");
    return [=](ScenarioRun& run) {
        run.desktop().application.information[key] = text;
        return Outcome{};
    };
}

Step readAnswer(LineReader& reader) {
    auto button = static_cast<std::size_t>(std::max(0, reader.whole("BUTTON") - 1));
    bool suppresses = reader.takeOneOf({"never-again"}).has_value();
    return [=](ScenarioRun& run) {
        run.desktop().alerts.answerNext({button, suppresses});
        return Outcome{};
    };
}

Step readFile(LineReader& reader) {
    std::string path = reader.word("PATH");
    DefaultsValue value = readValue(reader);
    return [=](ScenarioRun& run) {
        const auto* bytes = std::get_if<Bytes>(&value);
        if (bytes == nullptr) return Outcome::unreadable("a file holds bytes");
        run.desktop().files.put(path, *bytes);
        return Outcome{};
    };
}

Step readChosen(LineReader& reader) {
    std::string path = reader.word("PATH");
    return [path](ScenarioRun& run) {
        auto chosen = path == "none" ? std::nullopt : std::optional(path);
        if (run.desktop().files.chosen(chosen)) return Outcome{};
        return Outcome::unreadable("nobody waits for a file");
    };
}

Step readFileExists(LineReader& reader) {
    std::string path = reader.word("PATH");
    std::string expected = reader.choice("the state", {"there", "gone"});
    return [=](ScenarioRun& run) {
        bool there = run.desktop().files.exists(path);
        return Outcome::compare(path, expected, there ? "there" : "gone");
    };
}

Step readLoginItem(LineReader& reader) {
    std::string expected = reader.choice("the state", {"registered", "unregistered"});
    return [=](ScenarioRun& run) {
        bool is = run.desktop().loginItem.isRegistered();
        return Outcome::compare("the login item", expected, is ? "registered" : "unregistered");
    };
}

Step readUpdater(LineReader& reader) {
    std::string what = reader.choice("what the updater says", {"alert", "update", "found", "end",
                                                               "aborted", "cycle", "busy", "none"});
    bool detail = what == "aborted" || what == "cycle";
    std::string error = detail && !reader.atEnd() ? reader.word("ERROR") : "";
    return [=](ScenarioRun& run) {
        SimUpdaters& updaters = run.desktop().updaters;
        if (what == "busy") updaters.canCheck = false;
        if (what == "none") updaters.isManaged = true;
        if (what == "busy" || what == "none") return Outcome{};
        const UpdaterDelegate told = updaters.delegate;
        if (!told.didAbort) return Outcome::unreadable("Nevo has no updater");
        const UpdateItem item{"2.0", "200"};
        if (what == "alert") told.willShowModalAlert();
        if (what == "update") told.willHandleShowingUpdate(true, item, false);
        if (what == "found") told.didFindValidUpdate(item);
        if (what == "end") told.willFinishUpdateSession();
        if (what == "aborted") told.didAbort(error);
        if (what == "cycle") told.didFinishUpdateCycle(error);
        return Outcome{};
    };
}

Step readRan(LineReader& reader) {
    std::string expected = reader.word("LINE");
    return [expected](ScenarioRun& run) {
        return Outcome::compare("the last program", expected, run.desktop().childProcesses.last());
    };
}

Step readPolicy(LineReader& reader) {
    std::string expected = reader.choice("the policy", {"regular", "accessory"});
    return [=](ScenarioRun& run) {
        bool regular = run.desktop().application.activationPolicy() == ActivationPolicy::regular;
        return Outcome::compare("the activation policy", expected,
                                regular ? "regular" : "accessory");
    };
}

}  // namespace

std::vector<Command> installationCommands() {
    return {
        {"installed-at", "PATH", "Where Nevo is installed, from its next start on.",
         readInstalledAt},
        {"information", "KEY TEXT", "A text of Nevo's information dictionary.", readInformation},
        {"answer", "BUTTON [never-again]",
         "Lays out the answer to the next alert: the number of the button, from 1, and whether its "
         "check box is on. An alert without one gets its last button.",
         readAnswer},
        {"file", "PATH VALUE", "Puts a file there; the value is bytes HEX.", readFile},
        {"choose-file", "PATH|none", "Chooses in the open file panel, or closes it.", readChosen},
        {"updater", "alert|update|found|end|aborted [ERROR]|cycle [ERROR]|busy|none",
         "What the updater tells Nevo; that it can't look for updates now; or that Nevo is updated "
         "by the system, from its next start on.",
         readUpdater},
        {"expect file", "PATH there|gone", "Whether a file is there.", readFileExists},
        {"expect login-item", "registered|unregistered",
         "Whether Nevo starts with the user's session.", readLoginItem},
        {"expect ran", "LINE",
         "The program that Nevo started last, with its arguments in single quotes.", readRan},
        {"expect policy", "regular|accessory", "Nevo's activation policy.", readPolicy},
    };
}

}  // namespace nevo
