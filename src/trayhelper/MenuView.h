#pragma once

#include <QMenu>
#include <functional>

#include "trayhelper/MenuSource.h"

namespace nevo::trayhelper {

/// One level of another program's menu on the screen. Submenus are asked for when their row is
/// reached, and open when they have come.
class MenuView : public QMenu {
public:
    /// The rows below `id`; `above` is the menu that this one hangs on, nullptr for the first one.
    MenuView(MenuSource& from, int id, MenuView* above);

    /// Asks for the rows, takes them in when they come, and calls `done`, then or when none come.
    void load(const std::function<void()>& done);

    /// Shows the menu with its top left corner there, or where it is all on the screen.
    void open(QPoint corner);
    /// Nothing is to be seen before the rows have come.
    void setVisible(bool visible) override;
    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void reload(bool isNew);
    void take(const MenuRows& news);
    void replaceFrom(std::size_t first, const MenuRows& news);
    void fitIn(bool hasOtherRows);
    void append(const MenuRow& row);
    void update(QAction& action, const MenuRow& row);
    QIcon iconOf(const MenuRow& row) const;
    /// Whether it may have a submenu of that id: it isn't above itself, nor too deep.
    bool mayHold(int id) const;
    void reach(QAction& action);
    void activateFirst();

    MenuSource& source;
    int levelId;
    MenuView* parentLevel;
    QPoint place;
    MenuRows rows;
    std::function<void()> loaded;
    bool isLoading = false;
    bool isTaking = false;
    bool isStale = false;
    /// It was to be shown before its rows had come.
    bool isWanted = false;
    bool wasKeyLast = false;
};

}  // namespace nevo::trayhelper
