#pragma once

#include <map>
#include <utility>

#include "platform/menubar/RowStorage.h"
#include "platform/sim/SimDefaults.h"

namespace nevo {

/// What the simulated bar remembers: positions in the simulated domains, and the rest in memory,
/// since this bar outlives every program. An item without a name has no stored position.
class SimRowStore : public RowStorage {
public:
    explicit SimRowStore(SimDefaults& allDefaults) : defaults(allDefaults) {}

    const std::vector<std::string>& order() const override { return known; }
    void setPresent(const std::vector<std::string>& identities, const std::string& placed) override;
    std::optional<double> position(const std::string& domain, const std::string& name) override;
    bool isForeign(const std::string& domain, const std::string& name,
                   double position) const override;
    void acknowledge(const std::string& domain, const std::string& name, double position) override;
    void writePosition(const std::string& domain, const std::string& name,
                       double position) override;
    bool save() override { return false; }

private:
    SimDefaults& defaults;
    std::vector<std::string> known;
    /// By domain and name: what the bar itself has last written or obeyed.
    std::map<std::pair<std::string, std::string>, double> last;
};

}  // namespace nevo
