#include "cimserver/cimxml/InstancePipe.hpp"

#include <utility>

namespace cimserver::cimxml {

namespace {

/// Handing over costs as much as a few instances.
constexpr std::size_t batchSize = 256;
constexpr std::size_t longestQueue = 4;

} // namespace

InstancePipe::InstancePipe(InstanceWriter& writer)
    : writer_(writer), thread_([this] { WriteUntilEnd(); }) {
    filling_.reserve(batchSize);
}

InstancePipe::~InstancePipe() {
    {
        const std::lock_guard lock(mutex_);
        isDropped_ = true;
    }
    End();
}

void InstancePipe::Add(const OpenWBEM::CIMInstance& instance) {
    filling_.push_back(instance);
    if (filling_.size() == batchSize) {
        HandOver();
    }
}

void InstancePipe::Finish() {
    HandOver();
    End();
    if (failure_) {
        std::rethrow_exception(failure_);
    }
}

void InstancePipe::HandOver() {
    std::vector<Batch> toDestroy;
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return full_.size() < longestQueue || failure_; });
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        full_.push_back(std::move(filling_));
        toDestroy.swap(written_);
    }
    changed_.notify_all();
    filling_ = Batch();
    if (!toDestroy.empty()) {
        filling_ = std::move(toDestroy.back());
        filling_.clear();
    }
    filling_.reserve(batchSize);
}

void InstancePipe::End() {
    {
        const std::lock_guard lock(mutex_);
        isEnded_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void InstancePipe::WriteUntilEnd() {
    try {
        Write();
    } catch (...) {
        const std::lock_guard lock(mutex_);
        failure_ = std::current_exception();
    }
    changed_.notify_all();
}

void InstancePipe::Write() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return !full_.empty() || isEnded_; });
        if (full_.empty() || isDropped_) {
            return;
        }
        Batch batch = std::move(full_.front());
        full_.pop_front();
        lock.unlock();
        changed_.notify_all();
        for (const OpenWBEM::CIMInstance& instance : batch) {
            writer_.WriteNamed(instance);
        }
        lock.lock();
        written_.push_back(std::move(batch));
    }
}

} // namespace cimserver::cimxml
