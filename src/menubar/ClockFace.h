#pragma once

#include <xcb/render.h>

#include <string>

#include "menubar/Display.h"

namespace nevo::menubar {

/// The picture of the date and time, with a transparent ground. Draws text only when asked to.
class ClockFace {
public:
    ClockFace(const Display& x, int faceHeight) : display(x), height(faceHeight) {}
    ~ClockFace() { freePicture(); }
    ClockFace(const ClockFace&) = delete;
    ClockFace& operator=(const ClockFace&) = delete;

    /// Draws the time that it is now. False when the face shows it already.
    bool update();

    xcb_render_picture_t picture() const { return content; }
    int width() const { return faceWidth; }

private:
    void draw(const std::string& text);
    void freePicture();

    const Display& display;
    int height;
    int faceWidth = 0;
    std::string shown;
    xcb_render_picture_t content = 0;
};

/// A file descriptor that becomes readable at each full minute of the wall clock, and when that
/// clock is set. -1 on failure.
int openMinuteTimer();
/// Takes what the timer told and sets it to the next minute.
void armMinuteTimer(int descriptor);

}  // namespace nevo::menubar
