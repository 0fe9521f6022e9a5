#pragma once

#include <memory>

#include "platform/Platform.h"
#include "platform/x11/XServer.h"

namespace nevo {

/// The real desktop: all of the platform on an X display.
class X11Desktop {
public:
    /// `x` has claimed the display and knows that a bar is there. The arguments are Qt's.
    X11Desktop(XServer& x, int& argc, char** argv);
    ~X11Desktop();
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;

    Platform platform();

    /// Launches the application, runs until it terminates, and drops what still waits in the loop.
    /// The exit status.
    int run();

private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

}  // namespace nevo
