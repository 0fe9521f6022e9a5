#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/RememberedPlaces.h"
#include "placement/RowSlots.h"
#include "placement/SectionManager.h"

namespace nevo {

/// Where items stood before a rule moved them, and where in the present row that is.
class RulePlaces {
public:
    /// Ids of the items in the row by their windows.
    using Ids = std::map<WindowNumber, std::string>;

    RulePlaces(const Platform& desktop, const SectionManager& manager)
        : windows(desktop.windows), sections(manager), places(desktop.defaults.standard()) {}

    /// Notes where the item stands, unless a place is remembered already, or the item is behind the
    /// always-hidden divider, where only a rule can have put it.
    void remember(WindowNumber window, const Ids& ids);
    bool has(const std::string& persistedID) const { return places.find(persistedID).has_value(); }
    std::optional<double> position(const std::string& persistedID) const;
    void rename(const std::string& former, const std::string& persistedID) {
        places.rename(former, persistedID);
    }
    void forget(const std::string& persistedID) { places.forget(persistedID); }

    /// Where the item has to be dropped to stand beside its former neighbour, on its former side of
    /// the toggle; global, top-left origin. Nothing when no place is remembered.
    std::optional<Point> target(WindowNumber window, const Ids& ids) const;
    /// Whether the bar's layout has the item left of the toggle.
    bool isLeftOfToggle(WindowNumber window) const;

private:
    bool isInPlace(const RowSlot& slot, const std::string& id) const;
    std::vector<std::string> formerSide(const std::vector<RowSlot>& slots, std::size_t toggle,
                                        const Ids& ids, bool isHidden) const;

    const WindowServer& windows;
    const SectionManager& sections;
    RememberedPlaces places;
};

}  // namespace nevo
