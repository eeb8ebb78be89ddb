#include "cimserver/http/Workers.hpp"

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <cstddef>
#include <mutex>
#include <optional>
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

struct Workers::Job {
    std::function<void()> task;
    std::function<void()> then;
};

/// A thread, as long as it is in its loop.
struct Workers::Worker {
    std::condition_variable wakes;
    std::optional<Job> job; ///< guarded by State::mutex
};

struct Workers::State {
    explicit State(std::chrono::milliseconds chosen) : idleTime(chosen) {}

    static void Work(const std::shared_ptr<State>& state, Job job);
    void Carry(Worker& worker, Job job);
    std::optional<Job> WaitForJob(Worker& worker);

    const std::chrono::milliseconds idleTime;
    std::mutex mutex;
    std::condition_variable changed; ///< fewer threads run a task, or fewer there are
    // Guarded by mutex.
    std::vector<Worker*> idle;
    std::size_t running = 0;
    std::size_t threads = 0;
    bool isEnding = false;
};

void Workers::State::Work(const std::shared_ptr<State>& state, Job job) {
    BlockNoSignal();
    Worker worker;
    std::optional<Job> next = std::move(job);
    while (next) {
        state->Carry(worker, *std::exchange(next, std::nullopt));
        next = state->WaitForJob(worker);
    }
    const std::lock_guard lock(state->mutex);
    --state->threads;
    state->changed.notify_all();
}

void Workers::State::Carry(Worker& worker, Job job) {
    job.task();
    // What the task owns ends before the thread counts as idle.
    job.task = nullptr;
    {
        const std::lock_guard lock(mutex);
        --running;
        idle.push_back(&worker);
        changed.notify_all();
    }
    if (job.then) {
        job.then();
    }
}

std::optional<Workers::Job> Workers::State::WaitForJob(Worker& worker) {
    std::unique_lock lock(mutex);
    worker.wakes.wait_for(lock, idleTime, [&] { return worker.job.has_value() || isEnding; });
    if (!worker.job) {
        idle.erase(std::find(idle.begin(), idle.end(), &worker));
    }
    return std::exchange(worker.job, std::nullopt);
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

void Workers::Run(std::function<void()> task, std::function<void()> then) {
    Job job{std::move(task), std::move(then)};
    const std::lock_guard lock(state_->mutex);
    if (state_->idle.empty()) {
        std::thread(&State::Work, state_, std::move(job)).detach();
        ++state_->threads;
    } else {
        Worker& worker = *state_->idle.back();
        state_->idle.pop_back();
        worker.job = std::move(job);
        worker.wakes.notify_one();
    }
    ++state_->running;
}

bool Workers::WaitUntilIdle(Clock::time_point until) const {
    std::unique_lock lock(state_->mutex);
    return state_->changed.wait_until(lock, until, [this] { return state_->running == 0; });
}

} // namespace cimserver::http
