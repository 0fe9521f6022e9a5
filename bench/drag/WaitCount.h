#pragma once

#include "platform/RunLoop.h"

namespace nevo::bench {

/// A run loop that adds up for how long it was asked to block. All else is done by the one that it
/// stands before.
class WaitCount : public RunLoop {
public:
    explicit WaitCount(RunLoop& real) : loop(real) {}

    double now() const override { return loop.now(); }
    void post(std::function<void()> work) override { loop.post(std::move(work)); }
    void postAfter(double seconds, std::function<void()> work) override {
        loop.postAfter(seconds, std::move(work));
    }
    Registration timer(double seconds, bool repeats, std::function<void()> fire) override {
        return loop.timer(seconds, repeats, std::move(fire));
    }
    void turnFor(double seconds) override { loop.turnFor(seconds); }
    void blockFor(double seconds) override {
        told += seconds;
        double before = loop.now();
        loop.blockFor(seconds);
        taken += loop.now() - before;
    }

    /// Seconds: what was asked for, and what the system made of it.
    double told = 0;
    double taken = 0;

private:
    RunLoop& loop;
};

}  // namespace nevo::bench
