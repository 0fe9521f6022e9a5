#include "surfaces/AccessibilityService.h"

#include <fmt/format.h>

#include "core/StoredValues.h"
#include "core/Texts.h"

namespace nevo {

namespace {

constexpr const char* usualBundleIdentifier = "com.nevoapp.Nevo";
constexpr const char* accessibilityPane =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
constexpr const char* suppressionKey = "com.nevoapp.suppressApplicationsLocationPrompt";

/// As one word of a shell, whatever quotes it holds.
std::string shellQuoted(const std::string& path) {
    std::string result = "'";
    for (char c : path) {
        if (c == '\'') {
            result += "'\\''";
        } else {
            result += c;
        }
    }
    return result + "'";
}

}  // namespace

AccessibilityService::AccessibilityService(const Platform& desktop) : platform(desktop) {}

void AccessibilityService::promptIfNeeded() {
    if (isTrusted() || hasPrompted) return;
    hasPrompted = true;
    platform.accessibility.promptForTrust();
}

bool AccessibilityService::resetAccessibilityGrant() {
    std::string bundle = platform.application.bundleIdentifier();
    if (bundle.empty()) bundle = usualBundleIdentifier;
    auto status =
        platform.childProcesses.run("/usr/bin/tccutil", {"reset", "Accessibility", bundle});
    if (!status.value) {
        platform.log.writeSystemLog("[AccessibilityService] tccutil reset failed: " + status.error);
        return false;
    }
    return *status.value == 0;
}

void AccessibilityService::openSettings() { platform.workspace.openUrl(accessibilityPane); }

void AccessibilityService::promptMoveToApplicationsIfNeeded() {
    std::string path = platform.application.bundlePath();
    if (path.starts_with(platform.application.applicationsFolder())) return;
    DefaultsDomain& defaults = platform.defaults.standard();
    if (storedBool(defaults, suppressionKey)) return;
    AlertAnswer answer = platform.alerts.run(
        {"move-to-applications",
         text("Move Nevo to Applications?"),
         text("Nevo works best from /Applications/. Running from another location (e.g. Downloads) "
              "may cause TCC permissions to reset after updates."),
         {text("Move to Applications"), text("Skip for now")},
         text("Don't ask again")});
    if (answer.suppresses) defaults.set(suppressionKey, true);
    if (answer.button == 0) moveToApplications(path);
}

void AccessibilityService::moveToApplications(const std::string& bundlePath) {
    std::string destination =
        platform.application.applicationsFolder() + bundlePath.substr(bundlePath.rfind('/') + 1);
    std::optional<std::string> error;
    if (platform.files.exists(destination)) error = platform.files.moveToTrash(destination);
    if (!error) error = platform.files.move(bundlePath, destination);
    if (!error) error = platform.childProcesses.launch("/usr/bin/open", {destination});
    if (!error) {
        platform.application.terminate();
        return;
    }
    platform.alerts.run(
        {"could-not-move",
         text("Could Not Move Nevo"),
         text("Please drag Nevo.app to your Applications folder manually.") + "\n\n" + *error,
         {text("OK")},
         std::nullopt});
}

void AccessibilityService::restart() {
    std::string command =
        "sleep 0.5; /usr/bin/open " + shellQuoted(platform.application.bundlePath());
    if (!platform.childProcesses.launch("/bin/sh", {"-c", command}))
        platform.application.terminate();
}

}  // namespace nevo
