#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "surfaces/SettingsServices.h"

namespace nevo {

/// A row of the rules: an item that a scan has found, by its persisted id.
struct MenuBarIconItem {
    std::string id;
    std::string bundleID;
    std::string label;
    std::optional<Image> icon;
};

/// The rules of single items.
class RulesSettingsTab : public std::enable_shared_from_this<RulesSettingsTab> {
public:
    /// `changed` is told when the tab shows something else.
    RulesSettingsTab(const SettingsServices& services, std::function<void()> changed);

    Control content();
    /// Looks for the items anew, in a task.
    void scan();
    const std::vector<MenuBarIconItem>& scannedMenuBarItems() const { return items; }

private:
    static Task<> runScan(std::weak_ptr<RulesSettingsTab> owner);
    Control rowOfItem(const MenuBarIconItem& item, const IconRules& rules) const;

    const SettingsServices& services;
    std::function<void()> changed;
    std::vector<MenuBarIconItem> items;
};

}  // namespace nevo
