// The program with users: what a reload takes, and that it ends no connection.
#include "cimserver/config/program/NoticeSocket.hpp"
#include "cimserver/config/program/Running.hpp"
#include "cimserver/http/PasswordFile.hpp"
#include "cimserver/http/PasswordHash.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>

namespace programtest {
namespace {

using cimserver::http::HashOf;
using cimserver::http::SetPassword;
using test_support::CimClient;
using test_support::HttpAnswer;
using test_support::IntrinsicCall;
using testing::HasSubstr;
using testing::Not;

const std::string secret = "Basic YW5uYTpzZWNyZXQ="; // anna:secret
const std::string other = "Basic YW5uYTpvdGhlcg==";  // anna:other

class WithUsers : public testing::Test {
protected:
    WithUsers() {
        std::string name = (std::filesystem::temp_directory_path() / "users.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no directory for the test");
        }
        directory = name;
        SetPassword(passwords = directory / "passwords", "anna", HashOf("secret", 1));
        Configure("");
        notices.emplace((directory / "notify").string());
        server.emplace(std::vector<std::string>{"--mof", TEST_DATA_DIRECTORY "/program/test.mof",
                                                "--provider-dir", PROGRAM_TEST_PROVIDERS,
                                                "--listen", "127.0.0.1:0", "--config",
                                                directory / "my.conf"},
                       [this] { setenv("NOTIFY_SOCKET", notices->Name().c_str(), 1); });
        EXPECT_EQ(notices->Next(), "READY=1");
        client.emplace(server->WaitForPort());
    }
    ~WithUsers() override { std::filesystem::remove_all(directory); }

    /// What the server wrote to its log until its end.
    std::string LogAtEnd() {
        client.reset();
        server->Signal(SIGTERM);
        EXPECT_EQ(server->Wait(), 0);
        return server->Error();
    }

    void Configure(const std::string& more) const {
        std::ofstream(directory / "my.conf") << "simple_auth.password_file = " << passwords.string()
                                             << "\ncimserver.failure_milliseconds = 1\n"
                                             << more;
    }
    void HangUp() const {
        server->Signal(SIGHUP);
        EXPECT_THAT(notices->Next(), testing::StartsWith("RELOADING=1"));
        EXPECT_EQ(notices->Next(), "READY=1");
    }
    /// On the one connection of the test.
    HttpAnswer Read(const std::string& credentials) {
        return client->Post(
            IntrinsicCall("EnumerateInstanceNames",
                          "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"HT_Program\"/>"
                          "</IPARAMVALUE>"),
            {{"Authorization", credentials}});
    }
    HttpAnswer Delete(const std::string& credentials) {
        return client->Post(IntrinsicCall("DeleteInstance",
                                          "<IPARAMVALUE NAME=\"InstanceName\"><INSTANCENAME "
                                          "CLASSNAME=\"HT_Program\"/></IPARAMVALUE>"),
                            {{"Authorization", credentials}});
    }

