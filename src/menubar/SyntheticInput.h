#pragma once

#include "menubar/Display.h"

namespace nevo::menubar {

/// Tells presses that programs made (XTest) from those of a hand. Core events don't say which
/// device they came from, but a raw event does, and comes before them.
class SyntheticInput {
public:
    explicit SyntheticInput(const Display& x);

    /// To be called with each generic event.
    void take(const xcb_generic_event_t& event);
    /// Whether the last press of a button was made by a program. True where the server can't tell.
    bool lastPressWasSynthetic() const;

private:
    const Display& display;
    std::uint16_t lastDevice = 0;
};

}  // namespace nevo::menubar
