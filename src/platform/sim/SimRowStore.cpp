#include "platform/sim/SimRowStore.h"

#include "platform/menubar/BarProtocol.h"
#include "platform/menubar/RowOrder.h"

namespace nevo {

namespace {
std::string positionKey(const std::string& name) {
    return barprotocol::preferredPositionPrefix + name;
}
}  // namespace

void SimRowStore::setPresent(const std::vector<std::string>& identities,
                             const std::string& placed) {
    known = mergedRowOrder(known, identities, placed);
}

std::optional<double> SimRowStore::position(const std::string& domain, const std::string& name) {
    return name.empty() ? std::nullopt : defaults.readNumber(domain, positionKey(name));
}

bool SimRowStore::isForeign(const std::string& domain, const std::string& name,
                            double position) const {
    auto found = last.find({domain, name});
    return found == last.end() || found->second != position;
}

void SimRowStore::acknowledge(const std::string& domain, const std::string& name, double position) {
    last[{domain, name}] = position;
}

void SimRowStore::writePosition(const std::string& domain, const std::string& name,
                                double position) {
    if (name.empty()) return;
    defaults.write(domain, positionKey(name), position);
    last[{domain, name}] = position;
}

}  // namespace nevo
