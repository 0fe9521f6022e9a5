#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/RunLoop.h"
#include "platform/Screens.h"
#include "platform/StatusBar.h"
#include "platform/x11/LocalMonitors.h"
#include "platform/x11/TrayWindow.h"

namespace nevo {

class X11StatusItem;

/// What the parts of the status bar share. Outlived by nobody: items hold it weakly.
struct StatusBarContext {
    XServer& server;
    BarClient& bar;
    RunLoop& loop;
    Screens& screens;
    LocalMonitors& monitors;
    /// Stored positions must be in their file before the bar looks there for an item's place.
    std::function<void()> flushPositions;
    std::vector<X11StatusItem*> items;
};

/// The bar as the place of our own items.
class X11StatusBar : public StatusBar {
public:
    X11StatusBar(XServer& x, EventPump& pump, BarClient& client, RunLoop& loop, Screens& screens,
                 LocalMonitors& monitors, std::function<void()> flushPositions);
    ~X11StatusBar() override;

    std::unique_ptr<StatusItem> statusItem(double length) override;
    double thickness() const override;
    std::optional<double> systemAreaLeft() const override;

private:
    std::shared_ptr<StatusBarContext> context;
};

}  // namespace nevo
