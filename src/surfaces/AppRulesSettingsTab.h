#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "surfaces/MenuBarItemList.h"

namespace nevo {

/// The rules for as long as a program is in front.
class AppRulesSettingsTab : public std::enable_shared_from_this<AppRulesSettingsTab> {
public:
    /// `items` knows the items; it lives as long. `changed` is told when the tab shows something
    /// else.
    AppRulesSettingsTab(const SettingsServices& services, MenuBarItemList& items,
                        std::function<void()> changed);

    Control content();
    /// Looks anew which programs run.
    void findApplications();

private:
    Control addRule();
    Control optionsOf(const MenuBarIconItem& item, const AppRule& rule) const;
    void setOption(const std::string& itemID, const std::string& option) const;
    Control configured() const;
    std::string nameOf(const std::string& bundleID) const;

    const SettingsServices& services;
    MenuBarItemList& items;
    std::function<void()> changed;
    /// Bundle identifier and name, by name.
    std::vector<std::pair<std::string, std::string>> detectedApps;
    std::optional<std::string> selectedAppID;
};

}  // namespace nevo
