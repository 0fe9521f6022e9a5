#pragma once

#include "platform/Images.h"
#include "platform/Menus.h"
#include "platform/RunLoop.h"
#include "platform/x11/BarClient.h"
#include "platform/x11/Compositor.h"
#include "platform/x11/PanelKeys.h"

namespace nevo {

class X11Menus : public Menus {
public:
    X11Menus(XServer& x, BarClient& client, const Images& pictures, const Compositor& manager,
             PanelKeys& panelKeys);
    void popUp(const std::vector<MenuItem>& items, Point location,
               StatusItemButton& button) override;
    void popUp(const std::vector<MenuItem>& items, Point location, Panel& panel,
               std::function<void(std::optional<std::size_t> highlighted)> didClose) override;

private:
    /// Shows the menu with its corner there (root coordinates) until it closes. The row that was
    /// chosen, counted from 0.
    std::optional<std::size_t> choose(const std::vector<MenuItem>& items, Point root) const;

    XServer& server;
    BarClient& bar;
    const Images& images;
    const Compositor& compositor;
    PanelKeys& keys;
};

class X11Popovers : public Popovers {
public:
    X11Popovers(XServer& x, BarClient& client, const Images& pictures, const Compositor& manager);
    std::unique_ptr<Popover> create() override;

private:
    XServer& server;
    BarClient& bar;
    const Images& images;
    const Compositor& compositor;
};

/// Where a menu or panel of `width` hangs from a button (root coordinates): its left edge centred
/// below it for a panel, else aligned with it; below the bar.
Point hangingPlace(XServer& server, BarClient& bar, const StatusItemButton& button, double width);

}  // namespace nevo
