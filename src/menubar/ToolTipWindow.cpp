#include "menubar/ToolTipWindow.h"

#include <algorithm>
#include <array>

#include "menubar/BarWindow.h"

namespace nevo::menubar {

namespace {
constexpr int margin = 8;
}  // namespace

void ToolTipWindow::show(const std::string& text, int x, int y, int left, int right, int height) {
    hide();
    line.draw(text, height);
    auto c = display.get();
    const xcb_screen_t& screen = display.server().screen();
    int width = std::min(line.width() + 2 * margin, std::max(1, right - left));
    int place = std::clamp(x - width / 2, left, std::max(left, right - width));
    auto pixelWidth = static_cast<std::uint16_t>(width);
    auto pixelHeight = static_cast<std::uint16_t>(height);
    window = xcb_generate_id(c);
    std::array<std::uint32_t, 2> values{BarWindow::groundPixel, 1};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, display.root(),
                      static_cast<std::int16_t>(place), static_cast<std::int16_t>(y), pixelWidth,
                      pixelHeight, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values.data());

    // As its background, which the server draws by itself.
    xcb_pixmap_t pixmap = xcb_generate_id(c);
    xcb_create_pixmap(c, screen.root_depth, pixmap, window, pixelWidth, pixelHeight);
    xcb_gcontext_t gc = xcb_generate_id(c);
    xcb_create_gc(c, gc, pixmap, XCB_GC_FOREGROUND, values.data());
    xcb_rectangle_t all{0, 0, pixelWidth, pixelHeight};
    xcb_poly_fill_rectangle(c, pixmap, gc, 1, &all);
    xcb_render_picture_t canvas = xcb_generate_id(c);
    xcb_render_create_picture(c, canvas, pixmap, display.formatOfVisual(screen.root_visual), 0,
                              nullptr);
    xcb_render_composite(c, XCB_RENDER_PICT_OP_OVER, line.picture(), XCB_RENDER_PICTURE_NONE,
                         canvas, 0, 0, 0, 0, margin, 0, pixelWidth, pixelHeight);
    xcb_change_window_attributes(c, window, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_render_free_picture(c, canvas);
    xcb_free_gc(c, gc);
    xcb_free_pixmap(c, pixmap);
    xcb_map_window(c, window);
}

void ToolTipWindow::hide() {
    if (window != 0) xcb_destroy_window(display.get(), window);
    window = 0;
}

}  // namespace nevo::menubar
