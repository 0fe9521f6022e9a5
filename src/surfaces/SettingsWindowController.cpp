#include "surfaces/SettingsWindowController.h"

#include <array>
#include <utility>

#include "core/Texts.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

using Tab = SettingsWindowController::Tab;

constexpr Size windowSize{640, 520};
constexpr unsigned titledAndClosable = 3;

struct TabLabel {
    Tab tab;
    const char* key;
};
constexpr std::array<TabLabel, 5> tabs{{{Tab::general, "settings.tab.general"},
                                        {Tab::layout, "settings.tab.layout"},
                                        {Tab::menuBar, "settings.tab.menu_bar"},
                                        {Tab::rules, "settings.tab.rules"},
                                        {Tab::shortcuts, "settings.tab.shortcuts"}}};

Control shortcutsPage(const AppState& appState) {
    Control value = plainText("settings.shortcuts.shortcut", appState.toggleShortcut());
    return columnOf(
        {sectionOf("settings.shortcuts.section_title",
                   {rowOf({textOf("settings.shortcuts.shortcut_label"), value}),
                    textOf("settings.shortcuts.edit_hint", Control::TextStyle::note)})});
}

}  // namespace

SettingsWindowController::SettingsWindowController(SettingsServices given)
    : services(std::move(given)) {}

std::shared_ptr<SettingsWindowController> SettingsWindowController::create(
    SettingsServices services) {
    std::shared_ptr<SettingsWindowController> made(
        new SettingsWindowController(std::move(services)));
    auto changed = [weak = std::weak_ptr(made)] {
        if (auto self = weak.lock()) self->refreshSoon();
    };
    made->items = std::make_shared<MenuBarItemList>(made->services, changed);
    made->general = std::make_shared<GeneralSettingsTab>(made->services, changed);
    made->layout = std::make_shared<MenuBarLayoutView>(made->services.appState, changed);
    made->menuBar = std::make_shared<MenuBarSettingsTab>(made->services, *made->items, changed);
    made->rules = std::make_unique<RulesSettingsTab>(made->services, *made->items);
    made->appRules = std::make_shared<AppRulesSettingsTab>(made->services, *made->items, changed);
    return made;
}

void SettingsWindowController::showSettings() {
    if (!isShowing()) {
        if (!window) {
            WindowConfiguration made;
            made.name = "settings";
            made.title = text("settings.window.title");
            made.size = windowSize;
            made.styleMask = titledAndClosable;
            window = services.platform.surfaceWindows.create(made);
            window->didClose = [weak = weak_from_this()] {
                if (auto self = weak.lock()) self->disappear();
            };
        }
        observe();
        tabAppears();
        refresh();
    }
    window->makeKeyAndOrderFront();
    services.platform.application.activate();
}

/// While it shows; somebody else may write the settings too.
void SettingsWindowController::observe() {
    auto changed = [weak = weak_from_this()] {
        if (auto self = weak.lock()) self->refreshSoon();
    };
    stateObserver = services.appState.objectWillChange.observe(changed);
    auto& center = services.platform.notifications;
    auto told = [changed](const Notification&) { changed(); };
    storeObserver = center.addObserver(userDefaultsDidChangeNotification, told);
    // Another main screen may have a notch.
    screenObserver = center.addObserver(screenParametersChangedNotification, told);
}

void SettingsWindowController::disappear() {
    general->disappear();
    items->disappear();
    stateObserver.reset();
    storeObserver.reset();
    screenObserver.reset();
}

void SettingsWindowController::close() {
    disappear();
    window.reset();
}

void SettingsWindowController::select(Tab tab) {
    if (std::exchange(selectedTab, tab) == tab) return;
    tabAppears();
    refreshSoon();
}

void SettingsWindowController::tabAppears() {
    if (selectedTab == Tab::general) {
        general->appear();
    } else {
        general->disappear();
    }
    if (selectedTab == Tab::menuBar || selectedTab == Tab::rules) {
        items->appear();
    } else {
        items->disappear();
    }
    if (selectedTab == Tab::rules) appRules->findApplications();
}

void SettingsWindowController::refreshSoon() {
    // A setting often changes in the middle of a control's own event, and several at a time.
    if (!isShowing() || std::exchange(isRefreshing, true)) return;
    services.platform.runLoop.post([weak = weak_from_this()] {
        if (auto self = weak.lock()) self->refresh();
    });
}

void SettingsWindowController::refresh() {
    isRefreshing = false;
    if (window) window->setContent(content());
}

Control SettingsWindowController::content() {
    Control all;
    all.kind = Control::Kind::tabs;
    all.key = "settings.tabs";
    for (const TabLabel& label : tabs) {
        Control one = page(label.tab);
        one.key = label.key;
        one.title = text(label.key);
        if (label.tab == selectedTab) all.selected = label.key;
        all.children.push_back(std::move(one));
    }
    all.select = [weak = weak_from_this()](const std::string& key) {
        auto self = weak.lock();
        for (const TabLabel& label : tabs) {
            if (self && key == label.key) self->select(label.tab);
        }
    };
    return all;
}

Control SettingsWindowController::page(Tab tab) {
    switch (tab) {
        case Tab::general:
            return general->content();
        case Tab::layout:
            return layout->content();
        case Tab::menuBar:
            return menuBar->content();
        case Tab::rules: {
            Control page = rules->content();
            for (Control& part : appRules->content().children)
                page.children.push_back(std::move(part));
            return page;
        }
        case Tab::shortcuts:
            return shortcutsPage(services.appState);
    }
    return {};
}

}  // namespace nevo
