// Who is let in over the wire, and what becomes of those who are not.
#include "HttpTest.hpp"
#include "SecretFiles.hpp"

#include "cimserver/http/Http.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>

namespace {

using namespace std::chrono_literals;
using cimserver::http::Request;
using cimserver::http::Server;
using cimserver::http::Settings;
using cimserver::http::Users;
using http_test::Answer;
using http_test::SecretFiles;
using test_support::CimClient;
using test_support::HttpAnswer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Clock = std::chrono::steady_clock;

const std::string anna = "Basic YW5uYTpzZWNyZXQ=";      // anna:secret
const std::string annaWrong = "Basic YW5uYTp3cm9uZ3c="; // anna:wrongw

/// A server that lets anna and bert in and keeps what its handler is given.
class HttpAccess : public testing::Test {
protected:
    HttpAccess() {
        settings.port = 0;
        settings.access.isAnonymous = false;
        settings.access.users = std::make_shared<Users>(files.AnnaAndBert());
        settings.access.failureDelay = 0ms;
        settings.access.log = [this](const std::string& line) {
            const std::lock_guard lock(mutex);
            log.push_back(line);
        };
    }

    Server& Start() {
        server = std::make_unique<Server>(settings, [this](const Request& request, Answer& answer) {
            const std::lock_guard lock(mutex);
            seen.push_back(request);
            answer.Append("in as " + request.user);
        });
        return *server;
    }
    HttpAnswer Ask(const std::vector<std::string>& credentials, const std::string& body = "x") {
        test_support::HeaderList headers;
        for (const auto& value : credentials) {
            headers.emplace_back("Authorization", value);
        }
        return CimClient(server->Port()).Request("POST", headers, body);
    }

    SecretFiles files;
    Settings settings;
    std::mutex mutex;
    std::vector<std::string> log;
    std::vector<Request> seen;
    std::unique_ptr<Server> server;
};

TEST_F(HttpAccess, ARightPairComesInUnderItsName) {
    Start();
    EXPECT_EQ(Ask({anna}).body, "in as anna");
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].user, "anna");
    EXPECT_EQ(seen[0].body, "x");
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(HttpAccess, NoPasswordGoesToTheHandler) {
    Start();
    Ask({anna});
    ASSERT_EQ(seen.size(), 1U);
    for (const auto& header : seen[0].headers) {
        EXPECT_THAT(header.value, testing::Not(HasSubstr("Basic"))) << header.name;
    }
}

TEST_F(HttpAccess, WhoeverBringsNoRightCredentialsNeverReachesTheHandler) {
    Start();
    for (const auto& credentials :
         std::vector<std::vector<std::string>>{{},
                                               {""},
                                               {"Basic"},
                                               {"Basic ???"},
                                               {"Basic YW5uYQ=="},
                                               {anna, anna},
                                               {anna, annaWrong},
                                               {"Digest YW5uYTpzZWNyZXQ="},
                                               {"Bearer YW5uYTpzZWNyZXQ="},
                                               {annaWrong},
                                               {"Basic bm9ib2R5OnNlY3JldA=="}}) {
        const HttpAnswer answer = Ask(credentials);
        EXPECT_EQ(answer.status, 401) << testing::PrintToString(credentials);
        EXPECT_THAT(answer.Header("WWW-Authenticate"), testing::StartsWith("Basic realm="));
        EXPECT_EQ(answer.body, "");
    }
    EXPECT_THAT(seen, IsEmpty());
}

TEST_F(HttpAccess, FailuresAreLoggedWithUserAndAddressAndWithoutPassword) {
    Start();
    Ask({});
    EXPECT_THAT(log, IsEmpty()) << "a request that has not been asked for credentials yet";
    Ask({annaWrong});
    Ask({"Basic ???"});
    Ask({anna, anna});
    EXPECT_THAT(log,
                ElementsAre("refused user `anna` from 127.0.0.1: unknown user, wrong password, "
                            "or not one of the allowed users",
                            "refused user `` from 127.0.0.1: credentials that are not Base64",
                            "refused user `` from 127.0.0.1: several Authorization headers"));
}

TEST_F(HttpAccess, ALongNameIsCutInTheLog) {
    Start();
    std::string encoded;
    for (int i = 0; i < 500; ++i) {
        encoded += "YWFh"; // aaa
    }
    Ask({"Basic " + encoded + "OmI="});
    ASSERT_EQ(log.size(), 1U);
    EXPECT_THAT(log[0], HasSubstr("`" + std::string(100, 'a') + "`"));
}

