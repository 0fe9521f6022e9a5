#pragma once

#include <QImage>

#include "platform/x11/QtWindow.h"

namespace nevo {

/// For a window that can't be translucent: what is less than half opaque of `picture` is cut off,
/// and the rest becomes opaque. Gives the part that stays.
Outline cutOut(QImage& picture);

}  // namespace nevo
