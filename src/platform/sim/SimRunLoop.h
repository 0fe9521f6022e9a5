#pragma once

#include <cstdint>

#include "platform/RunLoop.h"

namespace nevo {

/// The run loop with a virtual clock: it jumps to the next due work and never waits.
///
/// One clock, two queues. The program's queue is what `RunLoop` offers; the desktop's holds what
/// the window server, the other programs and a scripted hand will do. Both are run in order of
/// time, equal times in order of posting over both queues; during `blockFor` only the desktop's is.
/// Times are whole nanoseconds, so that 3 times 0.1 s is the same moment as 0.3 s.
class SimRunLoop : public RunLoop {
public:
    SimRunLoop();
    ~SimRunLoop() override;

    double now() const override;
    void post(std::function<void()> work) override;
    void postAfter(double seconds, std::function<void()> work) override;
    Registration timer(double seconds, bool repeats, std::function<void()> fire) override;
    void blockFor(double seconds) override;
    void turnFor(double seconds) override;

    /// Runs `work` on the desktop's side, `seconds` from now.
    void desktopAfter(double seconds, std::function<void()> work);

    /// Runs what is due now; the clock stands still.
    void runReady() { turnFor(0); }
    /// Runs everything that becomes due in the next `seconds`.
    void runFor(double seconds) { turnFor(seconds); }
    /// Runs until nothing but repeating timers is pending, for at most `limit` seconds. False when
    /// the limit was reached.
    bool runUntilIdle(double limit);

    /// The program's process has ended: its queue isn't run any more, but nothing is destroyed yet
    /// (the call may come from the program itself).
    void haltProgram();
    /// Drops the program's tasks, and then its queue and timers, for a next program to start with.
    /// Not from inside the program.
    void clearProgram();

    /// The number of timers and of other work that the program has pending.
    std::size_t programTimerCount() const;
    std::size_t programWorkCount() const;

private:
    struct State;
    bool runNext(std::int64_t end);

    std::shared_ptr<State> state;
};

}  // namespace nevo
