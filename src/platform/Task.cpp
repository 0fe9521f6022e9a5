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

bool SleepAwaiter::start(const std::shared_ptr<TaskContext>& context,
                         std::coroutine_handle<> waiting) {
    if (context->cancelled) return false;
    // The timer and a cancellation may both come; whichever is first resumes, the other finds it
    // done. The registration must outlive this call, so it rides in the shared state.
    struct Waiting {
        std::coroutine_handle<> frame;
        Registration timer;
    };
    auto state = std::make_shared<Waiting>();
    state->frame = waiting;
    auto resumeOnce = [context, weak = std::weak_ptr(state)] {
        auto held = weak.lock();
        if (!held) return;
        auto frame = std::exchange(held->frame, nullptr);
        if (!frame) return;
        held->timer.reset();
        context->wake = nullptr;
        frame.resume();
    };
    state->timer = context->loop->timer(seconds, false, resumeOnce);
    // `wake` owns the state: it lives as long as the chain waits here.
    context->wake = [state, context = std::weak_ptr(context), resumeOnce] {
        if (auto held = context.lock()) held->loop->post([state, resumeOnce] { resumeOnce(); });
    };
    return true;
}

}  // namespace nevo
