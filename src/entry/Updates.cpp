#include <fmt/format.h>

#include "core/debugLog.h"
#include "core/describe.h"
#include "entry/AppDelegate.h"

namespace nevo {

namespace {

constexpr const char* publicKeyName = "SUPublicEDKey";
/// Of an EdDSA public key.
constexpr std::size_t keyBytes = 32;
constexpr const char* blanks = " \t\n\v\f\r";
constexpr std::string_view base64Digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// How many bytes a Base64 text stands for; nothing when it isn't one.
std::optional<std::size_t> base64Size(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && !text.empty() && text.back() == '=') {
        text.remove_suffix(1);
        ++padding;
    }
    if (text.find_first_not_of(base64Digits) != std::string_view::npos) return std::nullopt;
    return (text.size() + padding) / 4 * 3 - padding;
}

std::string trimmed(const std::string& text) {
    auto first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace

bool AppDelegate::hasUpdateKey() const {
    auto key = platform.application.informationText(publicKeyName);
    if (!key) return false;
    std::string text = trimmed(*key);
    return !text.empty() && base64Size(text) == keyBytes;
}

void AppDelegate::startUpdater() {
    if (!hasUpdateKey()) return;
    auto weak = weak_from_this();
    UpdaterDelegate told;
    told.willShowModalAlert = [weak] {
        auto self = weak.lock();
        if (!self) return;
        self->comeForUpdates();
        debugLog("[Updates] Sparkle will show modal alert");
    };
    told.willHandleShowingUpdate = [weak](bool handle, const UpdateItem& item, bool byUser) {
        auto self = weak.lock();
        if (!self) return;
        self->comeForUpdates();
        debugLog(fmt::format("[Updates] Sparkle will show update={} handle={} userInitiated={}",
                             item.displayVersionString, describe(handle), describe(byUser)));
    };
    told.willFinishUpdateSession = [weak] {
        auto self = weak.lock();
        if (!self) return;
        self->restoreActivationPolicy();
        debugLog("[Updates] Sparkle user session finished");
    };
    told.didFindValidUpdate = [](const UpdateItem& item) {
        debugLog(fmt::format("[Updates] found update displayVersion={} version={}",
                             item.displayVersionString, item.versionString));
    };
    told.didAbort = [weak](const std::string& error) {
        debugLog("[Updates] check aborted: " + error);
        if (auto self = weak.lock()) self->restoreActivationPolicy();
    };
    told.didFinishUpdateCycle = [weak](const std::string& error) {
        debugLog(error.empty() ? "[Updates] cycle finished"
                               : "[Updates] cycle finished with error: " + error);
        if (auto self = weak.lock()) self->restoreActivationPolicy();
    };
    updaterController = platform.updaters.create(std::move(told));
}

void AppDelegate::checkForUpdates(const MenuItem* sender) {
    if (!updaterController) {
        debugLog("[Updates] check requested but Sparkle updater is unavailable");
        return;
    }
    ActivationPolicy policy = platform.application.activationPolicy();
    debugLog(
        fmt::format("[Updates] manual check requested; previousActivationPolicy={} canCheck={}",
                    static_cast<int>(policy), describe(updaterController->canCheckForUpdates())));
    comeForUpdates();
    updaterController->checkForUpdates(sender);
}

/// The updater's windows can't come to the front while the program is an agent. The policy of
/// before counts from the first of these calls to the session's end, however the session began and
/// whatever is asked for meanwhile: no icon may stay among the open applications for good.
void AppDelegate::comeForUpdates() {
    if (!updateCheckPreviousActivationPolicy)
        updateCheckPreviousActivationPolicy = platform.application.activationPolicy();
    platform.application.setActivationPolicy(ActivationPolicy::regular);
    platform.application.activate();
}

void AppDelegate::restoreActivationPolicy() {
    auto policy = std::exchange(updateCheckPreviousActivationPolicy, std::nullopt);
    if (policy) platform.application.setActivationPolicy(*policy);
}

}  // namespace nevo
