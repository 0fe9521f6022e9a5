#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Workspace.h"

namespace nevo {

/// This program, as the system sees it (`NSApplication`, `NSBundle.mainBundle`).
class Application {
public:
    virtual ~Application() = default;

    /// The bundle identifier; empty if none.
    virtual std::string bundleIdentifier() const = 0;
    virtual ProcessId processIdentifier() const = 0;
    /// Where the application is installed (`NSBundle.mainBundle.bundlePath`).
    virtual std::string bundlePath() const = 0;
    /// A text of the installation's information dictionary (`objectForInfoDictionaryKey:`); nothing
    /// when it is absent or no text.
    virtual std::optional<std::string> informationText(const std::string& key) const = 0;
    /// The folder where the system expects applications ("/Applications/"), with a slash at its
    /// end.
    virtual std::string applicationsFolder() const = 0;
    /// The languages that the user wants to read, best first (`NSLocale.preferredLanguages`): tags
    /// such as "en-GB" or "zh-Hans-CN". May be empty, and name what is no language.
    virtual std::vector<std::string> preferredLanguages() const = 0;
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    virtual ActivationPolicy activationPolicy() const = 0;
    /// `activateIgnoringOtherApps:` true.
    virtual void activate() = 0;
    /// A panel with the program's name and version, and a line about it
    /// (`orderFrontStandardAboutPanelWithOptions:`).
    virtual void orderFrontStandardAboutPanel(const std::string& title,
                                              const std::string& credits) = 0;
    /// `terminate:`: runs the quit sequence, and the process ends.
    virtual void terminate() = 0;

    /// What the application calls its delegate for: both set once, before the loop runs.
    std::function<void()> didFinishLaunching;
    std::function<void()> willTerminate;
};

}  // namespace nevo
