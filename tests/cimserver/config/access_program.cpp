// The program with users: what a reload takes, and that it ends no connection.
#include "cimserver/config/program/NoticeSocket.hpp"
#include "cimserver/config/program/Running.hpp"
#include "cimserver/http/PasswordFile.hpp"
#include "cimserver/http/PasswordHash.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <sys/stat.h>

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
