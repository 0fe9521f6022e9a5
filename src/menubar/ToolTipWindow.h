#pragma once

#include <string>

#include "menubar/TextPicture.h"

namespace nevo::menubar {

/// A line of text below the bar, for an item whose program has no window to show one itself.
class ToolTipWindow {
public:
    explicit ToolTipWindow(const Display& x) : display(x), line(x) {}
    ~ToolTipWindow() { hide(); }
    ToolTipWindow(const ToolTipWindow&) = delete;
    ToolTipWindow& operator=(const ToolTipWindow&) = delete;

    /// With its middle at `x` and its top at `y`, moved so as to stay within `left` and `right`
    /// (root coordinates); `height` of the text's line.
    void show(const std::string& text, int x, int y, int left, int right, int height);
    void hide();

private:
    const Display& display;
    TextPicture line;
    xcb_window_t window = 0;
};

}  // namespace nevo::menubar
