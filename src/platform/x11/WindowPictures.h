#pragma once

#include <optional>

#include "platform/Image.h"
#include "platform/x11/XServer.h"

namespace nevo {

/// The picture of a frame of the bar, also off the screen or transparent, as its programs drew it;
/// nothing when the window is gone or not mapped. Size in points is its pixels.
std::optional<Image> pictureOfFrame(const XServer& server, xcb_window_t frame);

/// The picture of any other window, as far as it stands on the screen.
std::optional<Image> pictureOfWindow(const XServer& server, xcb_window_t window);

/// `image` drawn over `onto` with its corner at `at` (pixels), clipped.
void drawOver(Bitmap& onto, const Bitmap& image, int atX, int atY);

}  // namespace nevo
