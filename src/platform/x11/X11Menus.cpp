#include "platform/x11/X11Menus.h"

#include <QKeyEvent>
#include <QMenu>
#include <algorithm>

#include "platform/x11/Panel.h"
#include "platform/x11/Pictures.h"
#include "platform/x11/QtScale.h"
#include "platform/x11/X11Popover.h"

namespace nevo {

namespace {

constexpr int symbolSize = 16;

/// A menu whose key equivalents work while it is open: no window of ours has the focus that Qt's
/// shortcuts go by.
class KeyedMenu : public QMenu {
protected:
    void keyPressEvent(QKeyEvent* event) override {
        QKeySequence pressed(event->keyCombination());
        for (QAction* action : actions()) {
            if (!action->isEnabled() || action->shortcut().isEmpty()) continue;
            if (action->shortcut() != pressed) continue;
            setActiveAction(action);
            action->trigger();
            close();
            return;
        }
        QMenu::keyPressEvent(event);
    }
};

/// In the colour of the text, also of the highlighted row's.
QIcon symbolIcon(const Images& images, const std::string& name, const QPalette& palette) {
    auto symbol = name.empty() ? std::nullopt : images.systemSymbol(name, {});
    if (!symbol) return {};
    auto inColor = [&](QPalette::ColorRole role) {
        return QPixmap::fromImage(rendered(*symbol, {symbolSize, symbolSize}, palette.color(role)));
    };
    QIcon icon(inColor(QPalette::Text));
    icon.addPixmap(inColor(QPalette::HighlightedText), QIcon::Active);
    icon.addPixmap(QPixmap::fromImage(rendered(*symbol, {symbolSize, symbolSize},
                                               palette.color(QPalette::Disabled, QPalette::Text))),
                   QIcon::Disabled);
    return icon;
}

QAction* addRow(QMenu& menu, const Images& images, const MenuItem& item) {
    if (item.isSeparator()) return menu.addSeparator();
    // An ampersand would underline the next letter.
    QAction* action = menu.addAction(symbolIcon(images, item.symbol, menu.palette()),
                                     QString::fromStdString(item.title).replace('&', "&&"));
    action->setIconVisibleInMenu(true);
    action->setEnabled(item.isEnabled);
    action->setCheckable(item.isOn.has_value());
    action->setChecked(item.isOn.value_or(false));
    if (!item.keyEquivalent.empty()) {
        // What is Command there is Control in the menus of this desktop.
        action->setShortcut(QKeySequence("Ctrl+" + QString::fromStdString(item.keyEquivalent)));
        action->setShortcutVisibleInContextMenu(true);
    }
    return action;
}

}  // namespace

Point hangingPlace(XServer& server, BarClient& bar, const StatusItemButton& button, double width) {
    Rect barFrame = bar.barFrame();
    auto frame = button.screenFrame();
    Rect toggle = frame ? server.coordinates.flipped(*frame)
                        : Rect{server.coordinates.fromRoot(barFrame).maxX(), 0, 0, 0};
    auto number = button.windowNumber();
    const auto* item = number ? bar.itemOfNumber(*number) : nullptr;
    if (item != nullptr) toggle.x += item->roomShift / server.coordinates.scale;
    Point place = server.coordinates.toRoot(
        Point{width > 0 ? toggle.midX() - width / server.coordinates.scale * 0.5 : toggle.x,
              toggle.maxY()});
    place.y = std::max(place.y, barFrame.maxY());
    return place;
}

X11Menus::X11Menus(XServer& x, BarClient& client, const Images& pictures, const Compositor& manager,
                   PanelKeys& panelKeys)
    : server(x), bar(client), images(pictures), compositor(manager), keys(panelKeys) {}

void X11Menus::popUp(const std::vector<MenuItem>& items, Point, StatusItemButton& button) {
    auto chosen = choose(items, hangingPlace(server, bar, button, 0));
    if (chosen && items[*chosen].action) items[*chosen].action();
}

void X11Menus::popUp(const std::vector<MenuItem>& items, Point location, Panel& panel,
                     std::function<void(std::optional<std::size_t> highlighted)> didClose) {
    Rect frame = panel.frame();
    Point place{frame.x + location.x, frame.y + location.y};
    const Coordinates& coordinates = server.coordinates;
    // The panel may be gone when the menu closes.
    auto chosen = choose(items, coordinates.toRoot(coordinates.flipped(place)));
    if (didClose) didClose(chosen);
}

std::optional<std::size_t> X11Menus::choose(const std::vector<MenuItem>& items, Point root) const {
    KeyedMenu menu;
    stylePanel(menu, "QMenu", compositor.isRunning());
    for (std::size_t row = 0; row < items.size(); ++row) {
        QAction* action = addRow(menu, images, items[row]);
        action->setData(QVariant::fromValue(row));
    }
    std::optional<std::size_t> chosen;
    QObject::connect(&menu, &QMenu::triggered, &menu,
                     [&](QAction* action) { chosen = action->data().value<std::size_t>(); });
    Registration menuHasKeys = keys.lend();
    menu.exec(QtScale::at(root).fromRoot(root));
    return chosen;
}

X11Popovers::X11Popovers(XServer& x, BarClient& client, const Images& pictures,
                         const Compositor& manager)
    : server(x), bar(client), images(pictures), compositor(manager) {}

std::unique_ptr<Popover> X11Popovers::create() {
    return std::make_unique<X11Popover>(server, bar, images, compositor);
}

}  // namespace nevo
