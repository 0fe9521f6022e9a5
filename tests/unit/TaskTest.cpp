// Tasks on the virtual clock: results, order, cancellation in each state of waiting, and frames
// that are given back. The long loops are canaries for a compiler that miscompiles co_await and for
// stacks that grow; run them under sanitizers.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Task.h"
#include "platform/sim/SimRunLoop.h"

namespace nevo {
namespace {

constexpr int manyAwaits = 1'000'000;

/// Counts the living frames that hold one.
struct Guard {
    explicit Guard(int& of) : count(&of) { ++*count; }
    Guard(const Guard& other) : count(other.count) { ++*count; }
    Guard& operator=(const Guard&) = delete;
    ~Guard() { --*count; }
    int* count;
};

Task<int> ready(int value) { co_return value; }

Task<int> afterTurn(int value) {
    co_await sleep(0);
    co_return value;
}

Task<std::string> named(std::string name, Guard guard) {
    co_await sleep(0);
    co_return name + std::to_string(*guard.count > 0 ? 1 : 0);
}

Task<> sumReady(std::int64_t* sum) {
    for (int i = 0; i < manyAwaits; ++i) {
        int value = co_await ready(1);
        *sum += value;
    }
}

Task<> sumWaiting(std::int64_t* sum) {
    for (int i = 0; i < manyAwaits; ++i) {
        int value = co_await afterTurn(1);
        *sum += value;
    }
}

Task<> takeNames(std::vector<std::string>* names, int* living) {
    for (const char* name : {"a", "b"}) {
        std::string copy = name;
        Guard guard(*living);
        std::string result = co_await named(copy, guard);
        names->push_back(result);
    }
}

Task<> sleeper(double seconds, std::vector<std::string>* story, SimRunLoop* loop, Guard guard) {
    co_await sleep(seconds);
    bool cancelled = co_await isCancelled();
    story->push_back((cancelled ? "cancelled at " : "woke at ") +
                     std::to_string(static_cast<int>(loop->now() * 1000 + 0.5)));
    co_await sleep(1);
    story->push_back("ends at " + std::to_string(static_cast<int>(loop->now() * 1000 + 0.5)));
    *guard.count += 0;
}

Task<int> inner(std::vector<std::string>* story, SimRunLoop* loop, Guard guard) {
    co_await sleeper(10, story, loop, guard);
    co_return 1;
}

Task<> outer(std::vector<std::string>* story, SimRunLoop* loop, Guard guard) {
    int value = co_await inner(story, loop, guard);
    story->push_back("outer got " + std::to_string(value));
}

Task<> waitFor(OneShot<std::string>* shot, std::string* result, Guard guard) {
    OneShot<std::string>& awaited = *shot;
    std::string value = co_await awaited;
    *result = value + std::to_string(*guard.count);
}

Task<> waitForOwn(std::function<void(std::string)>* hook, std::string* result, Guard guard) {
    OneShot<std::string> shot;
    *hook = shot.callback();
    std::string value = co_await shot;
    *result = value + std::to_string(*guard.count);
}

TEST(Task, AMillionAwaitsGiveTheirResultsAndNoStack) {
    SimRunLoop loop;
    std::int64_t ready = 0;
    std::int64_t waiting = 0;
    spawn(loop, sumReady(&ready));
    spawn(loop, sumWaiting(&waiting));
    loop.runReady();
    EXPECT_EQ(ready, manyAwaits);
    EXPECT_EQ(waiting, manyAwaits);
    EXPECT_EQ(loop.tasks().liveCount(), 0U);
}

TEST(Task, ParametersAndResultsLiveOnceAndAsLongAsTheirFrame) {
    SimRunLoop loop;
    std::vector<std::string> names;
    int living = 0;
    spawn(loop, takeNames(&names, &living));
    loop.runReady();
    EXPECT_EQ(names, (std::vector<std::string>{"a1", "b1"}));
    EXPECT_EQ(living, 0);
}

TEST(Task, ACancelledChainWakesFromItsSleepAndGoesOn) {
    struct Case {
        double cancelAt;
        std::vector<std::string> story;
    };
    // Before its first turn; while it waits; in the moment at which it wakes anyway; too late.
    for (const Case& c : {Case{0, {"cancelled at 0", "ends at 0", "outer got 1"}},
                          Case{4, {"cancelled at 4000", "ends at 4000", "outer got 1"}},
                          Case{10, {"woke at 10000", "ends at 10000", "outer got 1"}},
                          Case{11, {"woke at 10000", "ends at 11000", "outer got 1"}}}) {
        SimRunLoop loop;
        std::vector<std::string> story;
        int living = 0;
        TaskHandle handle;
        // Posted first, so that at equal times the cancellation of a task not yet begun comes
        // first.
        if (c.cancelAt == 0) loop.post([&] { handle.cancel(); });
        {
            Guard guard(living);
            handle = spawn(loop, outer(&story, &loop, guard));
        }
        loop.runReady();
        if (c.cancelAt > 0) loop.postAfter(c.cancelAt, [&] { handle.cancel(); });
        loop.runFor(30);
        EXPECT_EQ(story, c.story) << c.cancelAt;
        EXPECT_EQ(living, 0) << c.cancelAt;
        handle.cancel();
        loop.runFor(1);
        EXPECT_EQ(loop.tasks().liveCount(), 0U);
        EXPECT_EQ(loop.programTimerCount(), 0U);
    }
}

TEST(Task, CancellingTwiceOrWhileQueuedResumesOnce) {
    SimRunLoop loop;
    std::vector<std::string> story;
    int living = 0;
    Guard guard(living);
    TaskHandle handle = spawn(loop, sleeper(1, &story, &loop, guard));
    loop.runReady();
    // The cancellation queues the resumption; the timer comes due behind it.
    loop.postAfter(1, [&] {
        handle.cancel();
        handle.cancel();
    });
    loop.blockFor(2);
    loop.runFor(5);
    EXPECT_EQ(story.size(), 2U);
    EXPECT_EQ(living, 1);
}

TEST(Task, OneShotBringsItsValueWheneverItComes) {
    for (const std::string when : {"before", "waiting", "twice"}) {
        SimRunLoop loop;
        int living = 0;
        Guard guard(living);
        OneShot<std::string> shot;
        std::string result;
        auto callback = shot.callback();
        if (when == "before") callback("value");
        spawn(loop, waitFor(&shot, &result, guard));
        loop.runReady();
        if (when == "before") {
            EXPECT_EQ(result, "value2");
            continue;
        }
        EXPECT_EQ(result, "");
        callback("value");
        if (when == "twice") callback("late");
        EXPECT_EQ(result, "") << "resumed from inside the callback";
        loop.runReady();
        EXPECT_EQ(result, "value2");
        EXPECT_EQ(living, 1);
    }
}

TEST(Task, ATornDownTaskIsNotResumedByWhatItWaitedFor) {
    SimRunLoop loop;
    int living = 0;
    std::string result;
    std::vector<std::string> story;
    std::function<void(std::string)> hook;
    {
        Guard guard(living);
        spawn(loop, waitForOwn(&hook, &result, guard));
        spawn(loop, outer(&story, &loop, guard));
        TaskHandle queued = spawn(loop, sleeper(1, &story, &loop, guard));
        loop.runReady();
        queued.cancel();
    }
    EXPECT_GT(living, 0);
    loop.clearProgram();
    EXPECT_EQ(living, 0);
    EXPECT_EQ(loop.programTimerCount(), 0U);
    hook("too late");
    loop.runFor(30);
    EXPECT_EQ(result, "");
    EXPECT_TRUE(story.empty());
}

}  // namespace
}  // namespace nevo
