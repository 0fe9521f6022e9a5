#pragma once

#include <set>

#include "platform/Screens.h"
#include "platform/WindowServer.h"
#include "platform/x11/BarClient.h"
#include "platform/x11/ClientWindows.h"
#include "platform/x11/PictureWatch.h"

namespace nevo {

/// All programs' windows: the bar's items by what the bar tells, ordinary ones by what the window
/// manager does.
class X11WindowServer : public WindowServer {
public:
    X11WindowServer(XServer& x, BarClient& bar, ClientWindows& clientWindows, Screens& theScreens,
                    WindowNumbers& windowNumbers, PictureWatch& pictureWatch);

    std::optional<int> windowCount() const override;
    std::optional<std::vector<WindowNumber>> menuBarWindowList(int capacity) const override;
    std::optional<int> windowLevel(WindowNumber window) const override;
    std::optional<Rect> windowFrame(WindowNumber window) const override;
    std::optional<Rect> slotFrame(WindowNumber window) const override;
    double roomShift(WindowNumber window) const override;
    std::optional<std::vector<WindowDescription>> windowList(
        WindowListOption option) const override;
    std::optional<WindowDescription> windowDescription(WindowNumber window) const override;
    bool setWindowAlpha(WindowNumber window, float alpha) override;
    std::optional<float> windowAlpha(WindowNumber window) const override;
    bool moveWindow(WindowNumber window, Point origin) override;
    std::optional<Image> windowImage(WindowNumber window) const override;
    /// Of the bar's items only.
    Registration watchImage(WindowNumber window, std::function<void()> changed) override;
    /// A pixel is a point here.
    double pixelsPerPoint() const override { return server.coordinates.scale; }
    std::optional<Image> compositeImage(const std::vector<WindowNumber>& windows) const override;
    /// Any client may move the cursor here.
    void setSetsCursorInBackground(bool) override {}

private:
    bool isBar(WindowNumber window) const;
    WindowDescription describe(const BarItemInfo& item) const;
    WindowDescription describe(const ClientWindowInfo& window) const;
    WindowDescription describeBar() const;

    XServer& server;
    BarClient& barClient;
    ClientWindows& clients;
    Screens& screens;
    WindowNumbers& numbers;
    PictureWatch& watches;
    /// The items that were made transparent here. Numbers don't come back: those of a bar that has
    /// gone do no harm.
    std::set<WindowNumber> alphaHeld;
};

}  // namespace nevo
