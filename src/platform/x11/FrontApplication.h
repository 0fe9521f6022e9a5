#pragma once

#include <QTimer>
#include <optional>
#include <string>

#include "platform/LogOutput.h"
#include "platform/NotificationCenter.h"
#include "platform/x11/BarClient.h"
#include "platform/x11/EventPump.h"
#include "platform/xcb/OwnerIdentity.h"

namespace nevo {

/// Posts the workspace's notifications about the front, where the application is whose window the
/// window manager calls active; and once for the one that is there at the start. While a window of
/// the bar has that place, or one of our own that isn't managed, the last application keeps it.
class FrontApplication {
public:
    FrontApplication(XServer& x, EventPump& pump, BarClient& client,
                     xcb::OwnerIdentities& ownerIdentities, NotificationCenter& center,
                     LogOutput& output);
    FrontApplication(const FrontApplication&) = delete;
    FrontApplication& operator=(const FrontApplication&) = delete;

    /// Of the one in front; 0 while there is none.
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
    bool isListed(xcb_window_t window) const;
    std::optional<Owner> ownerOf(xcb_window_t window) const;
    std::optional<ProcessId> processOf(xcb_window_t window) const;
    bool isOfBar(std::optional<ProcessId> pid) const;
    bool isFocusOurs() const;
    void post(const char* notification, const Owner& about);

    XServer& server;
    BarClient& bar;
    xcb::OwnerIdentities& identities;
    NotificationCenter& notifications;
    LogOutput& log;
    std::optional<Owner> announced;
    QTimer settled;
};

}  // namespace nevo
