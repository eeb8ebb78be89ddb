// The bytes of one answer on their way from the thread that makes it to the thread that sends it.
#pragma once

#include "cimserver/http/Spool.hpp"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace cimserver::http {

/// First in, first out, between one maker and one sender. The maker never waits: what the sender
/// has not taken stands in blocks of memory up to a bound, everything after that in a file until
/// the sender has emptied the file. A block that was sent is filled again.
class AnswerQueue {
public:
    static constexpr std::size_t blockSize = std::size_t{64} * 1024;
    static constexpr std::size_t maxBlocks = 32;

    using Clock = std::chrono::steady_clock;

    explicit AnswerQueue(std::string spoolDirectory);
    ~AnswerQueue();
    AnswerQueue(const AnswerQueue&) = delete;
    AnswerQueue& operator=(const AnswerQueue&) = delete;

    // The maker's side.

    /// Throws std::runtime_error when the file cannot take the bytes; some of them may be there
    /// then, and only Clear, Finish or Break can follow. Once the sender has left, bytes are
    /// dropped.
    void Append(std::string_view bytes);
    /// Drops everything appended. Only while nobody reads.
    void Clear();
    /// Nothing follows.
    void Finish();
    /// Nothing follows and what is there is not all of it.
    void Break();

    // The sender's side.

    enum class End : std::uint8_t { none, whole, broken };
    struct Portion {
        std::size_t size = 0;
        End end = End::none;
    };
    /// Waits for the next bytes or the end and copies at most `room` of what is there. Size 0
    /// without an end: nothing came until that time.
    Portion Read(char* target, std::size_t room,
                 Clock::time_point until = Clock::time_point::max());
    /// Nobody reads any more.
    void Abandon();
    /// What is there is all that is read, whatever the maker does from now on.
    void Close();

    /// How many bytes were appended and not read.
    std::uint64_t Size() const;
    /// All of them as they lie in memory, in order; empty when some are in the file. For an answer
    /// that is finished and not read otherwise; valid as long as the queue.
    std::vector<std::string_view> Pieces() const;

private:
    struct Block {
        std::size_t filled = 0;
        std::size_t taken = 0;
        char bytes[blockSize];
    };
    /// Where the next bytes of the maker go: into a block, into the file, or nowhere.
    struct Place {
        Block* block = nullptr;
        bool isFile = false;
    };

    /// What the sender waits for.
    enum class Wanted : std::uint8_t { nothing, enough, anything };

    Place NextPlace();
    Block* BlockWithRoom();
    void DropAll();
    void EndWith(End end);
    std::size_t AppendToBlock(Block& block, std::string_view bytes);
    std::size_t AppendToFile(std::string_view bytes);
    void WakeSender();
    bool HasBytes() const;
    bool HasEnough() const;
    void WaitForBytes(std::unique_lock<std::mutex>& lock, Clock::time_point until);
    std::size_t TakeFromBlock(std::unique_lock<std::mutex>& lock, char* target, std::size_t room);
    std::size_t TakeFromFile(std::unique_lock<std::mutex>& lock, char* target, std::size_t room);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    // Guarded by mutex_. The bytes themselves are copied without it: those that are not yet counted
    // as filled are the maker's, those not yet counted as taken the sender's.
    std::deque<std::unique_ptr<Block>> blocks_;
    std::vector<std::unique_ptr<Block>> spare_;
    std::uint64_t fileRead_ = 0;
    std::uint64_t fileEnd_ = 0;
    End end_ = End::none;
    bool abandoned_ = false;
    bool closed_ = false;
    Wanted wanted_ = Wanted::nothing;

    Spool spool_;
};

} // namespace cimserver::http
