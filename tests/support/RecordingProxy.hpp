// Stands between a client and a server of a test: forwards bytes both ways and keeps every answer,
// so that a test with a client that shows nothing can still check what the server sent. Each
// connection has a thread of its own; Answers may be called at any time. An answer is kept before
// its last byte is forwarded, so a client that has ended has all its answers kept.
#pragma once

#include "support/CimClient.hpp"

#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace test_support {

class RecordingProxy {
public:
    /// Listens on a free port of 127.0.0.1 and forwards to `target` there.
    explicit RecordingProxy(std::uint16_t target);
    /// Ends all connections and waits for their threads.
    ~RecordingProxy();
    RecordingProxy(const RecordingProxy&) = delete;
    RecordingProxy& operator=(const RecordingProxy&) = delete;

    std::uint16_t Port() const { return port_; }
    /// The answers so far in the order in which they were complete.
    std::vector<HttpAnswer> Answers() const;
    /// What could not be forwarded or read as an answer; empty when all is well.
    std::vector<std::string> Problems() const;

private:
    void Accept();
    void Forward(int client);
    /// Until one side has closed; what is left of an answer stays in `received`.
    void Pump(int client, int server, std::string& received);
    /// Keeps the answers that are complete and removes them from `received`.
    void Record(std::string& received);
    void AddProblem(std::string text);

    std::uint16_t target_;
    std::uint16_t port_ = 0;
    int listener_ = -1;
    int stop_ = -1;
    mutable std::mutex mutex_;
    std::vector<HttpAnswer> answers_;
    std::vector<std::string> problems_;
    std::vector<std::thread> connections_;
    std::thread acceptor_;
};

} // namespace test_support
