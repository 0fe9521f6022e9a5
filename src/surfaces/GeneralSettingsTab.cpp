#include "surfaces/GeneralSettingsTab.h"

#include <utility>

#include "core/Texts.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

constexpr double pollInterval = 1.0;

/// A permission's name and what it is for, and whether it is held.
Control permissionRow(const std::string& name, bool isGranted, bool isRequired) {
    std::string key = "settings.general.permissions." + name;
    Control row = rowOf({});
    row.key = key;
    row.title = text(key + ".title");
    row.isOn = isGranted;
    Control title = textOf(key + ".title");
    title.detail = text(key + ".description");
    const char* missing = isRequired ? "settings.general.permissions.required_badge"
                                     : "settings.general.permissions.missing_badge";
    const char* state = isGranted ? "settings.general.permissions.granted_badge" : missing;
    Control badge = plainText(key + ".state", text(state), Control::TextStyle::badge);
    row.children = {title, badge};
    return row;
}

}  // namespace

GeneralSettingsTab::GeneralSettingsTab(const SettingsServices& given, std::function<void()> told)
    : services(given), changed(std::move(told)) {}

void GeneralSettingsTab::appear() {
    readPermissions();
    permissionPollTimer =
        services.platform.runLoop.timer(pollInterval, true, [weak = weak_from_this()] {
            if (auto self = weak.lock()) self->readPermissions();
        });
}

void GeneralSettingsTab::readPermissions() {
    bool trusted = services.accessibility.isTrusted();
    bool recording = services.platform.screenCapture.preflightAccess();
    bool isNew = trusted != accessibilityGranted || recording != screenRecordingGranted;
    accessibilityGranted = trusted;
    screenRecordingGranted = recording;
    if (isNew) changed();
}

Control GeneralSettingsTab::content() {
    auto weak = weak_from_this();
    AppState& state = services.appState;
    Control login = toggleOf("settings.general.launch_at_login",
                             services.platform.loginItem.isRegistered(), [weak](bool wanted) {
                                 if (auto self = weak.lock()) self->setLaunchAtLogin(wanted);
                             });
    Control start = columnOf({login});
    if (!launchAtLoginError.empty()) {
        start.children.push_back(plainText("settings.general.launch_at_login.error",
                                           launchAtLoginError, Control::TextStyle::warning));
    }
    start.children.push_back(toggleOf("settings.general.animations.label",
                                      state.animationsEnabled(),
                                      [&state](bool on) { state.setAnimationsEnabled(on); }));
    return columnOf({start, permissions(), updates()});
}

void GeneralSettingsTab::setLaunchAtLogin(bool wanted) {
    LoginItem& item = services.platform.loginItem;
    auto error = item.setRegistered(wanted);
    launchAtLoginError = error.value_or("");
    if (!error) services.appState.setLaunchAtLogin(item.isRegistered());
    changed();
}

Control GeneralSettingsTab::permissions() {
    Control accessibility = permissionRow("accessibility", accessibilityGranted, true);
    if (services.platform.accessibility.isTrustUserControlled()) {
        accessibility.children.push_back(
            buttonOf("settings.general.permissions.grant_button", [weak = weak_from_this()] {
                if (auto self = weak.lock()) self->grantAccessibility();
            }));
    }
    return sectionOf(
        "settings.general.permissions.section_title",
        {accessibility, permissionRow("screen_recording", screenRecordingGranted, false)});
}

void GeneralSettingsTab::grantAccessibility() {
    AccessibilityService& service = services.accessibility;
    if (service.isTrusted()) {
        service.openSettings();
    } else {
        service.resetAccessibilityGrant();
        service.resetHasPrompted();
        service.promptIfNeeded();
    }
    readPermissions();
}

Control GeneralSettingsTab::updates() {
    Updater* updater = services.updater();
    Control automatic = toggleOf("settings.general.updates.auto_check_toggle",
                                 updater != nullptr && updater->automaticallyChecksForUpdates(),
                                 [find = services.updater, told = changed](bool on) {
                                     if (Updater* now = find())
                                         now->setAutomaticallyChecksForUpdates(on);
                                     told();
                                 });
    // Where the system's packages bring the updates there is nothing to choose.
    automatic.isEnabled = updater != nullptr;
    return sectionOf(
        "settings.general.updates.section_title",
        {automatic, buttonOf("menu_bar.context_menu.check_for_updates", services.checkForUpdates)});
}

}  // namespace nevo
