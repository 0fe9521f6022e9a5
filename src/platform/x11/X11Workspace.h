#pragma once

#include <functional>
#include <map>

#include "platform/Workspace.h"
#include "platform/x11/BarClient.h"
#include "platform/x11/ClientWindows.h"
#include "platform/xcb/DesktopEntries.h"

namespace nevo {

/// The running programs: those that own items of the bar or ordinary windows.
class X11Workspace : public Workspace {
public:
    X11Workspace(BarClient& client, ClientWindows& clientWindows, xcb::DesktopEntries& installed);

    std::vector<RunningApplication> runningApplications() const override;
    std::optional<RunningApplication> runningApplication(ProcessId pid) const override;
    std::optional<RunningApplication> runningApplication(
        const std::string& bundleIdentifier) const override;
    std::optional<RunningApplication> frontmostApplication() const override;
    bool activate(ProcessId pid) override;
    std::optional<std::string> applicationPath(const std::string& bundleIdentifier) const override;
    std::string displayName(const std::string& path) const override;
    bool openUrl(const std::string& url) override;

    /// Tells which program is in front.
    std::function<ProcessId()> frontPid;

private:
    std::optional<Image> icon(const std::string& appId) const;
    template <typename ItemTest, typename WindowTest>
    std::optional<RunningApplication> first(ItemTest isItem, WindowTest isWindow) const;
    RunningApplication describe(const BarItemInfo& item,
                                const std::vector<ClientWindowInfo>& windows) const;
    RunningApplication describe(const ClientWindowInfo& window) const;

    BarClient& bar;
    ClientWindows& clients;
    xcb::DesktopEntries& entries;
    /// By application id; an icon that can't be had isn't looked for again either.
    mutable std::map<std::string, std::optional<Image>> icons;
};

}  // namespace nevo
