#include "Attack.hpp"

#include "support/CallHeaders.hpp"
#include "support/ComesTrue.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <stdexcept>

namespace hostile {

namespace {

std::string NamesOf(const std::string& className) {
    return test_support::IntrinsicCall("EnumerateInstanceNames",
                                       R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME=")" +
                                           className + R"("/></IPARAMVALUE>)");
}

bool IsAnswer(const std::string& body) {
    return body.find("<INSTANCENAME CLASSNAME=\"ET_Item\">") != std::string::npos &&
           body.find("</CIM>") != std::string::npos;
}

} // namespace

std::string SmallQuestion() {
    return NamesOf("ET_Item");
}

std::string LargeQuestion() {
    return NamesOf("ET_Breaking");
}

std::string Posted(const std::string& body, std::string_view moreHeaders) {
    std::string text = "POST /cimom HTTP/1.1\r\nHost: h\r\nCIMOperation: MethodCall\r\n";
    for (const auto& [name, value] : test_support::CallHeaders(body)) {
        text.append(name).append(": ").append(value).append("\r\n");
    }
    text.append(moreHeaders);
    return text + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

int StatusAfter(test_support::CimClient& client, std::string_view bytes) {
    try {
        client.Send(bytes);
        return client.Receive().status;
    } catch (const std::runtime_error&) {
        return 0;
    }
}

GoodClient::GoodClient(std::uint16_t port) : client_(port), thread_([this] { Ask(); }) {
}

GoodClient::~GoodClient() {
    mayEnd_ = true;
    thread_.join();
}

void GoodClient::Ask() {
    const std::string question = SmallQuestion();
    try {
        while (!mayEnd_) {
            const auto start = std::chrono::steady_clock::now();
            const test_support::HttpAnswer answer = client_.Post(question);
            const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(
                std::chrono::steady_clock::now() - start);
            longest_ = std::max(longest_.load(), time);
            if (!IsAnswer(answer.body)) {
                throw std::runtime_error(answer.body);
            }
            ++answers_;
            // It shares the machine with the attack.
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    } catch (const std::exception& error) {
        ADD_FAILURE() << "the good client was not answered: " << error.what();
    }
}

Attack::Attack()
    : server_({"--provider-dir", SHELF_PROVIDERS, "--mof", SHELF_MOF}), good_(server_.Port()) {
    EXPECT_TRUE(test_support::ComesTrue([this] { return good_.Answers() > 0; }));
    threads_ = server_.Threads();
    descriptors_ = server_.OpenDescriptors();
}

Attack::~Attack() {
    EXPECT_TRUE(IsAnswer(test_support::CimClient(Port()).Post(SmallQuestion()).body));
    EXPECT_EQ(server_.Zombies(), 0U);
}

void Attack::Calm() {
    EXPECT_TRUE(test_support::ComesTrue([this] { return server_.Threads() <= threads_; }))
        << server_.Threads() << " threads in place of " << threads_;
    EXPECT_TRUE(test_support::ComesTrue([this] {
        return server_.OpenDescriptors() <= descriptors_;
    })) << server_.OpenDescriptors()
        << " descriptors in place of " << descriptors_;
}

void Attack::Suffer(const std::function<void()>& attack) {
    const unsigned before = good_.Answers();
    attack();
    Calm();
    EXPECT_GT(good_.Answers(), before);
    // Far from what it takes: the machine may be busy with other tests.
    EXPECT_LT(good_.LongestAnswer(), std::chrono::seconds(20));
    const double memory = server_.ResidentMegabytes();
    attack();
    Calm();
    // The C library keeps a heap for every few threads, and these do not fill alike.
    EXPECT_LT(server_.ResidentMegabytes(), memory + MEMORY_MARGIN);
}

} // namespace hostile
