#pragma once

#include <QPointer>

#include "platform/Images.h"
#include "platform/Menus.h"
#include "platform/x11/BarClient.h"
#include "platform/x11/Compositor.h"

namespace nevo {

class PopoverPanel;

/// A panel of controls that closes at a click elsewhere or Escape.
class X11Popover : public Popover {
public:
    X11Popover(XServer& x, BarClient& client, const Images& pictures, const Compositor& manager);
    ~X11Popover() override;

    void setContentSize(Size newSize) override { size = newSize; }
    /// Always transient, and never animated: this desktop's popups are so.
    void setBehavior(int) override {}
    void setAnimates(bool) override {}
    void setContent(Control newContent) override;
    bool isShown() const override;
    void performClose() override;
    void show(Rect rect, StatusItemButton& button, int preferredEdge) override;

private:
    XServer& server;
    BarClient& bar;
    const Images& images;
    const Compositor& compositor;
    Size size{300, 280};
    Control content;
    QPointer<PopoverPanel> panel;
};

}  // namespace nevo
