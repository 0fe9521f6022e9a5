#pragma once

#include "menubar/Display.h"
#include "statusnotifier/Pixmap.h"

namespace nevo::menubar {

/// The window inside the frame of an item whose program has none: shows a picture, and takes the
/// clicks. Its server keeps the picture and draws it by itself.
class ItemFace {
public:
    /// A square of `size` pixels in `frame`, unmapped at first, still without a picture.
    ItemFace(const Display& x, xcb_window_t frame, int size);
    ~ItemFace();
    ItemFace(const ItemFace&) = delete;
    ItemFace& operator=(const ItemFace&) = delete;

    xcb_window_t window() const { return id; }
    /// `picture` stands in the middle, `overlay` (may be empty) in the lower right corner. Neither
    /// is larger than the face.
    void show(const statusnotifier::Picture& picture, const statusnotifier::Picture& overlay);

private:
    const Display& display;
    int size;
    xcb_window_t id;
    xcb_colormap_t colormap;
};

}  // namespace nevo::menubar
