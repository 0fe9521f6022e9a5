#pragma once

#include "surfaces/MenuBarItemList.h"

namespace nevo {

/// The rules of single items.
class RulesSettingsTab {
public:
    /// Both outlive the tab.
    RulesSettingsTab(const SettingsServices& services, const MenuBarItemList& items);

    Control content() const;

private:
    Control rowOfItem(const MenuBarIconItem& item, IconRule rule) const;
    Control pictureToggle(const MenuBarIconItem& item, IconRule rule) const;
    Control picker(const MenuBarIconItem& item, IconRule rule) const;

    const SettingsServices& services;
    const MenuBarItemList& list;
};

}  // namespace nevo
