#pragma once

#include <xcb/render.h>

#include <string>

#include "menubar/Display.h"

namespace nevo::menubar {

/// A line of white text on a transparent ground. Draws only when told to.
class TextPicture {
public:
    explicit TextPicture(const Display& x) : display(x) {}
    ~TextPicture() { free(); }
    TextPicture(const TextPicture&) = delete;
    TextPicture& operator=(const TextPicture&) = delete;

    /// Shows `text`, in letters that fit into a line `height` pixels high, from now on.
    void draw(const std::string& text, int height);

    /// 0 before the first drawing.
    xcb_render_picture_t picture() const { return content; }
    int width() const { return textWidth; }

private:
    void free();

    const Display& display;
    int textWidth = 0;
    xcb_render_picture_t content = 0;
};

}  // namespace nevo::menubar
