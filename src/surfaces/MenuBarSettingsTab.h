#pragma once

#include <functional>
#include <memory>

#include "surfaces/MenuBarItemList.h"

namespace nevo {

/// The toggle's icon, the display mode, the shelf's looks, and when items come and go.
class MenuBarSettingsTab : public std::enable_shared_from_this<MenuBarSettingsTab> {
public:
    /// `changed` is told when the tab shows something else.
    MenuBarSettingsTab(const SettingsServices& services, const MenuBarItemList& items,
                       std::function<void()> changed);

    Control content();

private:
    Control icon();
    Control customIconDropZone();
    void selectIcon(const std::string& name);
    void takeIconFile(const std::string& path);
    void refuse(const char* reason);
    Control displayMode();
    Control shelf();
    Control shelfOrder();
    std::vector<ControlOption> hiddenItems() const;
    void addCustomColor(std::vector<Control>& controls);
    Control behavior();

    const SettingsServices& services;
    const MenuBarItemList& items;
    std::function<void()> changed;
    /// The text that says why the last file wasn't taken; empty once an icon has been chosen.
    std::string refusal;
};

}  // namespace nevo
