#include "menubar/BarWindow.h"

#include <array>
#include <string_view>

#include "platform/xcb/Properties.h"

namespace nevo::menubar {

namespace {
constexpr std::uint32_t opaque = 0xFFFFFFFF;
constexpr std::string_view windowClass("nevo-menubar\0Nevo-menubar\0", 26);

/// Components from 0 to 0xffff.
constexpr xcb_render_color_t colorOf(std::uint32_t rgb) {
    auto part = [rgb](int shift) {
        return static_cast<std::uint16_t>(((rgb >> shift) & 0xFF) * 0x101);
    };
    return {part(16), part(8), part(0), 0xFFFF};
}
constexpr xcb_render_color_t ground = colorOf(BarWindow::groundPixel);
constexpr xcb_render_color_t topLine = colorOf(0x2a2c33);
constexpr xcb_render_color_t bottomLine = colorOf(0x101114);
}  // namespace

BarWindow::BarWindow(const Display& x, const PixelRect& barRect, bool reservesSpace)
    : display(x), place(barRect) {
    createWindow();
    createStrutWindow();
    publishStrut(reservesSpace);
    createBuffer();
    xcb_map_window(display.get(), id);
    xcb_map_window(display.get(), strut);
}

BarWindow::~BarWindow() {
    freeBuffer();
    xcb_free_gc(display.get(), gc);
    xcb_destroy_window(display.get(), strut);
    xcb_destroy_window(display.get(), id);
}

/// Override-redirect: inside a window manager's frame its own grabs would win over the bar's.
void BarWindow::createWindow() {
    auto c = display.get();
    id = xcb_generate_id(c);
    std::array<std::uint32_t, 3> values{groundPixel, 1,
                                        XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_VISIBILITY_CHANGE};
    xcb_create_window(
        c, XCB_COPY_FROM_PARENT, id, display.root(), static_cast<std::int16_t>(place.x),
        static_cast<std::int16_t>(place.y), static_cast<std::uint16_t>(place.width),
        static_cast<std::uint16_t>(place.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
        XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
        values.data());
    xcb_atom_t dock = display.atom("_NET_WM_WINDOW_TYPE_DOCK");
    xcb::writeNumbers(c, id, display.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM,
                      std::span(&dock, 1));
    xcb::writeText(c, id, display.atom("_NET_WM_NAME"), display.atom("UTF8_STRING"),
                   "nevo-menubar");
    xcb::writeText(c, id, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, windowClass);
    gc = xcb_generate_id(c);
    std::uint32_t noExposures = 0;
    xcb_create_gc(c, gc, id, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
}

/// Window managers ignore the strut of an override-redirect window, so a managed one of a single
/// pixel carries it.
void BarWindow::createStrutWindow() {
    auto c = display.get();
    strut = xcb_generate_id(c);
    std::uint32_t pixel = groundPixel;
    xcb_create_window(c, XCB_COPY_FROM_PARENT, strut, display.root(),
                      static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y), 1, 1,
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL,
                      &pixel);
    xcb_atom_t dock = display.atom("_NET_WM_WINDOW_TYPE_DOCK");
    xcb::writeNumbers(c, strut, display.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM,
                      std::span(&dock, 1));
    xcb::writeText(c, strut, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, windowClass);
    xcb::writeText(c, strut, display.atom("_NET_WM_NAME"), display.atom("UTF8_STRING"),
                   "nevo-menubar space");
    constexpr std::uint32_t inputHint = 1;
    std::array<std::uint32_t, 9> hints{inputHint, 0};
    xcb::writeNumbers(c, strut, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, hints);
    constexpr std::uint32_t userPosition = 1;
    std::array<std::uint32_t, 18> sizeHints{userPosition};
    xcb::writeNumbers(c, strut, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, sizeHints);
}

void BarWindow::publishStrut(bool reservesSpace) {
    std::array<std::uint32_t, 12> values{};
    if (reservesSpace) {
        constexpr std::size_t top = 2;
        constexpr std::size_t topStart = 8;
        constexpr std::size_t topEnd = 9;
        values[top] = static_cast<std::uint32_t>(place.y + place.height);
        values[topStart] = static_cast<std::uint32_t>(place.x);
        values[topEnd] = static_cast<std::uint32_t>(place.x + place.width - 1);
    }
    auto c = display.get();
    xcb::writeNumbers(c, strut, display.atom("_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL, values);
    xcb::writeNumbers(c, strut, display.atom("_NET_WM_STRUT"), XCB_ATOM_CARDINAL,
                      std::span(values).first(4));
}

void BarWindow::setRect(const PixelRect& barRect, bool reservesSpace) {
    if (barRect != place) {
        place = barRect;
        std::array<std::uint32_t, 4> values{
            static_cast<std::uint32_t>(place.x), static_cast<std::uint32_t>(place.y),
            static_cast<std::uint32_t>(place.width), static_cast<std::uint32_t>(place.height)};
        xcb_configure_window(display.get(), id,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT,
                             values.data());
        xcb_configure_window(display.get(), strut, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                             values.data());
        freeBuffer();
        createBuffer();
    }
    publishStrut(reservesSpace);
}

void BarWindow::createBuffer() {
    auto c = display.get();
    const xcb_screen_t& screen = display.server().screen();
    buffer = xcb_generate_id(c);
    xcb_create_pixmap(c, screen.root_depth, buffer, id, static_cast<std::uint16_t>(place.width),
                      static_cast<std::uint16_t>(place.height));
    canvas = xcb_generate_id(c);
    xcb_render_create_picture(c, canvas, buffer, display.formatOfVisual(screen.root_visual), 0,
                              nullptr);
}

void BarWindow::freeBuffer() {
    xcb_render_free_picture(display.get(), canvas);
    xcb_free_pixmap(display.get(), buffer);
}

void BarWindow::beginPaint() {
    auto width = static_cast<std::uint16_t>(place.width);
    auto height = static_cast<std::uint16_t>(place.height);
    auto fill = [&](const xcb_render_color_t& color, xcb_rectangle_t area) {
        xcb_render_fill_rectangles(display.get(), XCB_RENDER_PICT_OP_SRC, canvas, color, 1, &area);
    };
    fill(ground, {0, 0, width, height});
    fill(topLine, {0, 0, width, 1});
    fill(bottomLine, {0, static_cast<std::int16_t>(height - 1), width, 1});
}

void BarWindow::draw(xcb_render_picture_t picture, int x, int width, int height,
                     std::uint32_t opacity) {
    auto c = display.get();
    xcb_render_picture_t mask = XCB_RENDER_PICTURE_NONE;
    if (opacity != opaque) {
        mask = xcb_generate_id(c);
        xcb_render_create_solid_fill(c, mask, {0, 0, 0, static_cast<std::uint16_t>(opacity >> 16)});
    }
    xcb_render_composite(c, XCB_RENDER_PICT_OP_OVER, picture, mask, canvas, 0, 0, 0, 0,
                         static_cast<std::int16_t>(x), 0, static_cast<std::uint16_t>(width),
                         static_cast<std::uint16_t>(height));
    if (mask != XCB_RENDER_PICTURE_NONE) xcb_render_free_picture(c, mask);
}

void BarWindow::endPaint() {
    xcb_copy_area(display.get(), buffer, id, gc, 0, 0, 0, 0,
                  static_cast<std::uint16_t>(place.width),
                  static_cast<std::uint16_t>(place.height));
}

}  // namespace nevo::menubar
