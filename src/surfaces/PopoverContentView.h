#pragma once

#include <vector>

#include "core/AppState.h"
#include "platform/Menus.h"

namespace nevo {

/// What the popover tells: whether items are hidden now, and how the bar is used.
std::vector<PopoverRow> popoverContent(const AppState& appState);

}  // namespace nevo
