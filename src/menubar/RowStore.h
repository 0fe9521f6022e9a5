#pragma once

#include <filesystem>
#include <map>
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
    /// Positions are pixels here, and in the files points of `pixelsToPoint` each: so they stay
    /// true when the bar's height changes.
    RowStore(std::filesystem::path rowFile, double pixelsToPoint);

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
    /// Counts from now on, and goes to the disk with `save`.
    void writePosition(const std::string& domain, const std::string& name, double position);

    /// Brings to the disk what changed since this was last asked: the row file, and the positions
    /// of a few domains, since each costs a real write. True when there is more to be saved. A
    /// failure is logged once; the order is tried again with its next change.
    bool save();

private:
    struct Unsaved {
        double position = 0;
        /// Else somebody else has written it, and it has been obeyed.
        bool isOurs = false;
    };
    void saveDomain(const std::string& domain, const std::map<std::string, Unsaved>& positions);
    void logProblems(DomainFile& file);

    double scale;
    DomainFile row;
    std::vector<std::string> known;
    /// The order.
    bool isUnsaved = false;
    /// By domain and name.
    std::map<std::string, std::map<std::string, Unsaved>> unsavedPositions;
    std::set<std::string> loggedProblems;
};

}  // namespace nevo::menubar
