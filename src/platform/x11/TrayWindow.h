#pragma once

#include <QImage>
#include <functional>
#include <optional>
#include <string>

#include "platform/Image.h"
#include "platform/x11/BarClient.h"

namespace nevo {

/// The X window of one of our status items: an XEmbed client that docks to the bar, and docks again
/// when another bar comes.
class TrayWindow {
public:
    TrayWindow(XServer& x, BarClient& client);
    ~TrayWindow();
    TrayWindow(const TrayWindow&) = delete;
    TrayWindow& operator=(const TrayWindow&) = delete;

    xcb_window_t id() const { return window; }
    int width() const { return currentWidth; }
    int height() const { return currentHeight; }

    /// Pixels; -1 is as wide as `contentWidth`.
    void setLength(double length, int contentWidth);
    void setName(const std::string& name);
    /// Whether the item takes a slot at all.
    void setMapped(bool mapped);
    /// Asks the bar to take it in, unless one has.
    void dock();
    /// What the window shows from now on, also after it was covered.
    void show(const QImage& picture);

    /// An event of the connection; true when it was for this window. `resized` is called where the
    /// size has changed.
    bool handle(const xcb_generic_event_t& event, const std::function<void()>& resized);

private:
    void create();
    void becomeEmbedded(bool embedded);
    void writeProperties();

    XServer& server;
    BarClient& bar;
    xcb_window_t window = 0;
    xcb_colormap_t colormap = 0;
    xcb_visualid_t visual = 0;
    int currentWidth = 1;
    int currentHeight = 1;
    double itemLength = -1;
    int widthOfContent = 1;
    /// What the server has been told, so that the bar hears of true changes only.
    std::optional<std::uint32_t> writtenLength;
    std::optional<std::uint32_t> askedWidth;
    std::string itemName;
    bool isMapped = true;
    bool isEmbedded = false;
};

}  // namespace nevo
