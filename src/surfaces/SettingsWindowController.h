#pragma once

#include <memory>

#include "surfaces/AppRulesSettingsTab.h"
#include "surfaces/GeneralSettingsTab.h"
#include "surfaces/MenuBarLayoutView.h"
#include "surfaces/MenuBarSettingsTab.h"
#include "surfaces/RulesSettingsTab.h"

namespace nevo {

/// The settings window, one for the process: what it shows is made anew after each change of a
/// setting, whoever makes it. Main thread only.
class SettingsWindowController : public std::enable_shared_from_this<SettingsWindowController> {
public:
    /// In the order of the window.
    enum class Tab { general, layout, menuBar, rules, shortcuts };

    static std::shared_ptr<SettingsWindowController> create(SettingsServices services);

    /// Opens the window, or brings it to the front.
    void showSettings();
    /// Takes it away for good.
    void close();

private:
    explicit SettingsWindowController(SettingsServices services);
    bool isShowing() const { return window && window->isVisible(); }
    void observe();
    void disappear();
    void select(Tab tab);
    void tabAppears();
    void refreshSoon();
    void refresh();
    Control content();
    Control page(Tab tab);

    SettingsServices services;
    std::unique_ptr<Window> window;
    Tab selectedTab = Tab::general;
    std::shared_ptr<MenuBarItemList> items;
    std::shared_ptr<GeneralSettingsTab> general;
    std::shared_ptr<MenuBarLayoutView> layout;
    std::shared_ptr<MenuBarSettingsTab> menuBar;
    std::unique_ptr<RulesSettingsTab> rules;
    std::shared_ptr<AppRulesSettingsTab> appRules;
    bool isRefreshing = false;
    Registration stateObserver;
    Registration storeObserver;
    Registration screenObserver;
};

}  // namespace nevo
