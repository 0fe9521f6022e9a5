#include "platform/Task.h"

namespace nevo {

RunLoop::RunLoop() : registry(std::make_unique<TaskRegistry>()) {}
RunLoop::~RunLoop() = default;

void TaskHandle::cancel() {
    if (!context || context->cancelled) return;
    context->cancelled = true;
    if (auto wake = std::exchange(context->wake, nullptr)) wake();
}

/// The outermost frame of a spawned task: it frees itself and leaves the registry when the task is
/// done.
struct TaskRegistry::Root {
    struct promise_type {
        std::shared_ptr<TaskContext> context;
        Root get_return_object() {
            return Root{std::coroutine_handle<promise_type>::from_promise(*this)};
        }
        std::suspend_always initial_suspend() noexcept { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_void() {}
        [[noreturn]] void unhandled_exception() noexcept { std::terminate(); }
    };
    std::coroutine_handle<promise_type> handle;
};

TaskRegistry::TaskRegistry() = default;
TaskRegistry::~TaskRegistry() { destroyAll(); }

TaskRegistry::Root TaskRegistry::makeRoot(Task<> task, TaskRegistry* registry, std::size_t id) {
    co_await task;
    registry->frames.erase(id);
}

TaskHandle TaskRegistry::spawn(RunLoop& loop, Task<> task) {
    auto context = std::make_shared<TaskContext>();
    context->loop = &loop;
    std::size_t id = nextId++;
    Root root = makeRoot(std::move(task), this, id);
    root.handle.promise().context = context;
    frames.emplace(id, root.handle);
    loop.post([handle = root.handle] { handle.resume(); });
    return TaskHandle(std::move(context));
}

std::size_t TaskRegistry::liveCount() const { return frames.size(); }

void TaskRegistry::destroyAll() {
    auto doomed = std::exchange(frames, {});
    for (auto& [id, frame] : doomed) frame.destroy();
}

TaskHandle spawn(RunLoop& loop, Task<> task) { return loop.tasks().spawn(loop, std::move(task)); }

/// Shared by the timer and the way to wake the task early: the first of them to come takes the
/// frame.
struct SleepAwaiter::Sleeper {
    std::coroutine_handle<> frame;
    Registration timer;
};

bool SleepAwaiter::start(const std::shared_ptr<TaskContext>& context,
                         std::coroutine_handle<> waiting) {
    if (context->cancelled) return false;
    sleeper = std::make_shared<Sleeper>();
    sleeper->frame = waiting;
    auto resumeOnce = [weakSleeper = std::weak_ptr(sleeper), weakContext = std::weak_ptr(context)] {
        auto held = weakSleeper.lock();
        auto chain = weakContext.lock();
        auto frame = held ? std::exchange(held->frame, nullptr) : nullptr;
        if (!frame || !chain) return;
        held->timer.reset();
        chain->wake = nullptr;
        frame.resume();
    };
    sleeper->timer = context->loop->timer(seconds, false, resumeOnce);
    context->wake = [loop = context->loop, resumeOnce] { loop->post(resumeOnce); };
    return true;
}

SleepAwaiter::~SleepAwaiter() {
    if (!sleeper) return;
    sleeper->frame = nullptr;
    sleeper->timer.reset();
}

}  // namespace nevo
