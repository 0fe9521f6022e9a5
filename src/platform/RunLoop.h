#pragma once

#include <functional>
#include <memory>

#include "platform/Registration.h"

namespace nevo {

class TaskRegistry;

/// The main thread's queue and clock. All logic runs on it; there is no other source of time.
///
/// Work that is due at the same time runs in the order in which it was posted.
class RunLoop {
public:
    RunLoop();
    virtual ~RunLoop();
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// Seconds on a monotonic clock with an arbitrary start.
    virtual double now() const = 0;

    /// Runs `work` at a later turn of the loop (`dispatch_async` to the main queue).
    virtual void post(std::function<void()> work) = 0;

    /// Runs `work` once, `seconds` from now, for good (`dispatch_after` on the main queue).
    virtual void postAfter(double seconds, std::function<void()> work) = 0;

    /// A timer (`NSTimer scheduledTimerWithTimeInterval:repeats:block:`). It ends with its
    /// registration; a one-shot timer that has fired leaves the registration non-empty, for its
    /// owner to clear.
    virtual Registration timer(double seconds, bool repeats, std::function<void()> fire) = 0;

    /// Blocks the main thread for `seconds`: nothing posted here runs, while the window server and
    /// the other programs go on.
    virtual void blockFor(double seconds) = 0;

    /// Turns the loop for `seconds` from within a callback (`NSRunLoop runUntilDate:`).
    virtual void turnFor(double seconds) = 0;

    /// The asynchronous operations that are under way on this loop.
    TaskRegistry& tasks() { return *registry; }

private:
    std::unique_ptr<TaskRegistry> registry;
};

}  // namespace nevo
