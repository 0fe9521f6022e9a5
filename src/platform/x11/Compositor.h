#pragma once

#include <functional>

#include "platform/x11/EventPump.h"

namespace nevo {

/// Whether a compositing manager runs. Without one the transparent parts of a window are black.
class Compositor {
public:
    Compositor(XServer& x, EventPump& pump);

    /// Waits for the server's answer.
    bool isRunning() const;
    /// Called at a turn of the loop when one has come or gone.
    std::function<void()> changed;

private:
    XServer& server;
    std::uint8_t selectionEvent = 0;
};

}  // namespace nevo
