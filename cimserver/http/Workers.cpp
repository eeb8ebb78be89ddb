#include "cimserver/http/Workers.hpp"

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <cstddef>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace cimserver::http {

namespace {

void BlockNoSignal() {
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

} // namespace

/// A thread, as long as it is in its loop.
struct Workers::Worker {
    std::condition_variable wakes;
    std::function<void()> task; ///< guarded by State::mutex
};

struct Workers::State {
    explicit State(std::chrono::milliseconds chosen) : idleTime(chosen) {}

    static void Work(const std::shared_ptr<State>& state, std::function<void()> task);
    bool WaitForTask(std::unique_lock<std::mutex>& lock, Worker& worker);

    const std::chrono::milliseconds idleTime;
    std::mutex mutex;
    std::condition_variable changed; ///< fewer threads run a task, or fewer there are
    // Guarded by mutex.
    std::vector<Worker*> idle;
    std::size_t running = 0;
    std::size_t threads = 0;
    bool isEnding = false;
};

void Workers::State::Work(const std::shared_ptr<State>& state, std::function<void()> task) {
    BlockNoSignal();
    Worker worker;
    worker.task = std::move(task);
    std::unique_lock lock(state->mutex, std::defer_lock);
    do {
        // What the task owns ends before the thread counts as idle.
        std::exchange(worker.task, nullptr)();
        lock.lock();
        --state->running;
        state->changed.notify_all();
    } while (state->WaitForTask(lock, worker));
    --state->threads;
    state->changed.notify_all();
}

/// Comes back without the lock when there is a task.
bool Workers::State::WaitForTask(std::unique_lock<std::mutex>& lock, Worker& worker) {
    if (isEnding) {
        return false;
    }
    idle.push_back(&worker);
    worker.wakes.wait_for(lock, idleTime, [&] { return worker.task != nullptr || isEnding; });
    if (worker.task == nullptr) {
        idle.erase(std::find(idle.begin(), idle.end(), &worker));
        return false;
    }
    lock.unlock();
    return true;
}

Workers::Workers(std::chrono::milliseconds idleTime) : state_(std::make_shared<State>(idleTime)) {
}

Workers::~Workers() {
    std::unique_lock lock(state_->mutex);
    state_->isEnding = true;
    for (Worker* worker : state_->idle) {
        worker->wakes.notify_one();
    }
    state_->changed.wait(lock, [this] { return state_->threads == 0; });
}

void Workers::Run(std::function<void()> task) {
    const std::lock_guard lock(state_->mutex);
    if (state_->idle.empty()) {
        std::thread(&State::Work, state_, std::move(task)).detach();
        ++state_->threads;
    } else {
        Worker& worker = *state_->idle.back();
        state_->idle.pop_back();
        worker.task = std::move(task);
        worker.wakes.notify_one();
    }
    ++state_->running;
}

bool Workers::WaitUntilIdle(Clock::time_point until) const {
    std::unique_lock lock(state_->mutex);
    return state_->changed.wait_until(lock, until, [this] { return state_->running == 0; });
}

} // namespace cimserver::http
