#pragma once

#include "menubar/Display.h"

namespace nevo::menubar {

/// The bar's height in pixels where the user has asked for none: 24 at a resolution of 96 dots per
/// inch, more where the X resource `Xft.dpi` says that the screen has more.
int usualHeight(const Display& display);

}  // namespace nevo::menubar
