#include "platform/sim/SimRunLoop.h"

#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "platform/Task.h"

namespace nevo {

namespace {
std::int64_t nanoseconds(double seconds) {
    return std::llround(std::max(0.0, seconds) * 1'000'000'000.0);
}
}  // namespace

struct SimRunLoop::State {
    /// When, and the order of posting.
    using Key = std::pair<std::int64_t, std::uint64_t>;

    struct Timer {
        std::int64_t interval = 0;
        bool repeats = false;
        std::function<void()> fire;
        /// Where it stands in the program's queue; nothing while it fires.
        std::optional<Key> queued;
    };

    Key add(std::map<Key, std::function<void()>>& queue, std::int64_t due,
            std::function<void()> work) {
        Key key{due, nextOrder++};
        queue.emplace(key, std::move(work));
        return key;
    }

    void arm(std::size_t id, std::int64_t due) {
        timers.at(id).queued = add(program, due, [this, id] { fireTimer(id); });
    }

    void fireTimer(std::size_t id) {
        Timer& timer = timers.at(id);
        std::int64_t due = timer.queued->first;
        timer.queued.reset();
        auto call = timer.fire;
        bool repeats = timer.repeats;
        if (!repeats) timers.erase(id);
        call();
        // Its owner may have let go of it meanwhile. Times that were missed are skipped.
        auto found = timers.find(id);
        if (!repeats || found == timers.end()) return;
        std::int64_t interval = std::max<std::int64_t>(1, found->second.interval);
        due += interval;
        if (due <= clock) due += ((clock - due) / interval + 1) * interval;
        arm(id, due);
    }

    void removeTimer(std::size_t id) {
        auto found = timers.find(id);
        if (found == timers.end()) return;
        // Kept until the end of this call: it may be what owns the caller.
        Timer doomed = std::move(found->second);
        timers.erase(found);
        if (!doomed.queued) return;
        auto entry = program.extract(*doomed.queued);
    }

    std::int64_t clock = 0;
    std::uint64_t nextOrder = 0;
    std::map<Key, std::function<void()>> program;
    std::map<Key, std::function<void()>> desktop;
    std::map<std::size_t, Timer> timers;
    std::size_t nextTimer = 1;
    int blocked = 0;
    bool halted = false;
};

SimRunLoop::SimRunLoop() : state(std::make_shared<State>()) {}
SimRunLoop::~SimRunLoop() { clearProgram(); }

double SimRunLoop::now() const { return static_cast<double>(state->clock) / 1e9; }

void SimRunLoop::post(std::function<void()> work) { postAfter(0, std::move(work)); }

void SimRunLoop::postAfter(double seconds, std::function<void()> work) {
    state->add(state->program, state->clock + nanoseconds(seconds), std::move(work));
}

void SimRunLoop::desktopAfter(double seconds, std::function<void()> work) {
    state->add(state->desktop, state->clock + nanoseconds(seconds), std::move(work));
}

Registration SimRunLoop::timer(double seconds, bool repeats, std::function<void()> fire) {
    std::size_t id = state->nextTimer++;
    state->timers.emplace(
        id, State::Timer{nanoseconds(seconds), repeats, std::move(fire), std::nullopt});
    state->arm(id, state->clock + nanoseconds(seconds));
    return Registration([weak = std::weak_ptr(state), id] {
        if (auto held = weak.lock()) held->removeTimer(id);
    });
}

void SimRunLoop::blockFor(double seconds) {
    ++state->blocked;
    turnFor(seconds);
    --state->blocked;
}

void SimRunLoop::turnFor(double seconds) {
    std::int64_t end = state->clock + nanoseconds(seconds);
    while (runNext(end)) {
    }
    state->clock = std::max(state->clock, end);
}

bool SimRunLoop::runUntilIdle(double limit) {
    std::int64_t end = state->clock + nanoseconds(limit);
    auto repeating = [this] {
        std::size_t count = 0;
        for (const auto& [id, timer] : state->timers) count += timer.repeats ? 1 : 0;
        return count;
    };
    while (state->desktop.size() + state->program.size() > repeating()) {
        if (runNext(end)) continue;
        state->clock = end;
        return false;
    }
    return true;
}

bool SimRunLoop::runNext(std::int64_t end) {
    auto held = state;
    auto* queue = &held->desktop;
    bool programRuns = held->blocked == 0 && !held->halted && !held->program.empty();
    if (programRuns &&
        (queue->empty() || held->program.begin()->first < held->desktop.begin()->first)) {
        queue = &held->program;
    }
    if (queue->empty() || queue->begin()->first.first > end) return false;
    auto entry = queue->extract(queue->begin());
    held->clock = std::max(held->clock, entry.key().first);
    entry.mapped()();
    return true;
}

void SimRunLoop::haltProgram() { state->halted = true; }

void SimRunLoop::clearProgram() {
    tasks().destroyAll();
    auto doomedTimers = std::exchange(state->timers, {});
    auto doomedWork = std::exchange(state->program, {});
    state->halted = false;
}

std::size_t SimRunLoop::programTimerCount() const { return state->timers.size(); }

std::size_t SimRunLoop::programWorkCount() const {
    std::size_t armed = 0;
    for (const auto& [id, timer] : state->timers) armed += timer.queued ? 1 : 0;
    return state->program.size() - armed;
}

}  // namespace nevo
