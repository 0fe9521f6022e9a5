#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "surfaces/SettingsServices.h"

namespace nevo {

/// An item of the bar as the settings show it, by its persisted id.
struct MenuBarIconItem {
    std::string id;
    std::string bundleID;
    /// For people; differs from those of the other items of its program.
    std::string label;
    std::optional<Image> icon;
    /// The side of the toggle on which it stands; nothing when that isn't known.
    std::optional<bool> isHidden;
};

/// The items of all programs for the pages of the settings, followed while a page shows them.
class MenuBarItemList : public std::enable_shared_from_this<MenuBarItemList> {
public:
    /// `changed` is called after each scan.
    MenuBarItemList(const SettingsServices& services, std::function<void()> changed);

    /// A page shows the items: scans, and scans again whenever something has moved in the bar.
    void appear();
    void disappear() { watch.reset(); }
    /// Scans once, in a task.
    void scan();

    /// In the order of the bar. Items that share an id share their entry, and are hidden if one of
    /// them is.
    const std::vector<MenuBarIconItem>& items() const { return found; }
    /// False before the first scan has ended.
    bool isKnown() const { return hasScanned; }

private:
    using Places = std::map<WindowNumber, double>;
    static Task<> runScan(std::weak_ptr<MenuBarItemList> owner);
    Places places() const;
    void take(const ScannedBarItems& scanned);

    const SettingsServices& services;
    std::function<void()> changed;
    std::vector<MenuBarIconItem> found;
    bool hasScanned = false;
    /// As the last scan found them.
    Places scannedPlaces;
    Registration watch;
};

}  // namespace nevo
