#include "controller/StatusBarController.h"
#include "core/Texts.h"
#include "core/debugLog.h"
#include "discovery/ItemLabel.h"

namespace nevo {

namespace {

MenuItem row(const std::string& key, const std::string& keyEquivalent, const std::string& symbol,
             std::function<void()> action) {
    MenuItem made;
    made.key = key;
    made.title = text(key);
    made.keyEquivalent = keyEquivalent;
    made.symbol = symbol;
    made.action = std::move(action);
    return made;
}

}  // namespace

bool StatusBarController::handleRightClick(const Event& event) {
    auto window = toggleWindowID();
    if (!window || event.window != *window) return false;
    showContextMenu();
    return true;
}

void StatusBarController::showContextMenu() {
    isContextMenuShowing = true;
    refreshToggleButton();
    if (shelfController) shelfController->dismissShelf();
    nevoBar->dismiss();
    if (StatusItemButton* button = sectionManager.toggleItem->button()) {
        platform.menus.popUp(contextMenu(), Point{0, button->bounds().height}, *button);
    }
    isContextMenuShowing = false;
}

std::vector<MenuItem> StatusBarController::contextMenu() {
    // The controller may go while the menu is open: the menu runs the loop.
    auto weak = weak_from_this();
    auto bound = [weak](void (StatusBarController::*action)()) {
        return [weak, action] {
            if (auto self = weak.lock()) ((*self).*action)();
        };
    };
    MenuItem settings = row("menu_bar.context_menu.settings", ",", "gearshape",
                            bound(&StatusBarController::openSettings));
    MenuItem updates =
        row("menu_bar.context_menu.check_for_updates", "", "arrow.clockwise", nullptr);
    updates.action = [weak, updates] {
        if (auto self = weak.lock()) self->checkForUpdatesFromMenu(updates);
    };
    std::vector<MenuItem> rows = alwaysHiddenRows();
    rows.insert(rows.end(), {settings, updates, MenuItem{},
                             row("menu_bar.context_menu.about", "", "info.circle",
                                 bound(&StatusBarController::openAbout)),
                             MenuItem{},
                             row("menu_bar.context_menu.quit", "q", "xmark.circle",
                                 bound(&StatusBarController::quitApp))});
    return rows;
}

/// Where there is no shelf, the way to items that no click shows: a heading, and a row for each.
std::vector<MenuItem> StatusBarController::alwaysHiddenRows() const {
    std::vector<MenuItem> rows;
    ScannedBarItems items = itemsRuledHidden();
    if (isShelfMode() || items.empty()) return rows;
    rows.push_back(row("menu_bar.context_menu.always_hidden", "", "", nullptr));
    rows.back().isEnabled = false;
    for (const ScannedBarItem& item : items) {
        MenuItem entry;
        entry.key = "menu_bar.context_menu.bring_out " + item.persistedID;
        entry.title = labelForPeople(item, platform.workspace);
        entry.action =
            [weak = std::weak_ptr(std::const_pointer_cast<StatusBarController>(shared_from_this())),
             id = item.persistedID] {
                if (auto self = weak.lock()) self->bringOut(id);
            };
        rows.push_back(std::move(entry));
    }
    rows.emplace_back();
    return rows;
}

void StatusBarController::checkForUpdatesFromMenu(const MenuItem& item) {
    debugLog("[Updates] context menu item selected");
    platform.application.activate();
    checkForUpdates(&item);
}

void StatusBarController::openSettings() { services.openSettings(); }

void StatusBarController::openAbout() {
    platform.application.activate();
    platform.application.orderFrontStandardAboutPanel(text("menu_bar.context_menu.about"),
                                                      text("menu_bar.about.credits"));
}

void StatusBarController::quitApp() { platform.application.terminate(); }

}  // namespace nevo
