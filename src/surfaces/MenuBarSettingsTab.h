#pragma once

#include <functional>
#include <memory>

#include "surfaces/SettingsServices.h"

namespace nevo {

/// The toggle's icon, the display mode, the shelf's looks, and when items come and go.
class MenuBarSettingsTab : public std::enable_shared_from_this<MenuBarSettingsTab> {
public:
    /// `changed` is told when the tab shows something else.
    MenuBarSettingsTab(const SettingsServices& services, std::function<void()> changed);

    Control content();

private:
    Control icon();
    Control customIconDropZone();
    void takeIconFile(const std::string& path);
    Control displayMode();
    Control shelf();
    Control shelfOrder();
    void addCustomColor(std::vector<Control>& controls);
    Control behavior();

    const SettingsServices& services;
    std::function<void()> changed;
};

}  // namespace nevo
