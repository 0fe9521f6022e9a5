#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <deque>
#include <functional>
#include <vector>

#include "platform/x11/XServer.h"

namespace nevo {

/// Brings the events of our own connection into Qt's loop.
///
/// An event may be read from the socket while something waits for a reply; the socket then has
/// nothing more to tell. So the queue is looked at before each time the loop would block, too.
class EventPump : public QObject {
public:
    using Handler = std::function<void(const xcb_generic_event_t&)>;

    /// `lost` is called once, when the connection breaks.
    EventPump(XServer& x, std::function<void()> lost);

    /// Handlers live as long as the pump. An early one sees each event when it is
    /// collected, before a question to the bar is answered: it may only note what has become stale.
    void watchEarly(Handler handler) { earlyHandlers.push_back(std::move(handler)); }
    /// Sees each event at a turn of the loop.
    void watch(Handler handler) { handlers.push_back(std::move(handler)); }

    /// Takes in what has arrived, without acting on it.
    void collect();

private:
    void dispatch();
    void beforeBlocking();

    XServer& server;
    std::function<void()> onLost;
    QSocketNotifier notifier;
    std::vector<Handler> earlyHandlers;
    std::vector<Handler> handlers;
    std::deque<xcb::Reply<xcb_generic_event_t>> waiting;
    bool dispatchScheduled = false;
};

}  // namespace nevo
