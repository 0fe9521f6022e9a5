#include "platform/sim/SimWorkspace.h"

#include <fmt/format.h>

namespace nevo {

RunningApplication SimWorkspace::self() const {
    RunningApplication result;
    result.pid = program.pid;
    result.bundleIdentifier = program.bundleIdentifier;
    result.localizedName = program.name;
    result.activationPolicy = ownPolicy;
    return result;
}

std::vector<RunningApplication> SimWorkspace::runningApplications() const {
    std::vector<RunningApplication> result;
    if (ownProgramRuns) result.push_back(self());
    for (const SimOtherProgram& other : applications.all()) {
        if (other.running) result.push_back(other.application);
    }
    return result;
}

std::optional<RunningApplication> SimWorkspace::runningApplication(ProcessId pid) const {
    if (ownProgramRuns && pid == program.pid) return self();
    const SimOtherProgram* other = applications.runningWithPid(pid);
    return other != nullptr ? std::optional(other->application) : std::nullopt;
}

std::optional<RunningApplication> SimWorkspace::runningApplication(
    const std::string& bundleIdentifier) const {
    if (ownProgramRuns && bundleIdentifier == program.bundleIdentifier) return self();
    const SimOtherProgram* other = applications.runningWithBundle(bundleIdentifier);
    return other != nullptr ? std::optional(other->application) : std::nullopt;
}

bool SimWorkspace::activate(ProcessId pid) {
    auto running = runningApplication(pid);
    if (!running) return false;
    active = pid;
    trace.note("program", fmt::format("{} comes to the front",
                                      running->localizedName.value_or(running->bundleIdentifier)));
    tell("NSWorkspaceDidActivateApplicationNotification", *running);
    return true;
}

std::optional<std::string> SimWorkspace::applicationPath(
    const std::string& bundleIdentifier) const {
    for (const SimOtherProgram& other : applications.all()) {
        const RunningApplication& known = other.application;
        if (bundleIdentifier.empty() || known.bundleIdentifier != bundleIdentifier) continue;
        return fmt::format("/Applications/{}.app", known.localizedName.value_or(other.handle));
    }
    return std::nullopt;
}

std::string SimWorkspace::displayName(const std::string& path) const {
    return path.substr(path.rfind('/') + 1);
}

bool SimWorkspace::openUrl(const std::string& url) {
    if (faults.strikes(SimOperation::openUrl)) return false;
    trace.note("url", url);
    urls.push_back(url);
    return true;
}

bool SimWorkspace::launch(const std::string& handle) {
    if (!applications.launch(handle)) return false;
    tell("NSWorkspaceDidLaunchApplicationNotification", applications.find(handle)->application);
    return true;
}

bool SimWorkspace::kill(const std::string& handle) {
    if (!applications.kill(handle)) return false;
    const RunningApplication& ended = applications.find(handle)->application;
    tell("NSWorkspaceDidTerminateApplicationNotification", ended);
    if (ended.pid == active) {
        active = 0;
        tell("NSWorkspaceDidDeactivateApplicationNotification", ended);
    }
    return true;
}

void SimWorkspace::tell(const std::string& notification, const RunningApplication& about) {
    UserInfo info{{"NSWorkspaceApplicationKey", std::to_string(about.pid)},
                  {"bundleIdentifier", about.bundleIdentifier}};
    loop.post([this, notification, info] { notifications.post(notification, info); });
}

std::optional<std::vector<AccessibilityElement>> SimAccessibility::extrasMenuBarChildren(
    ProcessId pid) const {
    const SimOtherProgram* other = applications.runningWithPid(pid);
    bool answers = permissions.accessibility && other != nullptr && !other->hangs &&
                   !faults.strikes(SimOperation::extrasMenuBar);
    if (!answers || (other->items.empty() && other->extraChildren.empty())) return std::nullopt;
    std::vector<AccessibilityElement> result;
    for (const SimItemPlan& plan : other->items) {
        const SimWindow* held = windows.find(plan.window);
        if (held == nullptr || !plan.accessible) continue;
        result.push_back({Point{held->frame.x, held->frame.y},
                          Size{held->frame.width, held->frame.height}, plan.title,
                          plan.description});
    }
    result.insert(result.end(), other->extraChildren.begin(), other->extraChildren.end());
    return result;
}

}  // namespace nevo
