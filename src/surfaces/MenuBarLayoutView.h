#pragma once

#include "platform/Controls.h"

namespace nevo {

/// Explains the icon and what stands left of it, by a picture of the menu bar in its two states and
/// four steps.
Control menuBarLayoutView();

}  // namespace nevo
