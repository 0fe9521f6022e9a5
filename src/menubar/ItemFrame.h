#pragma once

#include <xcb/damage.h>

#include <memory>

#include "menubar/Display.h"

namespace nevo::menubar {

/// The window around one item: a child of the bar's window, redirected, so that the bar paints it
/// (with transparency and opacity) and others can picture it wherever it stands. Always mapped
/// while its item is in the row, never unmapped to hide it: an unmapped window has no picture.
class ItemFrame {
public:
    /// For a client of that depth and visual; `background` fills the frame of one without
    /// transparency. Nullptr when windows of this visual can't be painted.
    static std::unique_ptr<ItemFrame> create(const Display& display, xcb_window_t bar,
                                             std::uint8_t depth, xcb_visualid_t visual, int height,
                                             std::uint32_t background);
    ~ItemFrame();
    ItemFrame(const ItemFrame&) = delete;
    ItemFrame& operator=(const ItemFrame&) = delete;

    xcb_window_t window() const { return id; }
    /// All that the frame shows; stays good when its size changes.
    xcb_render_picture_t picture() const { return content; }
    xcb_damage_damage_t damage() const { return changes; }
    /// Relative to the bar's window.
    const PixelRect& rect() const { return place; }

    /// Moves and resizes it; false when it was there already.
    bool setRect(const PixelRect& rect);
    void setMapped(bool mapped);
    /// Without input, clicks go to what is below, also those on the client inside.
    void setTakesInput(bool takes);
    void raise();
    void moveTo(xcb_window_t bar);
    /// Lets the next change be told again.
    void acknowledgeDamage();

private:
    explicit ItemFrame(const Display& x) : display(x) {}

    const Display& display;
    xcb_window_t id = 0;
    xcb_colormap_t colormap = 0;
    xcb_render_picture_t content = 0;
    xcb_damage_damage_t changes = 0;
    PixelRect place;
    bool isMapped = false;
    bool takesInput = true;
};

}  // namespace nevo::menubar