TEST_F(HttpAccess, ANameInTheLogCannotPassForAnotherAddress) {
    Start();
    Ask({"Basic eGAgZnJvbSAxMC4wLjAuOTogeQ=="}); // "x` from 10.0.0.9: y"
    ASSERT_EQ(log.size(), 1U);
    EXPECT_THAT(log[0], testing::StartsWith("refused user `x??from?10.0.0.9` from 127.0.0.1: "));
}

TEST_F(HttpAccess, AfterARefusalTheConnectionServesOn) {
    Start();
    CimClient client(server->Port());
    EXPECT_EQ(client.Request("POST", {}, "some body").status, 401);
    EXPECT_EQ(client.Request("POST", {{"Authorization", anna}}, "other").body, "in as anna");
    EXPECT_EQ(client.Request("GET", {}, "").status, 401);
    EXPECT_EQ(client.Request("POST", {{"Authorization", anna}}, "third").body, "in as anna");
}

TEST_F(HttpAccess, ALongBodyIsNotReadWithoutCredentials) {
    settings.access.maxRefusedBodyBytes = 100;
    Start();
    EXPECT_EQ(Ask({}, std::string(100, 'x')).status, 401);
    CimClient client(server->Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 101\r\n\r\n");
    const HttpAnswer answer = client.Receive();
    EXPECT_EQ(answer.status, 401);
    EXPECT_EQ(answer.Header("Connection"), "close");
    EXPECT_EQ(Ask({anna}, std::string(101, 'x')).status, 200);
}

TEST_F(HttpAccess, ABodyWithoutAnnouncedLengthIsNotReadWithoutCredentials) {
    Start();
    CimClient client(server->Port());
    client.Send("M-POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n");
    const HttpAnswer answer = client.Receive();
    EXPECT_EQ(answer.status, 401);
    EXPECT_EQ(answer.Header("Connection"), "close");
}

TEST_F(HttpAccess, AWrongPasswordIsAnsweredSlowlyAndHindersNobody) {
    settings.access.failureDelay = 1s;
    Start();
    EXPECT_EQ(Ask({anna}).status, 200);
    const auto start = Clock::now();
    auto wrong = std::async(std::launch::async, [&] { return Ask({annaWrong}).status; });
    int answers = 0;
    while (wrong.wait_for(0s) != std::future_status::ready) {
        EXPECT_EQ(Ask({anna}).status, 200);
        ++answers;
    }
    EXPECT_EQ(wrong.get(), 401);
    EXPECT_GE(Clock::now() - start, 1s);
    EXPECT_GE(answers, 10);
}

TEST_F(HttpAccess, TheTimeOfACheckIsNoTimeOfTheRequest) {
    settings.requestSeconds = 1;
    settings.access.failureDelay = 2500ms;
    Start();
    EXPECT_EQ(Ask({annaWrong}).status, 401);
}

TEST_F(HttpAccess, ARequestWithoutCredentialsIsAnsweredAtOnce) {
    settings.access.failureDelay = 60s;
    Start();
    EXPECT_EQ(Ask({}).status, 401);
}

TEST_F(HttpAccess, TheEndOfTheServerDoesNotWaitForADelay) {
    settings.access.failureDelay = 60s;
    Start();
    CimClient client(server->Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nAuthorization: " + annaWrong +
                "\r\nContent-Length: 0\r\n\r\n");
    const auto limit = Clock::now() + 20s;
    const auto isLogged = [&] {
        const std::lock_guard lock(mutex);
        return !log.empty();
    };
    while (!isLogged() && Clock::now() < limit) {
        std::this_thread::yield();
    }
    const auto start = Clock::now();
    server.reset();
    EXPECT_LT(Clock::now() - start, 20s);
}

TEST_F(HttpAccess, WhereNobodyNeedsCredentialsThoseThatAreBroughtHaveToBeRight) {
    settings.access.isAnonymous = true;
    Start();
    EXPECT_EQ(Ask({}).body, "in as ");
    EXPECT_EQ(Ask({anna}).body, "in as anna");
    EXPECT_EQ(Ask({annaWrong}).status, 401);
    EXPECT_EQ(Ask({"Digest x"}).status, 401);
}

TEST_F(HttpAccess, WhereThereAreNoUsersCredentialsDoNotCount) {
    settings.access.isAnonymous = true;
    settings.access.users = nullptr;
    Start();
    EXPECT_EQ(Ask({annaWrong}).body, "in as ");
    EXPECT_EQ(Ask({"Digest x"}).body, "in as ");
}

TEST_F(HttpAccess, WithoutUsersAndAnonymousClientsNobodyComesIn) {
    settings.access.users = nullptr;
    Start();
    EXPECT_EQ(Ask({}).status, 401);
    EXPECT_EQ(Ask({anna}).status, 401);
    EXPECT_THAT(seen, IsEmpty());
}

} // namespace
