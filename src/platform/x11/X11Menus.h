#pragma once

#include "platform/Images.h"
#include "platform/Menus.h"
#include "platform/RunLoop.h"
#include "platform/x11/BarClient.h"

namespace nevo {

class X11Menus : public Menus {
public:
    X11Menus(XServer& x, BarClient& client, const Images& pictures);
    void popUp(const std::vector<MenuItem>& items, Point location,
               StatusItemButton& button) override;

private:
    XServer& server;
    BarClient& bar;
    const Images& images;
};

class X11Popovers : public Popovers {
public:
    X11Popovers(XServer& x, BarClient& client, const Images& pictures);
    std::unique_ptr<Popover> create() override;

private:
    XServer& server;
    BarClient& bar;
    const Images& images;
};

/// Where a menu or panel of `width` hangs from a button (root coordinates): its left edge centred
/// below it for a panel, else aligned with it; below the bar.
Point hangingPlace(XServer& server, BarClient& bar, const StatusItemButton& button, double width);

}  // namespace nevo
