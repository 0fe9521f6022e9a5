#pragma once

#include <QTimer>

#include "platform/NotificationCenter.h"
#include "platform/Screens.h"
#include "platform/StatusBar.h"
#include "platform/x11/BarClient.h"

namespace nevo {

/// The active RandR monitors, the primary one first. Posts
/// `screenParametersChangedNotification` once a change of them has settled, one of the bars on the
/// others, or one of the bar's row: an item has come or gone, or stands elsewhere in the order.
/// Opacity, width and what dividers do are no such change. `statusItemsMovedNotification` tells of
/// each change of a place.
class X11Screens : public Screens {
public:
    X11Screens(XServer& x, EventPump& pump, NotificationCenter& center);

    /// The bars take their height off the visible frames of their monitors, and the row is watched;
    /// set once the bar is known.
    void setBar(BarClient* client);

    std::vector<Screen> screens() const override;
    std::optional<Screen> mainScreen() const override;

private:
    void read();
    void noteRow();
    void reconsider();

    struct Monitor {
        std::uint32_t id = 0;
        Rect frame;  ///< Root coordinates.
        bool operator==(const Monitor&) const = default;
    };
    std::vector<Monitor> readMonitors() const;
    /// The frames of the items that can have a place in sight, left to right.
    using Row = std::vector<xcb_window_t>;
    bool isOfRow(const xcb_generic_event_t& event) const;
    bool isOfPlace(const xcb_generic_event_t& event) const;
    /// Nothing while none of this program's items is among them.
    std::optional<Row> readRow() const;

    XServer& server;
    NotificationCenter& notifications;
    BarClient* bar = nullptr;
    std::vector<Monitor> monitors;
    std::vector<Monitor> announced;
    std::vector<Rect> announcedBars;
    std::optional<Row> seenRow;
    std::optional<Row> announcedRow;
    QTimer settled;
    QTimer moved;
    QTimer overdue;
    std::uint8_t firstRandrEvent = 0;
    bool hasMonitors = false;
};

}  // namespace nevo
