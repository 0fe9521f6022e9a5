#pragma once

#include <QTimer>

#include "platform/NotificationCenter.h"
#include "platform/Screens.h"
#include "platform/x11/BarClient.h"

namespace nevo {

/// The active RandR monitors, the primary one first. Posts
/// "NSApplicationDidChangeScreenParametersNotification" once a change of them has settled.
class X11Screens : public Screens {
public:
    X11Screens(XServer& x, EventPump& pump, NotificationCenter& center);

    /// The bar takes its height off the visible frame of its monitor; set once it is known.
    void setBar(BarClient* client) { bar = client; }

    std::vector<Screen> screens() const override;
    std::optional<Screen> mainScreen() const override;

private:
    void read();
    void reconsider();

    struct Monitor {
        std::uint32_t id = 0;
        Rect frame;  ///< Root coordinates.
        bool operator==(const Monitor&) const = default;
    };
    std::vector<Monitor> readMonitors() const;

    XServer& server;
    NotificationCenter& notifications;
    BarClient* bar = nullptr;
    std::vector<Monitor> monitors;
    std::vector<Monitor> announced;
    QTimer settled;
    std::uint8_t firstRandrEvent = 0;
    bool hasMonitors = false;
};

}  // namespace nevo
