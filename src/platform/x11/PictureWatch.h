#pragma once

#include <functional>
#include <memory>

#include "platform/Registration.h"
#include "platform/x11/EventPump.h"

namespace nevo {

/// Hears of what is drawn into windows (the Damage extension). What is drawn between two looks at a
/// window makes one event, however much it is.
class PictureWatch {
public:
    PictureWatch(XServer& x, EventPump& pump);
    ~PictureWatch();

    /// Calls `changed` once for all that is drawn until the next `willRead`, the first time at
    /// once. Empty on a server without the extension.
    Registration watch(xcb_window_t window, std::function<void()> changed);
    /// From now on changes are told again. To be called before the picture is read: what is drawn
    /// in between is told, too.
    void willRead(xcb_window_t window);

private:
    struct Held;
    /// A registration finds it gone when the desktop is.
    std::shared_ptr<Held> held;
};

}  // namespace nevo
