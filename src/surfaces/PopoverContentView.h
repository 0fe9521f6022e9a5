#pragma once

#include <functional>

#include "core/AppState.h"
#include "platform/Controls.h"

namespace nevo {

/// What the popover tells: whether items are hidden now, and how the bar is used; and the way to
/// the settings.
Control popoverContent(const AppState& appState, std::function<void()> openSettings);

}  // namespace nevo
