// One request and its answer.
#pragma once

#include "cimserver/http/AnswerQueue.hpp"
#include "cimserver/http/Http.hpp"

#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace cimserver::http {

/// The client takes trailers at the end of a chunked answer: it says so in a TE header, and its
/// version of HTTP has chunks.
bool TakesTrailers(const Request& request, const char* version);

/// The answer between the thread that makes it and the connection's thread that sends it. The
/// sender looks at nothing before WaitUntilReady has returned, and at the trailers after the end of
/// the queue only.
class AnswerInTransit final : public Answer {
public:
    AnswerInTransit(bool canStream, std::string spoolDirectory);

    // The maker's side.

    void SetHead(Head head) override;
    void Append(std::string_view bytes) override;
    bool HasLeft() const override { return hasLeft_; }
    void Clear() override;
    void SetTrailers(std::vector<Header> trailers) override;
    /// Calls the handler and ends the answer, whatever the handler does.
    void MakeWith(const Handler& handler, const Request& request) noexcept;

    // The sender's side.

    /// Until all of the answer is there, or the first portion of one that streams.
    void WaitUntilReady() const { ready_.wait(); }
    bool Streams() const { return hasLeft_; }
    const Head& ItsHead() const { return head_; }
    const std::vector<Header>& Trailers() const { return trailers_; }
    AnswerQueue& Bytes() { return queue_; }

private:
    const bool canStream_;
    bool hasLeft_ = false;
    Head head_;
    std::vector<Header> trailers_;
    AnswerQueue queue_;
    std::latch ready_{1};
};

/// Made when a request's first line was read, destroyed by the connection's thread when its answer
/// is sent or the client has gone; waits for the handler then.
class Exchange {
public:
    explicit Exchange(const char* target) { request.target = target; }
    ~Exchange();
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    /// Has the answer made, on a thread of its own when it can stream; returns when it is ready to
    /// be sent. Throws std::system_error when there is no thread. `handler` must outlive this.
    std::shared_ptr<AnswerInTransit> Make(const Handler& handler, bool canStream,
                                          const std::string& spoolDirectory);

    Request request;
    bool begun = false;
    bool refused = false; ///< not let in: answered with 401 once its body was passed over
    bool tooLarge = false;
    std::size_t discarded = 0;

private:
    std::shared_ptr<AnswerInTransit> answer_;
    std::thread maker_;
};

} // namespace cimserver::http
