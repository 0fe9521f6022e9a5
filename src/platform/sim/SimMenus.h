#pragma once

#include "platform/Menus.h"
#include "platform/sim/SimTrace.h"

namespace nevo {

/// Menus that a script answers.
class SimMenus : public Menus {
public:
    explicit SimMenus(SimTrace& to) : trace(to) {}

    void popUp(const std::vector<MenuItem>& items, Point location,
               StatusItemButton& button) override;
    void popUp(const std::vector<MenuItem>& items, Point location, Panel& panel,
               std::function<void(std::optional<std::size_t> highlighted)> didClose) override;

    /// The rows of the menu that is open now; nullptr when none is.
    const std::vector<MenuItem>* openMenu() const { return isOpen ? &rows : nullptr; }
    /// Chooses the row and closes the menu; its action runs before `popUp` returns. False when no
    /// open menu has such a row.
    bool choose(const std::string& key);
    /// Closes the menu without a choice.
    void dismiss();

    /// Called while a menu is open, to turn the loop until it has closed. A menu that is still open
    /// afterwards is dismissed.
    std::function<void()> whileOpen;

private:
    /// Shows the rows until the menu has closed.
    void show(const std::vector<MenuItem>& items);

    SimTrace& trace;
    bool isOpen = false;
    std::vector<MenuItem> rows;
    std::string chosen;
};

/// Keeps what a popover would show.
class SimPopovers : public Popovers {
public:
    explicit SimPopovers(SimTrace& to) : trace(to), shown(std::make_shared<Shown>()) {}

    std::unique_ptr<Popover> create() override;

    /// The rows of the popover that is shown; nothing when none is.
    std::optional<std::vector<PopoverRow>> shownRows() const { return shown->rows; }
    /// A click elsewhere.
    void closeAll();

private:
    class SimPopover;
    struct Shown {
        const SimPopover* which = nullptr;
        std::optional<std::vector<PopoverRow>> rows;
    };

    SimTrace& trace;
    std::shared_ptr<Shown> shown;
};

}  // namespace nevo
