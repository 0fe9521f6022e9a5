#pragma once

#include "desktop/ContractSessions.h"
#include "desktop/TestClients.h"

namespace nevo::desktoptest {

/// The real desktop with a green ground, and panels on it. Places are root pixels from the top
/// left, colours 0xRRGGBB.
class PanelSession : public X11Session {
protected:
    static constexpr std::uint32_t ground = 0x00ff00;
    static constexpr Color blue{0, 0, 1, 1};
    static constexpr Color red{1, 0, 0, 1};

    void SetUp() override;

    /// As the logic counts: from the bottom left of the main monitor.
    Rect frameOf(const Rect& place) const;
    std::unique_ptr<Panel> create(const Rect& place, bool hasShadow = false,
                                  int level = statusItemWindowLevel);
    /// One view that fills a panel of that size, and takes the mouse.
    static PanelView filled(const Rect& place, const Color& color, const std::string& key = "body");
    static Image picture(int width, int height, const std::vector<std::uint32_t>& pixels);

    std::uint32_t pixel(Point place) const;
    testing::AssertionResult showsSoon(Point place, std::uint32_t color);

    /// The panel's window; the topmost if there are several, 0 if there is none on the screen.
    TopWindow topPanel() const;
    xcb_window_t window() const { return topPanel().window; }
    Rect windowPlace() const { return topPanel().place; }
    /// Of the panel's window, with its alpha: 0xAARRGGBB, premultiplied.
    std::uint32_t shade(int x, int y) const;

    /// For what must not happen, or comes by another way than what was waited for.
    void letTimePass();

    /// Keeps what the pointer does in `panel`.
    void listen(Panel& panel);
    /// "down:a" and so on, drags counted once.
    Names heardTypes() const;

    std::vector<PanelEvent> heard;
};

}  // namespace nevo::desktoptest
