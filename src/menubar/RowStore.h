#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/store/DomainFile.h"

namespace nevo::menubar {

/// What of the row outlives the bar: the order of all items ever seen, in a file of the bar's own,
/// and each item's position in the domain of its application.
class RowStore {
public:
    explicit RowStore(std::filesystem::path rowFile);

    /// `menubar-row.json` in the user's state folder.
    static std::filesystem::path defaultPath();

    /// Identities from left to right, also of items that aren't there.
    const std::vector<std::string>& order() const { return known; }
    /// Notes the present items from left to right.
    void setPresent(const std::vector<std::string>& identities);

    /// The position that the application's domain holds now.
    std::optional<double> position(const std::string& domain, const std::string& name);
    /// Whether somebody else changed that position since we last read or wrote it.
    bool isForeign(const std::string& domain, const std::string& name, double position) const;
    /// Notes that `position` has been obeyed.
    void acknowledge(const std::string& domain, const std::string& name, double position);
    void writePosition(const std::string& domain, const std::string& name, double position);

    /// Brings the row file to the disk, if anything changed since this was last asked. A failure is
    /// logged once; the next change tries again.
    void save();

private:
    void note(const std::string& key, DefaultsValue value);
    void forgetOldPositions();
    void logProblems(DomainFile& file);

    DomainFile row;
    std::vector<std::string> known;
    DomainFile::Changes pending;
    bool changed = false;
    std::set<std::string> loggedProblems;
};

}  // namespace nevo::menubar
