#pragma once

#include "platform/Menus.h"
#include "platform/sim/SimControlWindows.h"
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

/// Popovers are windows that close at a press elsewhere.
class SimPopovers : public Popovers {
public:
    explicit SimPopovers(SimControlWindows& of) : windows(of) {}

    std::unique_ptr<Popover> create() override;

    /// What the popover shows; nullptr when it is closed.
    const Control* shown() const;
    /// A click elsewhere.
    void closeAll();

private:
    class SimPopover;

    SimControlWindows& windows;
    std::vector<SimPopover*> all;
};

}  // namespace nevo
