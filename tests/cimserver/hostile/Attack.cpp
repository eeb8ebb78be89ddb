#include "Attack.hpp"

#include "support/CallHeaders.hpp"
#include "support/ComesTrue.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>

namespace hostile {

namespace {

std::string NamesOf(const std::string& className) {
    return test_support::IntrinsicCall("EnumerateInstanceNames",
                                       R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME=")" +
                                           className + R"("/></IPARAMVALUE>)");
}

std::vector<std::string> WithShelf(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--provider-dir", SHELF_PROVIDERS, "--mof", SHELF_MOF});
    return arguments;
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
    std::string text = "POST /cimom HTTP/1.1\r\nHost: localhost\r\nCIMOperation: MethodCall\r\n";
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

GoodClient::GoodClient(Ask ask) : ask_(std::move(ask)), thread_([this] { Run(); }) {
}

GoodClient::~GoodClient() {
    mayEnd_ = true;
    thread_.join();
}

void GoodClient::Run() {
    const std::string question = SmallQuestion();
    try {
        while (!mayEnd_) {
            const auto start = std::chrono::steady_clock::now();
            const std::string answer = ask_(question);
            const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(
                std::chrono::steady_clock::now() - start);
            longest_ = std::max(longest_.load(), time);
            if (!IsAnswer(answer)) {
                throw std::runtime_error(answer);
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
    : Attack({}, [](const test_support::ServerProcess& server) -> Ask {
          return [client = std::make_shared<test_support::CimClient>(server.Port())](
                     const std::string& question) { return client->Post(question).body; };
      }) {
}

Attack::Attack(const std::vector<std::string>& arguments, NewClient newClient)
    : newClient_(std::move(newClient)), server_(WithShelf(arguments)), good_(newClient_(server_)) {
    EXPECT_TRUE(test_support::ComesTrue([this] { return good_.Answers() > 0; }));
    threads_ = server_.Threads();
    descriptors_ = server_.OpenDescriptors();
}

Attack::~Attack() {
    EXPECT_TRUE(IsAnswer(newClient_(server_)(SmallQuestion())));
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
