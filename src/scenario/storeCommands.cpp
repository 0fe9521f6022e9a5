#include "scenario/commandSupport.h"

namespace nevo {

namespace {

Step readSet(LineReader& reader) {
    std::string domain = reader.word("DOMAIN");
    std::string key = reader.word("KEY");
    DefaultsValue value = readValue(reader);
    return [=](ScenarioRun& run) {
        run.desktop().defaults.write(domainNamed(run, domain), key, value);
        return Outcome{};
    };
}

Step readUnset(LineReader& reader) {
    std::string domain = reader.word("DOMAIN");
    std::string key = reader.word("KEY");
    return [=](ScenarioRun& run) {
        run.desktop().defaults.remove(domainNamed(run, domain), key);
        return Outcome{};
    };
}

Step readDomain(LineReader& reader) {
    std::string domain = reader.word("DOMAIN");
    bool openable = reader.choice("the state", {"openable", "unopenable"}) == "openable";
    return [=](ScenarioRun& run) {
        run.desktop().defaults.setOpenable(domainNamed(run, domain), openable);
        return Outcome{};
    };
}

}  // namespace

std::vector<Command> storeCommands() {
    return {
        {"set", "DOMAIN KEY bool|int|number|string|bytes|list VALUE...",
         "Writes a stored value from outside. DOMAIN is nevo, a program's HANDLE or any name; "
         "bytes "
         "are hexadecimal digits.",
         readSet},
        {"unset", "DOMAIN KEY", "Removes a stored value from outside.", readUnset},
        {"domain", "DOMAIN openable|unopenable", "Whether others can open a program's domain.",
         readDomain},
    };
}

}  // namespace nevo
