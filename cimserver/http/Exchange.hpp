// One request and its answer.
#pragma once

#include "cimserver/http/AnswerQueue.hpp"
#include "cimserver/http/Http.hpp"
#include "cimserver/http/InFlight.hpp"
#include "cimserver/http/Workers.hpp"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace cimserver::http {

/// The client takes trailers at the end of a chunked answer: it says so in a TE header, and its
/// version of HTTP has chunks.
bool TakesTrailers(const Request& request, const char* version);

/// The answer between the thread that makes it and the connection's thread that sends it. The
/// sender looks at nothing before WaitUntilReady has returned, and at the trailers after the end of
/// the bytes only.
class AnswerInTransit final : public Answer {
public:
    /// `callTime` as in Settings.
    AnswerInTransit(bool canStream, std::string spoolDirectory, std::chrono::milliseconds callTime);

    // The maker's side. Once the sender has given the answer up, nothing here has any effect.

    void SetHead(Head head) override;
    void Append(std::string_view bytes) override;
    bool HasLeft() const override { return hasLeft_; }
    void Clear() override;
    void SetTrailers(std::vector<Header> trailers) override;
    void LimitTime(MakeLateAnswer late) override;
    void LiftLimit() override;
    bool IsGivenUp() const override;
    /// Calls the handler. End has to follow, whatever the handler does.
    void MakeWith(const Handler& handler, const Request& request) noexcept;
    void End() noexcept;

    // The sender's side.

    /// Until all of the answer is there, or the first portion of one that streams. False: it took
    /// too long and is given up; InItsPlace is to be sent.
    bool WaitUntilReady();
    /// The late answer, whole.
    std::shared_ptr<AnswerInTransit> InItsPlace() const;
    bool Streams() const { return hasLeft_; }
    const Head& ItsHead() const { return head_; }
    const std::vector<Header>& Trailers() const { return trailers_; }
    AnswerQueue& Bytes() { return queue_; }
    /// The next bytes, as the queue hands them out. An answer that takes too long ends with what
    /// had been appended, as a whole one does, and has the late trailers.
    AnswerQueue::Portion Read(char* target, std::size_t room) noexcept;

private:
    using Clock = AnswerQueue::Clock;
    struct Limit {
        Clock::time_point end;
        MakeLateAnswer late;
    };

    void BecomeReady(bool streams);
    bool IsLate() const;
    Clock::time_point NextLook() const;
    void GiveUp();
    Clock::time_point LookAtTheClock() noexcept;

    const bool canStream_;
    const std::string spoolDirectory_;
    const std::chrono::milliseconds callTime_;
    mutable std::mutex mutex_;
    std::condition_variable ready_;
    // Guarded by mutex_ until the answer is ready. From then on nobody writes head and hasLeft_,
    // and the trailers belong to the maker up to the end of the bytes.
    bool isReady_ = false;
    bool isGivenUp_ = false;
    bool isMade_ = false;  ///< the maker's alone: the handler returned
    bool hasLeft_ = false; ///< read by the maker, which is the one to set it, without the mutex
    std::optional<Limit> limit_;
    Head head_;
    std::vector<Header> trailers_;
    std::string lateText_;

    AnswerQueue queue_;
};

/// Made when a request's first line was read, destroyed by the connection's thread when its answer
/// is sent or the client has gone. The handler may be running then; it keeps what it needs.
class Exchange {
    /// Shared with the worker.
    const std::shared_ptr<Request> kept_;

public:
    explicit Exchange(const char* target) : kept_(std::make_shared<Request>()), request(*kept_) {
        request.target = target;
    }
    ~Exchange();
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    /// Has the answer made by a worker; from now on the request does not change. Returns when there
    /// is something to be sent. Throws std::system_error when there is no thread. `handler` must
    /// outlive the workers.
    std::shared_ptr<AnswerInTransit> Make(const Handler& handler, bool canStream,
                                          const Settings& settings, Workers& workers);

    Request& request;
    bool begun = false;
    bool refused = false; ///< not let in: answered with 401 once its body was passed over
    bool tooLarge = false;
    std::size_t discarded = 0;
    /// From the end of the request to the end of its answer.
    std::optional<InFlight::Place> running;

private:
    std::shared_ptr<AnswerInTransit> answer_;
};

} // namespace cimserver::http
