#include "platform/x11/WindowPictures.h"

#include <xcb/composite.h>

#include <algorithm>
#include <cstring>

namespace nevo {

namespace {

constexpr int mostPixels = 64 * 1024 * 1024;

std::optional<Image> readDrawable(const XServer& server, xcb_drawable_t drawable) {
    auto* connection = server.get();
    xcb::Reply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, drawable), nullptr));
    if (!size || size->width * size->height > mostPixels) return std::nullopt;
    if (size->depth != 24 && size->depth != 32) return std::nullopt;
    xcb::Reply<xcb_get_image_reply_t> pixels(
        xcb_get_image_reply(connection,
                            xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, 0, 0,
                                          size->width, size->height, ~0U),
                            nullptr));
    auto count = static_cast<std::size_t>(size->width) * size->height;
    if (!pixels || xcb_get_image_data_length(pixels.get()) < static_cast<int>(count * 4)) {
        return std::nullopt;
    }
    auto bitmap = std::make_shared<Bitmap>();
    bitmap->width = size->width;
    bitmap->height = size->height;
    bitmap->pixels.resize(count);
    std::memcpy(bitmap->pixels.data(), xcb_get_image_data(pixels.get()), count * 4);
    if (size->depth == 24) {
        for (auto& pixel : bitmap->pixels) pixel |= 0xff000000;
    }
    Size points{static_cast<double>(bitmap->width), static_cast<double>(bitmap->height)};
    return Image{std::move(bitmap), points, false, {}};
}

std::uint32_t over(std::uint32_t top, std::uint32_t bottom) {
    std::uint32_t rest = 255 - (top >> 24U);
    std::uint32_t result = 0;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        std::uint32_t channel =
            (top >> shift & 0xffU) + ((bottom >> shift & 0xffU) * rest + 127) / 255;
        result |= std::min<std::uint32_t>(channel, 255) << shift;
    }
    return result;
}

}  // namespace

std::optional<Image> pictureOfFrame(const XServer& server, xcb_window_t frame) {
    // A pixmap named once goes stale when the frame is resized: named anew for each picture.
    xcb_pixmap_t pixmap = xcb_generate_id(server.get());
    bool named = xcb::succeeded(
        server.get(), xcb_composite_name_window_pixmap_checked(server.get(), frame, pixmap));
    if (!named) return std::nullopt;
    auto image = readDrawable(server, pixmap);
    xcb_free_pixmap(server.get(), pixmap);
    return image;
}

std::optional<Image> pictureOfWindow(const XServer& server, xcb_window_t window) {
    return readDrawable(server, window);
}

void drawOver(Bitmap& onto, const Bitmap& image, int atX, int atY) {
    int left = std::max(0, -atX);
    int right = std::min(image.width, onto.width - atX);
    int top = std::max(0, -atY);
    int bottom = std::min(image.height, onto.height - atY);
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            auto from = static_cast<std::size_t>(y * image.width + x);
            auto to = static_cast<std::size_t>((atY + y) * onto.width + atX + x);
            onto.pixels[to] = over(image.pixels[from], onto.pixels[to]);
        }
    }
}

}  // namespace nevo
