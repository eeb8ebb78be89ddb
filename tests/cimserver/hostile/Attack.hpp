// A server under attack, and a client beside that only wants its answers.
#pragma once

#include "support/CimClient.hpp"
#include "support/server/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace hostile {

/// Posts a question on a connection of its own, which it keeps, and returns the answer's body.
using Ask = std::function<std::string(const std::string& question)>;

/// Asks the same question again and again, from construction to destruction.
class GoodClient {
public:
    explicit GoodClient(Ask ask);
    ~GoodClient();
    GoodClient(const GoodClient&) = delete;
    GoodClient& operator=(const GoodClient&) = delete;

    unsigned Answers() const { return answers_; }
    /// The longest that an answer has taken since the last time that this was asked.
    std::chrono::milliseconds LongestAnswer() { return longest_.exchange({}); }

private:
    void Run();

    const Ask ask_;
    std::atomic<unsigned> answers_ = 0;
    std::atomic<std::chrono::milliseconds> longest_{};
    std::atomic<bool> mayEnd_ = false;
    std::thread thread_;
};

class Attack : public testing::Test {
protected:
    using NewClient = std::function<Ask(const test_support::ServerProcess&)>;

    /// Everybody is let in.
    Attack();
    /// `newClient` makes the good client, and one more at the end.
    Attack(const std::vector<std::string>& arguments, NewClient newClient);
    /// The server still serves newcomers, and leaves no children behind.
    ~Attack() override;

    /// Attacks twice. Meanwhile the good client is answered; after each time the threads and
    /// descriptors are as before, and after the second as much memory is used as after the first.
    void Suffer(const std::function<void()>& attack);
    std::uint16_t Port() const { return server_.Port(); }
    std::uint16_t TlsPort() const { return server_.TlsPort(); }

private:
    void Calm();

    const NewClient newClient_;
    test_support::ServerProcess server_;
    GoodClient good_;
    std::size_t threads_ = 0;
    std::size_t descriptors_ = 0;
};

/// A question with a short answer, and one with half a megabyte that ends in an error.
std::string SmallQuestion();
std::string LargeQuestion();
/// A whole request with that body.
std::string Posted(const std::string& body, std::string_view moreHeaders = {});

/// Sends, whatever the server does to the connection; the status of the answer, 0 when none came.
int StatusAfter(test_support::CimClient& client, std::string_view bytes);

} // namespace hostile
