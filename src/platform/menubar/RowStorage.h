#pragma once

#include <optional>
#include <string>
#include <vector>

namespace nevo {

/// What of the row outlives its items: the order of all items ever seen, and each item's position,
/// in points, in the domain of its application.
class RowStorage {
public:
    virtual ~RowStorage() = default;

    /// Identities from left to right, also of items that aren't there.
    virtual const std::vector<std::string>& order() const = 0;
    /// Notes the present items from left to right. `placed` is the one that was placed just now, if
    /// any.
    virtual void setPresent(const std::vector<std::string>& identities,
                            const std::string& placed) = 0;

    /// The position that the application's domain holds now.
    virtual std::optional<double> position(const std::string& domain, const std::string& name) = 0;
    /// Whether another program changed that position since it was last acknowledged or written.
    virtual bool isForeign(const std::string& domain, const std::string& name,
                           double position) const = 0;
    /// Notes that `position` has been obeyed.
    virtual void acknowledge(const std::string& domain, const std::string& name,
                             double position) = 0;
    /// Counts from now on, and is durable after `save`.
    virtual void writePosition(const std::string& domain, const std::string& name,
                               double position) = 0;
    /// Makes changes durable, some at a time. True when there is more to be saved.
    virtual bool save() = 0;
};

}  // namespace nevo