    std::filesystem::path directory;
    std::filesystem::path passwords;
    std::optional<NoticeSocket> notices;
    std::optional<Running> server;
    std::optional<CimClient> client;
};

const std::string denied = "CODE=\"2\"";

TEST_F(WithUsers, AServerThatAsksForAPasswordGoesByAnyName) {
    CimClient named(server->WaitForPort());
    named.Send("POST /cimom HTTP/1.1\r\nHost: server.example\r\nContent-Length: 0\r\n\r\n");
    EXPECT_EQ(named.Receive().status, 401);
}

TEST_F(WithUsers, HangUpTakesPasswordsAndForgetsTheOldOnes) {
    EXPECT_THAT(Read(secret).body, HasSubstr("INSTANCENAME"));
    EXPECT_EQ(Read(other).status, 401);
    SetPassword(passwords, "anna", HashOf("other", 1));
    EXPECT_THAT(Read(secret).body, HasSubstr("INSTANCENAME"));
    HangUp();
    EXPECT_EQ(Read(secret).status, 401);
    EXPECT_THAT(Read(other).body, HasSubstr("INSTANCENAME"));
}

TEST_F(WithUsers, HangUpTakesWritersAndAllowedUsers) {
    EXPECT_THAT(Delete(secret).body, HasSubstr(denied));
    Configure("cimserver.writers = anna\n");
    HangUp();
    EXPECT_THAT(Delete(secret).body, testing::AllOf(HasSubstr("<ERROR"), Not(HasSubstr(denied))));
    Configure("cimserver.writers = *\nowcimomd.allowed_users = bert\n");
    HangUp();
    EXPECT_EQ(Delete(secret).status, 401);
}

TEST_F(WithUsers, AFaultyPasswordFileLeavesTheOldUsers) {
    SetPassword(passwords, "anna", HashOf("other", 1));
    chmod(passwords.c_str(), 0644);
    HangUp();
    EXPECT_THAT(Read(secret).body, HasSubstr("INSTANCENAME"));
    EXPECT_EQ(Read(other).status, 401);
    const std::string log = LogAtEnd();
    EXPECT_THAT(log, HasSubstr("Configuration not taken: "));
    EXPECT_THAT(log, HasSubstr("group or others have access to these passwords"));
}

TEST_F(WithUsers, UsersStayUntilTheNextStartWhenTheirFileIsNoLongerNamed) {
    std::ofstream(directory / "my.conf") << "owcimomd.allow_anonymous = true\n";
    HangUp();
    EXPECT_EQ(client->Request("POST", {}, "").status, 401);
    EXPECT_THAT(Read(secret).body, HasSubstr("INSTANCENAME"));
    EXPECT_THAT(LogAtEnd(), HasSubstr("simple_auth.password_file has come or gone, which counts "
                                      "from the next start on"));
}

/// anna with a password of her own for each number below 1000, none of them right.
std::string Guess(int number) {
    std::string encoded = "Basic YW5uYTpz"; // anna:s
    for (int digits = 0; digits < 3; ++digits, number /= 10) {
        encoded += "YWF"; // with a letter behind it: aaa to aaj
        encoded += static_cast<char>('h' + number % 10);
    }
    return encoded;
}

struct Held {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    bool operator==(const Held&) const = default;
};

void PrintTo(const Held& held, std::ostream* out) {
    *out << held.descriptors << " descriptors, " << held.threads << " threads";
}

Held HeldBy(pid_t process) {
    const auto count = [&](const char* what) {
        const std::filesystem::directory_iterator all("/proc/" + std::to_string(process) + what);
        return static_cast<std::size_t>(std::distance(all, std::filesystem::directory_iterator()));
    };
    return {count("/fd"), count("/task")};
}

TEST_F(WithUsers, AThousandWrongPasswordsHinderNobodyAndLeaveNothing) {
    constexpr int attackers = 10;
    // More than a pipe that nobody reads would take.
    Configure("log.main.type = file\nlog.main.location = " + (directory / "log").string() + "\n");
    HangUp();
    EXPECT_THAT(Read(secret).body, HasSubstr("INSTANCENAME"));
    const Held before = HeldBy(server->Pid());
    const std::uint16_t port = server->WaitForPort();
    std::atomic<int> refused = 0;
    std::atomic<int> running = attackers;
    std::vector<std::thread> threads;
    for (int attacker = 0; attacker < attackers; ++attacker) {
        threads.emplace_back([&, attacker] {
            for (int i = attacker; i < 1000; i += attackers) {
                refused +=
                    CimClient(port).Request("POST", {{"Authorization", Guess(i)}}, "x").status ==
                            401
                        ? 1
                        : 0;
            }
            --running;
        });
    }
    int served = 0;
    int notServed = 0;
    while (running != 0) {
        ++(Read(secret).status == 200 ? served : notServed);
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(refused, 1000);
    EXPECT_EQ(notServed, 0);
    EXPECT_GT(served, 20);
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (HeldBy(server->Pid()) != before && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(HeldBy(server->Pid()), before);
    std::ifstream log(directory / "log");
    int lines = 0;
    for (std::string line; std::getline(log, line);) {
        lines += line.find("refused user `anna` from 127.0.0.1") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(lines, 1000);
}

TEST(AnonymousClients, ComeInOnLoopbackOnlyWhileUsersComeInEverywhere) {
    std::string directory = (std::filesystem::temp_directory_path() / "users.XXXXXX").string();
    ASSERT_NE(mkdtemp(directory.data()), nullptr);
    SetPassword(directory + "/passwords", "anna", HashOf("secret", 1));
    std::ofstream(directory + "/my.conf")
        << "simple_auth.password_file = " << directory << "/passwords\n"
        << "owcimomd.allow_anonymous = true\ncimserver.plain_from_anywhere = true\n"
        << "http_server.listen_addresses = 127.0.0.1 0.0.0.0\nhttp_server.http_port = 0\n";
    Running server({"--mof", TEST_DATA_DIRECTORY "/program/test.mof", "--provider-dir",
                    PROGRAM_TEST_PROVIDERS, "--config", directory + "/my.conf"});
    const std::string everywhere = server.WaitForLine("Listening on http://0.0.0.0:");
    const auto status = [](const std::string& line, const test_support::HeaderList& headers) {
        const auto port = static_cast<std::uint16_t>(std::stoi(line.substr(line.rfind(':') + 1)));
        return CimClient(port).Request("GET", headers, "").status;
    };
    const std::string here = server.WaitForLine("Listening on http://127.0.0.1:");
    EXPECT_NE(status(here, {}), 401);
    EXPECT_EQ(status(everywhere, {}), 401);
    EXPECT_NE(status(everywhere, {{"Authorization", secret}}), 401);
    std::filesystem::remove_all(directory);
}

} // namespace
} // namespace programtest
