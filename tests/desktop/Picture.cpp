#include "desktop/Picture.h"

#include <cairo/cairo.h>

#include <cstring>

namespace nevo::desktoptest {

namespace {
constexpr std::uint32_t colourMask = 0x00ffffff;
constexpr std::uint32_t allPlanes = 0xffffffff;
}  // namespace

Picture Picture::ofScreen(const xcb::Connection& server) {
    auto c = server.get();
    const xcb_screen_t& screen = server.screen();
    xcb::Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
        c,
        xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, screen.root, 0, 0, screen.width_in_pixels,
                      screen.height_in_pixels, allPlanes),
        nullptr));
    Picture picture;
    if (!reply) return picture;
    picture.width = screen.width_in_pixels;
    picture.height = screen.height_in_pixels;
    picture.content.resize(static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) / 4);
    std::memcpy(picture.content.data(), xcb_get_image_data(reply.get()),
                picture.content.size() * 4);
    return picture;
}

std::vector<std::uint32_t> Picture::pixels(const Rect& area) const {
    std::vector<std::uint32_t> part;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (!area.contains({static_cast<double>(x), static_cast<double>(y)})) continue;
            part.push_back(content[static_cast<std::size_t>(y * width + x)] & colourMask);
        }
    }
    return part;
}

bool Picture::isEmptyBar(const Rect& area) const {
    for (double y = area.y; y < area.maxY(); ++y) {
        auto line = pixels({area.x, y, area.width, 1});
        if (line.empty() || line != std::vector(line.size(), line[0])) return false;
    }
    return true;
}

void Picture::save(const std::filesystem::path& pngFile) const {
    if (content.empty()) return;
    auto copy = content;
    auto bytes = reinterpret_cast<unsigned char*>(copy.data());
    auto surface =
        cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_RGB24, width, height, width * 4);
    cairo_surface_write_to_png(surface, pngFile.c_str());
    cairo_surface_destroy(surface);
}

}  // namespace nevo::desktoptest
