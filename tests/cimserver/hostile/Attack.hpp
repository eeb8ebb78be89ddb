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

namespace hostile {

/// Asks the same question again and again on one connection, from construction to destruction.
class GoodClient {
public:
    explicit GoodClient(std::uint16_t port);
    ~GoodClient();
    GoodClient(const GoodClient&) = delete;
    GoodClient& operator=(const GoodClient&) = delete;

    unsigned Answers() const { return answers_; }
    /// The longest that an answer has taken since the last time that this was asked.
    std::chrono::milliseconds LongestAnswer() { return longest_.exchange({}); }

private:
    void Ask();

    test_support::CimClient client_;
    std::atomic<unsigned> answers_ = 0;
    std::atomic<std::chrono::milliseconds> longest_{};
    std::atomic<bool> mayEnd_ = false;
    std::thread thread_;
};

class Attack : public testing::Test {
protected:
    Attack();
    /// The server still serves newcomers, and ends with 0.
    ~Attack() override;

    /// Attacks twice. Meanwhile the good client is answered; after each time the threads and
    /// descriptors are as before, and after the second as much memory is used as after the first.
    void Suffer(const std::function<void()>& attack);
    std::uint16_t Port() const { return server_.Port(); }

private:
    void Calm();

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
