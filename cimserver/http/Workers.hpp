// Threads that make answers.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace cimserver::http {

/// A task is run at once: by the thread that became idle last, or by a new one when none is idle.
/// An idle thread ends after a while. No signal is blocked in these threads, whoever starts them: a
/// program that a task starts inherits the mask of its thread.
class Workers {
public:
    using Clock = std::chrono::steady_clock;

    explicit Workers(std::chrono::milliseconds idleTime = std::chrono::seconds(2));
    /// Waits for the tasks.
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// `then` follows the task when its thread is free for another one already: whoever is told by
    /// it and asks again is served by the same thread. Neither may throw, and `then` must not wait.
    /// Any thread may call. Throws std::system_error when there is no thread to be had.
    void Run(std::function<void()> task, std::function<void()> then = {});
    /// False when tasks still run at that time.
    bool WaitUntilIdle(Clock::time_point until) const;

private:
    struct State;
    struct Job;
    struct Worker;
    /// Shared with the threads, so that the last one to end finds it there.
    std::shared_ptr<State> state_;
};

} // namespace cimserver::http
