#include "menubar/Notifiers.h"

#include <algorithm>
#include <string>
#include <utility>

#include "menubar/AddressFile.h"
#include "menubar/Log.h"

namespace nevo::menubar {

using namespace std::chrono_literals;
using statusnotifier::ItemAddress;
using statusnotifier::Registry;
using statusnotifier::SessionBus;
using statusnotifier::Watcher;

namespace {
/// A program that draws its icon anew all the time is shown as often as this at the most.
constexpr auto refreshInterval = 50ms;
constexpr auto retryInterval = 1s;
constexpr auto firstPause = 200ms;
constexpr auto longestPause = 30s;
/// A connection that lasted that long doesn't end for a reason that comes back at once.
constexpr auto healthyTime = 10s;
}  // namespace

Notifiers::Notifiers(int side) : pictureSide(side), pause(firstPause) {
    changed = [](Item&) {};
    gone = [](Item&) {};
    connect();
}

Notifiers::~Notifiers() {
    gone = [](Item&) {};
    disconnect();
}

void Notifiers::connect() {
    std::string failure;
    bus = SessionBus::open(failure);
    if (!bus) {
        if (!std::exchange(failureLogged, true)) logLine(failure);
        nextConnect = Clock::now() + pause;
        pause = std::min<Clock::duration>(2 * pause, longestPause);
        return;
    }
    healthySince = Clock::now();
    registry = std::make_unique<Registry>(*bus, pictureSide);
    registry->changed = [this](Item& item) {
        told.insert(&item);
        changed(item);
    };
    registry->gone = [this](Item& item) {
        if (told.erase(&item) != 0) gone(item);
    };
    registry->listed = [this](const ItemAddress& address, bool isThere) {
        if (watcher) watcher->announce(address, isThere);
        addressesChanged = true;
    };
    watcher = std::make_unique<Watcher>(*bus, *registry,
                                        [](const std::string& sentence) { logLine(sentence); });
    for (const ItemAddress& address : loadAddresses()) registry->add(address, address.owner);
}

void Notifiers::disconnect() {
    if (!bus) return;
    watcher.reset();
    for (const ItemAddress& address : registry->addresses()) registry->remove(address);
    registry.reset();
    bus.reset();
}

void Notifiers::process() {
    auto now = Clock::now();
    if (!bus) {
        if (now >= nextConnect) connect();
        return;
    }
    if (!bus->process()) {
        if (!std::exchange(failureLogged, true)) {
            logLine("the connection to the session bus has ended; trying again.");
        }
        disconnect();
        nextConnect = now + pause;
        pause = std::min<Clock::duration>(2 * pause, longestPause);
        return;
    }
    if (now >= healthySince + healthyTime) pause = firstPause;
    if (now >= nextRefresh) refreshStale();
    if (now >= nextRetry) retryMissing();
    if (std::exchange(addressesChanged, false)) saveAddresses(registry->addresses());
}

/// Some programs offer their item a moment before it is there.
void Notifiers::retryMissing() {
    bool any = false;
    for (Item* item : registry->all()) {
        if (!item->isMissing()) continue;
        item->askForAll();
        any = true;
    }
    if (any) nextRetry = Clock::now() + retryInterval;
}

void Notifiers::refreshStale() {
    bool any = false;
    for (Item* item : registry->all()) {
        if (!item->isStale()) continue;
        item->refresh();
        any = true;
    }
    if (any) nextRefresh = Clock::now() + refreshInterval;
}

void Notifiers::appendTo(std::vector<pollfd>& descriptors) const {
    if (bus) bus->appendTo(descriptors);
}

std::optional<Notifiers::Clock::time_point> Notifiers::deadline() const {
    if (!bus) return nextConnect;
    std::optional<Clock::time_point> next;
    if (auto microseconds = bus->deadline()) {
        // The library counts by the same clock.
        next = Clock::time_point(std::chrono::microseconds(*microseconds));
    }
    auto items = registry->all();
    auto consider = [&](Clock::time_point time, auto condition) {
        if (!std::any_of(items.begin(), items.end(), condition)) return;
        next = std::min(next.value_or(time), time);
    };
    consider(nextRefresh, [](Item* item) { return item->isStale(); });
    consider(nextRetry, [](Item* item) { return item->isMissing(); });
    return next;
}

}  // namespace nevo::menubar
