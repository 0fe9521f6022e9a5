#pragma once

#include <coroutine>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "platform/RunLoop.h"

namespace nevo {

/// What the tasks of one chain share: the flag that asks them to stop, and the way to wake the one
/// that waits.
struct TaskContext {
    RunLoop* loop = nullptr;
    bool cancelled = false;
    /// Set while the chain waits in a `sleep`: wakes it early. Called once, by
    /// `TaskHandle::cancel`.
    std::function<void()> wake;
};

template <typename T>
class Task;

namespace detail {

/// What every task's promise holds, whatever its result.
struct TaskPromiseBase {
    std::shared_ptr<TaskContext> context;
    std::coroutine_handle<> continuation;

    std::suspend_always initial_suspend() noexcept { return {}; }

    /// A task that has waited hands its continuation to the loop's queue, so that no frame is ever
    /// destroyed from inside itself and the stack stays flat. One that never waited is found done
    /// by its awaiter.
    struct FinalAwaiter {
        bool await_ready() noexcept { return false; }
        template <typename Promise>
        void await_suspend(std::coroutine_handle<Promise> self) noexcept {
            TaskPromiseBase& promise = self.promise();
            if (promise.continuation) {
                promise.context->loop->post([next = promise.continuation] { next.resume(); });
            }
        }
        void await_resume() noexcept {}
    };
    FinalAwaiter final_suspend() noexcept { return {}; }

    /// Nothing throws across tasks: an exception that reaches here is a broken invariant.
    [[noreturn]] void unhandled_exception() noexcept { std::terminate(); }
};

template <typename T>
struct TaskPromise : TaskPromiseBase {
    std::optional<T> value;
    Task<T> get_return_object();
    void return_value(T result) { value.emplace(std::move(result)); }
    T take() { return std::move(*value); }
};

template <>
struct TaskPromise<void> : TaskPromiseBase {
    Task<void> get_return_object();
    void return_void() {}
    void take() {}
};

}  // namespace detail

/// An operation that waits: a coroutine, started when it is awaited or spawned, owned by one
/// holder.
///
/// Write one as a free or static function with parameters by value. After each `co_await` the world
/// may have changed. The operand of `co_await` is a plain call or a name, and its result goes to a
/// local: g++ 12 miscompiles other forms without a word.
template <typename T = void>
class [[nodiscard]] Task {
public:
    using promise_type = detail::TaskPromise<T>;
    using Handle = std::coroutine_handle<promise_type>;

    explicit Task(Handle owned) : handle(owned) {}
    Task(Task&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    Task& operator=(Task&&) = delete;
    ~Task() {
        if (handle) handle.destroy();
    }

    bool await_ready() const noexcept { return false; }

    /// Runs the task up to its first wait, at once. False (go on without suspending) when it never
    /// waited.
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> awaiting) {
        handle.promise().context = awaiting.promise().context;
        handle.resume();
        if (handle.done()) return false;
        handle.promise().continuation = awaiting;
        return true;
    }

    T await_resume() { return handle.promise().take(); }

private:
    Handle handle;
};

namespace detail {
template <typename T>
Task<T> TaskPromise<T>::get_return_object() {
    return Task<T>(std::coroutine_handle<TaskPromise<T>>::from_promise(*this));
}
inline Task<void> TaskPromise<void>::get_return_object() {
    return Task<void>(std::coroutine_handle<TaskPromise<void>>::from_promise(*this));
}
}  // namespace detail

/// A spawned task, seen from outside. Dropping the handle lets the task run on.
class TaskHandle {
public:
    TaskHandle() = default;
    explicit TaskHandle(std::shared_ptr<TaskContext> of) : context(std::move(of)) {}

    explicit operator bool() const { return context != nullptr; }

    /// Asks the task to stop: a sleep that it is in ends at once, and its `isCancelled` is true
    /// from now on.
    void cancel();

private:
    std::shared_ptr<TaskContext> context;
};

/// Owns the frames of the tasks that were spawned on a loop, until each is done.
class TaskRegistry {
public:
    TaskRegistry();
    ~TaskRegistry();

    TaskHandle spawn(RunLoop& loop, Task<> task);

    /// The number of tasks under way; 0 at rest.
    std::size_t liveCount() const;

    /// Destroys all frames where they wait. For a desktop's tear-down, when nothing will be resumed
    /// any more.
    void destroyAll();

private:
    struct Root;
    static Root makeRoot(Task<> task, TaskRegistry* registry, std::size_t id);
    std::map<std::size_t, std::coroutine_handle<>> frames;
    std::size_t nextId = 1;
};

/// Starts `task` at a later turn of the loop (a new main-actor task).
TaskHandle spawn(RunLoop& loop, Task<> task);

/// `co_await sleep(seconds)`: goes on after that time, or at once when the task is cancelled.
class [[nodiscard]] SleepAwaiter {
public:
    explicit SleepAwaiter(double duration) : seconds(duration) {}
    SleepAwaiter(const SleepAwaiter&) = delete;
    SleepAwaiter& operator=(const SleepAwaiter&) = delete;
    /// A frame that is destroyed while it sleeps takes its timer along.
    ~SleepAwaiter();
    bool await_ready() const noexcept { return false; }

    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> waiting) {
        return start(waiting.promise().context, waiting);
    }
    void await_resume() noexcept {}

private:
    struct Sleeper;
    bool start(const std::shared_ptr<TaskContext>& context, std::coroutine_handle<> waiting);
    double seconds;
    std::shared_ptr<Sleeper> sleeper;
};

inline SleepAwaiter sleep(double seconds) { return SleepAwaiter(seconds); }

/// `co_await isCancelled()`: whether this task has been asked to stop. Doesn't wait.
class [[nodiscard]] CancelledAwaiter {
public:
    CancelledAwaiter() {}
    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> asking) noexcept {
        cancelled = asking.promise().context->cancelled;
        return false;
    }
    bool await_resume() const noexcept { return cancelled; }

private:
    bool cancelled = false;
};

inline CancelledAwaiter isCancelled() { return CancelledAwaiter(); }

/// A result that a callback will bring, awaited by one task: `OneShot<int> result;
/// start(result.callback()); co_await result;`. The callback may be called at once, later, or never
/// again after the task has gone; calls after the first are dropped.
template <typename T>
class [[nodiscard]] OneShot {
public:
    OneShot() : state(std::make_shared<State>()) {}
    OneShot(const OneShot&) = delete;
    OneShot& operator=(const OneShot&) = delete;
    /// A frame that is destroyed while it waits isn't resumed by a callback that comes late.
    ~OneShot() { state->waiting = nullptr; }

    std::function<void(T)> callback() const {
        return [state = state](T value) {
            if (state->value) return;
            state->value.emplace(std::move(value));
            if (!state->waiting) return;
            state->context->loop->post([state] {
                if (state->waiting) state->waiting.resume();
            });
        };
    }

    bool await_ready() const noexcept { return state->value.has_value(); }
    template <typename Promise>
    void await_suspend(std::coroutine_handle<Promise> waiting) {
        state->waiting = waiting;
        state->context = waiting.promise().context;
    }
    T await_resume() { return std::move(*state->value); }

private:
    struct State {
        std::optional<T> value;
        std::coroutine_handle<> waiting;
        std::shared_ptr<TaskContext> context;
    };
    std::shared_ptr<State> state;
};

}  // namespace nevo
