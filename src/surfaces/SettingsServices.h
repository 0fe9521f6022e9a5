#pragma once

#include <functional>

#include "core/AppState.h"
#include "discovery/MenuBarScanner.h"
#include "surfaces/AccessibilityService.h"

namespace nevo {

/// What the settings work with. All outlive them.
struct SettingsServices {
    const Platform& platform;
    AppState& appState;
    MenuBarScanner& scanner;
    AccessibilityService& accessibility;
    std::function<void()> checkForUpdates;
    /// nullptr where the program has no updater.
    std::function<Updater*()> updater;
};

}  // namespace nevo
