#include "cimserver/http/AnswerQueue.hpp"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace cimserver::http {

namespace {

/// A sender that has caught up sleeps until so much is there, because waking it costs the maker as
/// much as making a thousand bytes, but no longer than that time.
constexpr std::size_t blocksAtOnce = 4;
constexpr std::chrono::milliseconds longestLinger{2};

} // namespace

AnswerQueue::AnswerQueue(std::string spoolDirectory) : spool_(std::move(spoolDirectory)) {
}

AnswerQueue::~AnswerQueue() = default;

void AnswerQueue::Append(std::string_view bytes) {
    while (!bytes.empty()) {
        const Place place = NextPlace();
        if (place.block == nullptr && !place.isFile) {
            return;
        }
        const std::size_t count =
            place.isFile ? AppendToFile(bytes) : AppendToBlock(*place.block, bytes);
        bytes.remove_prefix(count);
    }
    WakeSender();
}

void AnswerQueue::WakeSender() {
    bool isWaitedFor = false;
    {
        const std::lock_guard lock(mutex_);
        isWaitedFor = wanted_ == Wanted::anything || (wanted_ == Wanted::enough && HasEnough());
    }
    if (isWaitedFor) {
        changed_.notify_one();
    }
}

AnswerQueue::Place AnswerQueue::NextPlace() {
    const std::lock_guard lock(mutex_);
    if (abandoned_) {
        DropAll();
        return {};
    }
    if (closed_) {
        return {};
    }
    if (fileEnd_ != 0 && fileRead_ == fileEnd_) {
        spool_.Empty();
        fileRead_ = fileEnd_ = 0;
    }
    Block* block = fileEnd_ == 0 ? BlockWithRoom() : nullptr;
    return {block, block == nullptr};
}

AnswerQueue::Block* AnswerQueue::BlockWithRoom() {
    if (!blocks_.empty() && blocks_.back()->filled < blockSize) {
        return blocks_.back().get();
    }
    if (blocks_.size() == maxBlocks) {
        return nullptr;
    }
    if (spare_.empty()) {
        blocks_.push_back(std::make_unique_for_overwrite<Block>());
    } else {
        blocks_.push_back(std::move(spare_.back()));
        spare_.pop_back();
        blocks_.back()->filled = blocks_.back()->taken = 0;
    }
    return blocks_.back().get();
}

void AnswerQueue::DropAll() {
    blocks_.clear();
    spare_.clear();
    if (fileEnd_ != 0) {
        spool_.Empty();
    }
    fileRead_ = fileEnd_ = 0;
}

std::size_t AnswerQueue::AppendToBlock(Block& block, std::string_view bytes) {
    const std::size_t count = std::min(bytes.size(), blockSize - block.filled);
    std::memcpy(block.bytes + block.filled, bytes.data(), count);
    const std::lock_guard lock(mutex_);
    block.filled += count;
    return count;
}

std::size_t AnswerQueue::AppendToFile(std::string_view bytes) {
    spool_.WriteAt(fileEnd_, bytes);
    const std::lock_guard lock(mutex_);
    fileEnd_ += bytes.size();
    return bytes.size();
}

void AnswerQueue::Clear() {
    const std::lock_guard lock(mutex_);
    DropAll();
}

void AnswerQueue::EndWith(End end) {
    {
        const std::lock_guard lock(mutex_);
        if (!closed_) {
            end_ = end;
        }
    }
    changed_.notify_one();
}

void AnswerQueue::Finish() {
    EndWith(End::whole);
}

void AnswerQueue::Break() {
    EndWith(End::broken);
}

bool AnswerQueue::HasBytes() const {
    return (!blocks_.empty() && blocks_.front()->taken < blocks_.front()->filled) ||
           fileRead_ < fileEnd_;
}

bool AnswerQueue::HasEnough() const {
    return end_ != End::none || blocks_.size() > blocksAtOnce || fileRead_ < fileEnd_;
}

void AnswerQueue::WaitForBytes(std::unique_lock<std::mutex>& lock, Clock::time_point until) {
    if (HasBytes() || end_ != End::none) {
        return;
    }
    wanted_ = Wanted::enough;
    if (!changed_.wait_for(lock, longestLinger, [this] { return HasEnough(); })) {
        wanted_ = Wanted::anything;
        changed_.wait_until(lock, until, [this] { return end_ != End::none || HasBytes(); });
    }
    wanted_ = Wanted::nothing;
}

AnswerQueue::Portion AnswerQueue::Read(char* target, std::size_t room, Clock::time_point until) {
    std::unique_lock lock(mutex_);
    WaitForBytes(lock, until);
    std::size_t copied = 0;
    try {
        while (end_ != End::broken && copied < room && HasBytes()) {
            copied += blocks_.empty() ? TakeFromFile(lock, target + copied, room - copied)
                                      : TakeFromBlock(lock, target + copied, room - copied);
        }
    } catch (const std::runtime_error&) {
        return {0, End::broken};
    }
    return end_ == End::broken ? Portion{0, End::broken}
                               : Portion{copied, copied == 0 ? end_ : End::none};
}

std::size_t AnswerQueue::TakeFromBlock(std::unique_lock<std::mutex>& lock, char* target,
                                       std::size_t room) {
    Block& block = *blocks_.front();
    const std::size_t count = std::min(room, block.filled - block.taken);
    lock.unlock();
    std::memcpy(target, block.bytes + block.taken, count);
    lock.lock();
    block.taken += count;
    if (block.taken == blockSize) {
        spare_.push_back(std::move(blocks_.front()));
        blocks_.pop_front();
    }
    return count;
}

std::size_t AnswerQueue::TakeFromFile(std::unique_lock<std::mutex>& lock, char* target,
                                      std::size_t room) {
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(room, fileEnd_ - fileRead_));
    lock.unlock();
    std::size_t got = 0;
    try {
        got = spool_.ReadAt(fileRead_, target, count);
    } catch (...) {
        lock.lock();
        throw;
    }
    lock.lock();
    fileRead_ += got;
    return got;
}

void AnswerQueue::Abandon() {
    const std::lock_guard lock(mutex_);
    abandoned_ = true;
}

void AnswerQueue::Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    end_ = End::whole;
}

std::uint64_t AnswerQueue::Size() const {
    const std::lock_guard lock(mutex_);
    std::uint64_t size = fileEnd_ - fileRead_;
    for (const auto& block : blocks_) {
        size += block->filled - block->taken;
    }
    return size;
}

std::vector<std::string_view> AnswerQueue::Pieces() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string_view> pieces;
    if (fileRead_ < fileEnd_) {
        return pieces;
    }
    pieces.reserve(blocks_.size());
    for (const auto& block : blocks_) {
        pieces.emplace_back(block->bytes + block->taken, block->filled - block->taken);
    }
    return pieces;
}

} // namespace cimserver::http
