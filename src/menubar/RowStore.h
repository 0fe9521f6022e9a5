#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/menubar/RowStorage.h"
#include "platform/store/DomainFile.h"

namespace nevo::menubar {

/// The order of the row in a file of the bar's own, and the positions in those of the
/// applications' domains.
class RowStore : public RowStorage {
public:
    explicit RowStore(std::filesystem::path rowFile);

    /// `menubar-row.json` in the user's state folder.
    static std::filesystem::path defaultPath();

    const std::vector<std::string>& order() const override { return known; }
    void setPresent(const std::vector<std::string>& identities, const std::string& placed) override;
    std::optional<double> position(const std::string& domain, const std::string& name) override;
    bool isForeign(const std::string& domain, const std::string& name,
                   double position) const override;
    void acknowledge(const std::string& domain, const std::string& name, double position) override;
    void writePosition(const std::string& domain, const std::string& name,
                       double position) override;
    /// The row file, and the positions of a few domains, since each costs a real write. A failure
    /// is logged once; the order is tried again with its next change.
    bool save() override;

private:
    struct Unsaved {
        double position = 0;
        /// Else another program has written it, and it has been obeyed.
        bool isOurs = false;
    };
    void saveDomain(const std::string& domain, const std::map<std::string, Unsaved>& positions);
    void logProblems(DomainFile& file);

    DomainFile row;
    std::vector<std::string> known;
    /// The order.
    bool isUnsaved = false;
    /// By domain and name.
    std::map<std::string, std::map<std::string, Unsaved>> unsavedPositions;
    std::set<std::string> loggedProblems;
};

}  // namespace nevo::menubar
