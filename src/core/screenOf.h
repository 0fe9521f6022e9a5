#pragma once

#include <optional>

#include "platform/Screens.h"

namespace nevo {

/// The screen that a frame (origin at the bottom left) is on: the one that contains its centre,
/// else the first that it touches, else none.
std::optional<Screen> screenOf(const Screens& screens, const Rect& frame);

}  // namespace nevo
