#include "menubar/ItemFrame.h"

#include <xcb/composite.h>
#include <xcb/shape.h>

#include <array>

namespace nevo::menubar {

std::unique_ptr<ItemFrame> ItemFrame::create(const Display& display, xcb_window_t bar,
                                             std::uint8_t depth, xcb_visualid_t visual, int height,
                                             std::uint32_t background) {
    xcb_render_pictformat_t format = display.formatOfVisual(visual);
    if (format == 0) return nullptr;
    auto c = display.get();
    std::unique_ptr<ItemFrame> frame(new ItemFrame(display));
    frame->place = {0, 0, height, height};

    // A window whose depth isn't its parent's must have its own border pixel and colour map.
    frame->colormap = xcb_generate_id(c);
    xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, frame->colormap, display.root(), visual);
    bool transparent = visual == display.alphaVisual() || depth == 32;
    std::array<std::uint32_t, 4> values{
        transparent ? 0 : background, 0,
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, frame->colormap};
    frame->id = xcb_generate_id(c);
    auto size = static_cast<std::uint16_t>(height);
    xcb_create_window(c, depth, frame->id, bar, 0, 0, size, size, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values.data());
    xcb_composite_redirect_window(c, frame->id, XCB_COMPOSITE_REDIRECT_MANUAL);

    frame->content = xcb_generate_id(c);
    std::uint32_t inferiors = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
    xcb_render_create_picture(c, frame->content, frame->id, format, XCB_RENDER_CP_SUBWINDOW_MODE,
                              &inferiors);
    frame->changes = xcb_generate_id(c);
    xcb_damage_create(c, frame->changes, frame->id, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    return frame;
}

ItemFrame::~ItemFrame() {
    auto c = display.get();
    xcb_damage_destroy(c, changes);
    xcb_render_free_picture(c, content);
    xcb_destroy_window(c, id);
    xcb_free_colormap(c, colormap);
}

bool ItemFrame::setRect(const PixelRect& rect) {
    if (rect == place) return false;
    std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(rect.x), static_cast<std::uint32_t>(rect.y),
        static_cast<std::uint32_t>(rect.width), static_cast<std::uint32_t>(rect.height)};
    xcb_configure_window(display.get(), id,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    place = rect;
    return true;
}

void ItemFrame::setMapped(bool mapped) {
    if (mapped == isMapped) return;
    isMapped = mapped;
    if (mapped) {
        xcb_map_window(display.get(), id);
    } else {
        xcb_unmap_window(display.get(), id);
    }
}

void ItemFrame::setTakesInput(bool takes) {
    if (takes == takesInput) return;
    takesInput = takes;
    if (takes) {
        xcb_shape_mask(display.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, id, 0, 0,
                       XCB_PIXMAP_NONE);
    } else {
        xcb_shape_rectangles(display.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                             XCB_CLIP_ORDERING_UNSORTED, id, 0, 0, 0, nullptr);
    }
}

void ItemFrame::raise() {
    std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(display.get(), id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

void ItemFrame::moveTo(xcb_window_t bar) {
    xcb_reparent_window(display.get(), id, bar, static_cast<std::int16_t>(place.x),
                        static_cast<std::int16_t>(place.y));
}

void ItemFrame::acknowledgeDamage() {
    xcb_damage_subtract(display.get(), changes, XCB_NONE, XCB_NONE);
}

}  // namespace nevo::menubar
