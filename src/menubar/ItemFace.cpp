#include "menubar/ItemFace.h"

#include <algorithm>
#include <array>
#include <vector>

namespace nevo::menubar {

using statusnotifier::Picture;

namespace {
constexpr std::uint8_t depth = 32;

/// `over` on `under`, premultiplied both.
std::uint32_t composed(std::uint32_t over, std::uint32_t under) {
    std::uint32_t transparency = 255 - (over >> 24U);
    std::uint32_t result = 0;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        std::uint32_t below = (under >> shift & 0xFFU) * transparency;
        result |= std::min(255U, (over >> shift & 0xFFU) + (below + 127) / 255) << shift;
    }
    return result;
}

/// `picture` with its upper left corner at `left`, `top` of a square canvas.
void draw(std::vector<std::uint32_t>& canvas, int side, const Picture& picture, int left, int top) {
    for (int y = std::max(0, -top); y < picture.height && top + y < side; ++y) {
        for (int x = std::max(0, -left); x < picture.width && left + x < side; ++x) {
            auto from = static_cast<std::size_t>(y * picture.width + x);
            auto to = static_cast<std::size_t>((top + y) * side + left + x);
            canvas[to] = composed(picture.pixels[from], canvas[to]);
        }
    }
}
}  // namespace

ItemFace::ItemFace(const Display& x, xcb_window_t frame, int side)
    : display(x), size(side), id(xcb_generate_id(x.get())), colormap(xcb_generate_id(x.get())) {
    auto c = display.get();
    xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, colormap, display.root(),
                        display.alphaVisual());
    std::array<std::uint32_t, 4> values{
        0, 0,
        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_ENTER_WINDOW |
            XCB_EVENT_MASK_LEAVE_WINDOW,
        colormap};
    auto length = static_cast<std::uint16_t>(size);
    xcb_create_window(c, depth, id, frame, 0, 0, length, length, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      display.alphaVisual(),
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values.data());
}

ItemFace::~ItemFace() {
    xcb_destroy_window(display.get(), id);
    xcb_free_colormap(display.get(), colormap);
}

void ItemFace::show(const Picture& picture, const Picture& overlay) {
    std::vector<std::uint32_t> canvas(static_cast<std::size_t>(size * size));
    draw(canvas, size, picture, (size - picture.width) / 2, (size - picture.height) / 2);
    draw(canvas, size, overlay, size - overlay.width, size - overlay.height);

    auto c = display.get();
    auto length = static_cast<std::uint16_t>(size);
    xcb_pixmap_t pixmap = xcb_generate_id(c);
    xcb_create_pixmap(c, depth, pixmap, id, length, length);
    xcb_gcontext_t gc = xcb_generate_id(c);
    xcb_create_gc(c, gc, pixmap, 0, nullptr);
    xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, length, length, 0, 0, 0, depth,
                  static_cast<std::uint32_t>(canvas.size() * sizeof canvas[0]),
                  reinterpret_cast<const std::uint8_t*>(canvas.data()));
    xcb_change_window_attributes(c, id, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_clear_area(c, 0, id, 0, 0, 0, 0);
    // The window keeps the pixels.
    xcb_free_gc(c, gc);
    xcb_free_pixmap(c, pixmap);
}

}  // namespace nevo::menubar
