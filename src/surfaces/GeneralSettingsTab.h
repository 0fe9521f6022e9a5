#pragma once

#include <functional>
#include <memory>
#include <string>

#include "surfaces/SettingsServices.h"

namespace nevo {

/// Login item, animations, permissions, updates.
class GeneralSettingsTab : public std::enable_shared_from_this<GeneralSettingsTab> {
public:
    /// `changed` is told when the tab shows something else.
    GeneralSettingsTab(const SettingsServices& services, std::function<void()> changed);

    Control content();
    /// From here on the permissions are looked at each second.
    void appear();
    void disappear() { permissionPollTimer.reset(); }

private:
    void setLaunchAtLogin(bool wanted);
    void readPermissions();
    void grantAccessibility();
    Control permissions();
    Control updates();

    const SettingsServices& services;
    std::function<void()> changed;
    /// What went wrong at the last try; empty for nothing.
    std::string launchAtLoginError;
    bool accessibilityGranted = false;
    bool screenRecordingGranted = false;
    Registration permissionPollTimer;
};

}  // namespace nevo
