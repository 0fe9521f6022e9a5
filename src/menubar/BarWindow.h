#pragma once

#include "menubar/Display.h"

namespace nevo::menubar {

/// The bar on one monitor: its window along the top edge, the space that window managers keep free
/// for it, and painting on it.
class BarWindow {
public:
    /// `reservesSpace`: no other monitor lies above this one, so a strut from the root's top edge
    /// hits nobody else.
    BarWindow(const Display& display, const PixelRect& barRect, bool reservesSpace);
    ~BarWindow();
    BarWindow(const BarWindow&) = delete;
    BarWindow& operator=(const BarWindow&) = delete;

    xcb_window_t window() const { return id; }
    /// In root coordinates.
    const PixelRect& rect() const { return place; }
    void setRect(const PixelRect& barRect, bool reservesSpace);

    // One repaint: begin, draw in order from back to front, end.
    void beginPaint();
    /// `x` relative to the bar; the picture's own alpha counts, times `opacity` (0 to 0xffffffff).
    void draw(xcb_render_picture_t picture, int x, int width, int height, std::uint32_t opacity);
    void endPaint();

    /// The pixel value of the bar's ground.
    static constexpr std::uint32_t groundPixel = 0x1e1f24;

private:
    void createWindow();
    void createStrutWindow();
    void publishStrut(bool reservesSpace);
    void createBuffer();
    void freeBuffer();

    const Display& display;
    PixelRect place;
    xcb_window_t id = 0;
    xcb_window_t strut = 0;
    xcb_gcontext_t gc = 0;
    xcb_pixmap_t buffer = 0;
    xcb_render_picture_t canvas = 0;
};

}  // namespace nevo::menubar
