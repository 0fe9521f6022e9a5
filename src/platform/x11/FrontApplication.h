#pragma once

#include <QTimer>
#include <optional>
#include <string>

#include "platform/LogOutput.h"
#include "platform/NotificationCenter.h"
#include "platform/x11/EventPump.h"
#include "platform/xcb/OwnerIdentity.h"

namespace nevo {

/// Posts "NSWorkspaceDidActivateApplicationNotification" when another application comes to the
/// front, the one whose window the window manager calls active; and once for the one that is there
/// at the start. While no window is active, the last application stays in front.
class FrontApplication {
public:
    FrontApplication(XServer& x, EventPump& pump, xcb::OwnerIdentities& ownerIdentities,
                     NotificationCenter& center, LogOutput& output);
    FrontApplication(const FrontApplication&) = delete;
    FrontApplication& operator=(const FrontApplication&) = delete;

    /// Of the one that was told last; 0 before.
    ProcessId pid() const { return announced ? announced->pid : 0; }

private:
    struct Owner {
        ProcessId pid = 0;
        std::string applicationId;
        bool operator==(const Owner&) const = default;
    };

    void begin();
    void reconsider();
    bool isManaged() const;
    std::optional<Owner> ownerOf(xcb_window_t window) const;

    XServer& server;
    xcb::OwnerIdentities& identities;
    NotificationCenter& notifications;
    LogOutput& log;
    std::optional<Owner> announced;
    QTimer settled;
};

}  // namespace nevo
