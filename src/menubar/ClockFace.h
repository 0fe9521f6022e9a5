#pragma once

#include <string>

#include "menubar/TextPicture.h"

namespace nevo::menubar {

/// The picture of the date and time, with a transparent ground. Draws text only when asked to.
class ClockFace {
public:
    ClockFace(const Display& x, int faceHeight) : face(x), height(faceHeight) {}

    /// Draws the time that it is now. False when the face shows it already.
    bool update();

    xcb_render_picture_t picture() const { return face.picture(); }
    int width() const { return face.width(); }

private:
    TextPicture face;
    int height;
    std::string shown;
};

/// A file descriptor that becomes readable at each full minute of the wall clock, and when that
/// clock is set. -1 on failure.
int openMinuteTimer();
/// Takes what the timer told and sets it to the next minute.
void armMinuteTimer(int descriptor);

}  // namespace nevo::menubar
