#include "platform/x11/EventPump.h"

#include <QAbstractEventDispatcher>

namespace nevo {

EventPump::EventPump(XServer& x, std::function<void()> lost)
    : server(x),
      onLost(std::move(lost)),
      notifier(x.connection().fileDescriptor(), QSocketNotifier::Read) {
    connect(&notifier, &QSocketNotifier::activated, this, [this] {
        collect();
        dispatch();
    });
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            [this] { beforeBlocking(); });
}

void EventPump::collect() {
    while (auto* event = xcb_poll_for_event(server.get())) {
        // An error: the window of a request had gone. Whoever needs to know asks for an answer.
        xcb::Reply<xcb_generic_event_t> owned(event);
        if (event->response_type == 0) continue;
        for (const auto& handler : earlyHandlers) handler(*event);
        waiting.push_back(std::move(owned));
    }
}

void EventPump::dispatch() {
    // A handler may turn the loop (a menu), which comes here again.
    while (!waiting.empty()) {
        auto event = std::move(waiting.front());
        waiting.pop_front();
        for (const auto& handler : handlers) handler(*event);
    }
    server.flush();
    if (server.connection().isBroken() && notifier.isEnabled()) {
        notifier.setEnabled(false);
        onLost();
    }
}

void EventPump::beforeBlocking() {
    collect();
    server.flush();
    if (waiting.empty() || dispatchScheduled) return;
    // Not from here: a handler may open a menu, whose loop can't run inside this signal.
    dispatchScheduled = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            dispatchScheduled = false;
            dispatch();
        },
        Qt::QueuedConnection);
}

}  // namespace nevo
