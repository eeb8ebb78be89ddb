// A server with users and TLS, two seconds for each request to arrive, and clients that nobody let
// in.
#include "Attack.hpp"

#include "patchkeeper/TemporaryDirectory.hpp"
#include "support/CallHeaders.hpp"
#include "support/TlsClient.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using hostile::Posted;
using hostile::SmallQuestion;
using hostile::StatusAfter;
using test_support::CimClient;

constexpr std::chrono::milliseconds halfOfTheTime{2'500}; // an attack comes twice

/// What an administrator prepares.
class Files {
public:
    Files() {
        Run("printf 'reading\\n' | " CIMSERVER_PROGRAM " passwd rita --file " + Path("passwords"));
        Run(CIMSERVER_PROGRAM " certificate --cert " + Path("cert") + " --key " + Path("key"));
        std::ofstream(Path("conf"))
            << "simple_auth.password_file = " << Path("passwords")
            << "\nhttp_server.SSL_cert = " << Path("cert")
            << "\ncimserver.tls_key = " << Path("key") << "\ncimserver.failure_milliseconds = 1"
            << "\ncimserver.request_seconds = 2\n";
    }
    std::string Path(const std::string& name) const { return (directory_.Path() / name).string(); }

private:
    static void Run(const std::string& command) {
        if (std::system((command + " >/dev/null 2>&1").c_str()) != 0) {
            throw std::runtime_error(command);
        }
    }
    patchkeeper_test::TemporaryDirectory directory_;
};

/// Rita asking over TLS, on one connection.
class Rita {
public:
    explicit Rita(std::uint16_t port, const char* password = "reading") : client_(port) {
        const std::string question = SmallQuestion();
        for (const auto& [name, value] : test_support::CallHeaders(question)) {
            headers_ = curl_slist_append(headers_, (name + ": " + value).c_str());
        }
        for (const char* header : {"CIMOperation: MethodCall", "Content-Type: application/xml"}) {
            headers_ = curl_slist_append(headers_, header);
        }
        curl_easy_setopt(client_.Handle(), CURLOPT_HTTPHEADER, headers_);
        curl_easy_setopt(client_.Handle(), CURLOPT_USERNAME, "rita");
        curl_easy_setopt(client_.Handle(), CURLOPT_PASSWORD, password);
        curl_easy_setopt(client_.Handle(), CURLOPT_HTTPAUTH, CURLAUTH_BASIC);
    }
    ~Rita() { curl_slist_free_all(headers_); }
    Rita(const Rita&) = delete;
    Rita& operator=(const Rita&) = delete;

    test_support::TlsOutcome Post() { return client_.Post(SmallQuestion()); }

private:
    test_support::TlsClient client_;
    curl_slist* headers_ = nullptr;
};

class HostileToUsers : Files, public hostile::Attack {
protected:
    HostileToUsers()
        : Attack({"--config", Path("conf"), "--tls-listen", "127.0.0.1:0"},
                 [](const test_support::ServerProcess& server) -> hostile::Ask {
                     return [rita = std::make_shared<Rita>(server.TlsPort())](
                                const std::string& /*same*/) { return rita->Post().body; };
                 }) {}
};

template <class Function>
void InThreads(int count, const Function& function) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([&function] {
            const auto end = std::chrono::steady_clock::now() + halfOfTheTime;
            do {
                function();
            } while (std::chrono::steady_clock::now() < end && !testing::Test::HasFailure());
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST_F(HostileToUsers, WhoHoldsARequestBeyondItsTimeIsToldSo) {
    Suffer([this] {
        std::vector<std::unique_ptr<CimClient>> held;
        for (int i = 0; i < 40; ++i) {
            held.push_back(std::make_unique<CimClient>(Port()));
            held.back()->Send("POST /cimom HTTP/1.1\r\nHost: localhost\r\nContent-Le");
        }
        for (const auto& client : held) {
            EXPECT_EQ(client->Receive().status, 408);
        }
    });
}

TEST_F(HostileToUsers, WhoHoldsAHandshakeBeyondItsTimeIsClosed) {
    Suffer([this] {
        std::vector<std::unique_ptr<CimClient>> held;
        for (int i = 0; i < 40; ++i) {
            held.push_back(std::make_unique<CimClient>(TlsPort()));
            held.back()->Send("\x16\x03\x01\x02");
        }
        for (const auto& client : held) {
            EXPECT_TRUE(client->IsClosedByServer());
        }
    });
}

TEST_F(HostileToUsers, AFloodWithoutCredentialsReachesNothing) {
    std::atomic<int> refused = 0;
    Suffer([&] {
        InThreads(4, [&] {
            CimClient client(Port());
            const int status = StatusAfter(client, Posted(SmallQuestion()));
            EXPECT_TRUE(status == 401 || status == 503 || status == 0) << status;
            refused += status == 401 ? 1 : 0;
        });
    });
    EXPECT_GT(refused, 8);
}

TEST_F(HostileToUsers, WrongPasswordsOverTlsAreRefused) {
    std::atomic<int> refused = 0;
    Suffer([&] {
        InThreads(4, [&] {
            const auto outcome = Rita(TlsPort(), "guessing").Post();
            const bool isTooSlow = outcome.code == CURLE_SSL_CONNECT_ERROR; // on a busy machine
            EXPECT_TRUE(outcome.status == 401 || isTooSlow) << curl_easy_strerror(outcome.code);
            refused += isTooSlow ? 0 : 1;
        });
    });
    EXPECT_GE(refused, 8);
}

TEST_F(HostileToUsers, EachUserKeepsOneConnectionOverTls) {
    std::atomic<int> answers = 0;
    Suffer([&] {
        std::vector<std::thread> users;
        for (int i = 0; i < 8; ++i) {
            users.emplace_back([&] {
                const auto end = std::chrono::steady_clock::now() + halfOfTheTime;
                Rita rita(TlsPort());
                long connections = 0;
                do {
                    const auto outcome = rita.Post();
                    EXPECT_EQ(outcome.code, CURLE_OK) << curl_easy_strerror(outcome.code);
                    EXPECT_EQ(outcome.status, 200);
                    connections += outcome.connections;
                    ++answers;
                } while (std::chrono::steady_clock::now() < end);
                EXPECT_EQ(connections, 1);
            });
        }
        for (std::thread& user : users) {
            user.join();
        }
    });
    EXPECT_GE(answers, 32);
}

} // namespace
