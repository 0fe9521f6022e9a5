#include "menubar/TextPicture.h"

#include <cairo/cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

namespace nevo::menubar {

namespace {
constexpr double textSizeOfHeight = 0.54;

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextDeleter {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;
using Context = std::unique_ptr<cairo_t, ContextDeleter>;

Context contextOn(const Surface& surface, int height) {
    Context context(cairo_create(surface.get()));
    cairo_select_font_face(context.get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context.get(), std::round(height * textSizeOfHeight));
    return context;
}

int widthOfText(const std::string& text, int height) {
    Surface small(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1));
    cairo_text_extents_t extents;
    cairo_text_extents(contextOn(small, height).get(), text.c_str(), &extents);
    return static_cast<int>(std::ceil(extents.x_advance)) + 2;
}

/// What the server takes as one picture: as wide as a coordinate can say, and in one request.
int widest(xcb_connection_t* c, int height) {
    constexpr std::uint32_t widestOfServer = 32767;
    constexpr std::uint32_t header = 7;
    // In units of four bytes, which is a pixel.
    std::uint32_t most = xcb_get_maximum_request_length(c) - header;
    return static_cast<int>(std::min(widestOfServer, most / static_cast<std::uint32_t>(height)));
}
}  // namespace

void TextPicture::draw(const std::string& text, int height) {
    free();
    textWidth = std::min(widthOfText(text, height), widest(display.get(), height));
    Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, textWidth, height));
    Context context = contextOn(surface, height);
    cairo_font_extents_t font;
    cairo_font_extents(context.get(), &font);
    cairo_set_source_rgb(context.get(), 1, 1, 1);
    cairo_move_to(context.get(), 1, std::round((height + font.ascent - font.descent) / 2));
    cairo_show_text(context.get(), text.c_str());
    cairo_surface_flush(surface.get());

    auto c = display.get();
    xcb_pixmap_t pixmap = xcb_generate_id(c);
    auto pixelWidth = static_cast<std::uint16_t>(textWidth);
    auto pixelHeight = static_cast<std::uint16_t>(height);
    xcb_create_pixmap(c, 32, pixmap, display.root(), pixelWidth, pixelHeight);
    xcb_gcontext_t gc = xcb_generate_id(c);
    xcb_create_gc(c, gc, pixmap, 0, nullptr);
    int stride = cairo_image_surface_get_stride(surface.get());
    xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, pixelWidth, pixelHeight, 0, 0, 0, 32,
                  static_cast<std::uint32_t>(stride * height),
                  cairo_image_surface_get_data(surface.get()));
    content = xcb_generate_id(c);
    xcb_render_create_picture(c, content, pixmap, display.alphaFormat(), 0, nullptr);
    // The picture keeps the pixels.
    xcb_free_gc(c, gc);
    xcb_free_pixmap(c, pixmap);
}

void TextPicture::free() {
    if (content != 0) xcb_render_free_picture(display.get(), content);
    content = 0;
}

}  // namespace nevo::menubar
