#pragma once

#include <poll.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "statusnotifier/Registry.h"
#include "statusnotifier/SessionBus.h"
#include "statusnotifier/Watcher.h"

namespace nevo::menubar {

/// The items that programs offer over the session bus: keeps the connection, and opens another when
/// it ends.
class Notifiers {
public:
    using Clock = std::chrono::steady_clock;
    using Item = statusnotifier::Item;

    /// `side`: of the items' pictures, pixels.
    explicit Notifiers(int side);
    ~Notifiers();
    Notifiers(const Notifiers&) = delete;
    Notifiers& operator=(const Notifiers&) = delete;

    /// An item is known for the first time, or says something else.
    std::function<void(Item&)> changed;
    /// An item that was known goes; it lives until this returns.
    std::function<void(Item&)> gone;

    void appendTo(std::vector<pollfd>& descriptors) const;
    std::optional<Clock::time_point> deadline() const;
    /// Does what there is to be done, or some of it.
    void process();

private:
    void connect();
    void disconnect();
    void refreshStale();
    void retryMissing();

    int pictureSide;
    std::unique_ptr<statusnotifier::SessionBus> bus;
    std::unique_ptr<statusnotifier::Registry> registry;
    std::unique_ptr<statusnotifier::Watcher> watcher;
    std::set<const Item*> told;
    Clock::time_point nextConnect;
    Clock::duration pause;
    Clock::time_point healthySince;
    Clock::time_point nextRefresh;
    Clock::time_point nextRetry;
    bool addressesChanged = false;
    bool failureLogged = false;
};

}  // namespace nevo::menubar
