#pragma once

#include <functional>

#include "core/AppState.h"
#include "discovery/MenuBarScanner.h"
#include "placement/SectionManager.h"
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
    /// nullptr before the status items are there. Unset: nobody knows the items' sides.
    std::function<const SectionManager*()> sections = {};
    /// Shows a hidden item for a minute, by its persisted id; unset where that can't be done.
    std::function<void(const std::string&)> bringOut = {};
};

}  // namespace nevo
