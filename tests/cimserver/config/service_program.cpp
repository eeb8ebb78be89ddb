// The program under a service manager, and the configuration that is read again on SIGHUP.
#include "cimserver/config/program/NoticeSocket.hpp"
#include "cimserver/config/program/Running.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <netinet/in.h>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace programtest {
namespace {

using testing::HasSubstr;
using testing::Not;

/// A socket that listens before the server is there.
class Listening {
public:
    explicit Listening(const char* address = "127.0.0.1")
        : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in own{};
        own.sin_family = AF_INET;
        inet_pton(AF_INET, address, &own.sin_addr);
        socklen_t size = sizeof own;
        auto* name = reinterpret_cast<sockaddr*>(&own);
        if (bind(socket_, name, size) != 0 || listen(socket_, 10) != 0 ||
            getsockname(socket_, name, &size) != 0) {
            throw std::runtime_error("cannot listen");
        }
        port_ = ntohs(own.sin_port);
    }
    ~Listening() { close(socket_); }
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

    int Socket() const { return socket_; }
    std::uint16_t Port() const { return port_; }

private:
    int socket_;
    std::uint16_t port_ = 0;
};

/// To be called in the server's process before it starts: passes the sockets as its manager does.
void Pass(const std::vector<int>& sockets, const char* names) {
    // Out of the way of the numbers that they get.
    std::vector<int> copies;
    for (const int socket : sockets) {
        copies.push_back(fcntl(socket, F_DUPFD, 100));
    }
    for (std::size_t i = 0; i < copies.size(); ++i) {
        dup2(copies[i], 3 + static_cast<int>(i));
        close(copies[i]);
    }
    setenv("LISTEN_PID", std::to_string(getpid()).c_str(), 1);
    setenv("LISTEN_FDS", std::to_string(sockets.size()).c_str(), 1);
    setenv("LISTEN_FDNAMES", names, 1);
}

class Managed : public testing::Test {
protected:
    Managed() {
        std::string name = (std::filesystem::temp_directory_path() / "managed.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no directory for the test");
        }
        directory = name;
        notices.emplace((directory / "notify").string());
        Configure("");
    }
    ~Managed() override { std::filesystem::remove_all(directory); }

    /// Everybody on this machine is let in.
    void Configure(const std::string& text) const {
        std::ofstream(directory / "my.conf") << text << "owcimomd.allow_anonymous = true\n";
    }
    std::vector<std::string> Arguments() const {
        return {"--mof",          TEST_DATA_DIRECTORY "/program/test.mof",
                "--provider-dir", PROGRAM_TEST_PROVIDERS,
                "--config",       (directory / "my.conf").string()};
    }
    /// With a port of its own.
    std::vector<std::string> Serving() const {
        auto arguments = Arguments();
        arguments.insert(arguments.end(), {"--listen", "127.0.0.1:0"});
        return arguments;
    }
    std::function<void()> Notifying() const {
        return [this] { setenv("NOTIFY_SOCKET", notices->Name().c_str(), 1); };
    }
    static std::string Ask(test_support::CimClient& client) {
        return client
            .Post(test_support::IntrinsicCall(
                "EnumerateInstanceNames",
                "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"HT_Program\"/></IPARAMVALUE>"))
            .body;
    }
    static std::string Ask(std::uint16_t port) {
        test_support::CimClient client(port);
        return Ask(client);
    }
    void HangUp(const Running& server) const {
        server.Signal(SIGHUP);
        EXPECT_THAT(notices->Next(), testing::StartsWith("RELOADING=1\nMONOTONIC_USEC="));
        EXPECT_EQ(notices->Next(), "READY=1");
    }
    static std::string TextOf(const std::filesystem::path& file) {
        std::stringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }
    static void ExpectStop(Running& server) {
        server.Signal(SIGTERM);
        EXPECT_EQ(server.Wait(), 0);
    }

    std::filesystem::path directory;
    std::optional<NoticeSocket> notices;
};

TEST_F(Managed, IsReadyWhenItListensAndTellsOfTheStop) {
    Running server(Serving(), Notifying());
    EXPECT_EQ(notices->Next(), "READY=1");
    EXPECT_THAT(Ask(server.WaitForPort()), HasSubstr("INSTANCENAME"));
    server.Signal(SIGTERM);
    EXPECT_EQ(notices->Next(), "STOPPING=1");
    EXPECT_EQ(server.Wait(), 0);
}

TEST_F(Managed, ARequestThatCameBeforeTheServerIsAnswered) {
    const Listening listening;
    test_support::CimClient early(listening.Port());
    const std::string body = test_support::IntrinsicCall(
        "EnumerateInstanceNames",
        "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"HT_Program\"/></IPARAMVALUE>");
    early.Send("POST /cimom HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/xml\r\n"
               "CIMOperation: MethodCall\r\nCIMMethod: EnumerateInstanceNames\r\n"
               "CIMObject: root/cimv2\r\nContent-Length: " +
               std::to_string(body.size()) + "\r\n\r\n" + body);
    Running server(Arguments(), [&] { Pass({listening.Socket()}, "unknown"); });
    EXPECT_EQ(server.WaitForPort(), listening.Port());
    EXPECT_THAT(early.Receive().body, HasSubstr("INSTANCENAME"));
    ExpectStop(server);
}

TEST_F(Managed, PassedSocketsStandForEveryAddressOfTheConfiguration) {
    Configure("http_server.listen_addresses = 127.0.0.3\nhttp_server.http_port = 1\n");
    const Listening one;
    const Listening other;
    Running server(Arguments(), [&] { Pass({one.Socket(), other.Socket()}, "http:http"); });
    EXPECT_THAT(Ask(one.Port()), HasSubstr("INSTANCENAME"));
    EXPECT_THAT(Ask(other.Port()), HasSubstr("INSTANCENAME"));
    ExpectStop(server);
    EXPECT_THAT(server.Error(), Not(HasSubstr("127.0.0.3")));
}

TEST_F(Managed, APassedSocketThatOthersCanReachIsRefusedAsAnAddressIs) {
    const Listening listening("0.0.0.0");
    Running server(Arguments(), [&] { Pass({listening.Socket()}, "http"); });
    EXPECT_EQ(server.Wait(), 1);
    EXPECT_THAT(server.Error(), HasSubstr("`0.0.0.0` can be reached from other machines"));
}

TEST_F(Managed, ChildrenOfProvidersInheritNothingOfTheServiceManager) {
    Configure("test.child = " PROGRAM_TEST_CHILD "\n");
    const Listening listening;
    Running server(Arguments(), [&] {
        Notifying()();
        Pass({listening.Socket()}, "http");
    });
    EXPECT_THAT(Ask(listening.Port()), HasSubstr("INSTANCENAME"));
    ExpectStop(server);
    EXPECT_THAT(server.Error(), HasSubstr("popen: variable PATH"));
    EXPECT_THAT(server.Error(), Not(HasSubstr("variable NOTIFY_SOCKET")));
    EXPECT_THAT(server.Error(), Not(HasSubstr("variable LISTEN_")));
    EXPECT_THAT(server.Error(), Not(testing::ContainsRegex("popen: descriptor [3-9]")));
}

TEST_F(Managed, HangUpTakesTheLogLevelAndDropsNoConnection) {
    Running server(Serving(), Notifying());
    EXPECT_EQ(notices->Next(), "READY=1");
    test_support::CimClient client(server.WaitForPort());
    EXPECT_THAT(Ask(client), HasSubstr("INSTANCENAME"));
    HangUp(server);
    Configure("log.main.level = info\n");
    HangUp(server);
    EXPECT_THAT(Ask(client), HasSubstr("INSTANCENAME"));
    Configure("log.main.level = info\ncimserver.request_log = false\n");
    HangUp(server);
    EXPECT_THAT(Ask(client), HasSubstr("INSTANCENAME"));
    ExpectStop(server);
    const std::string& log = server.Error();
    const std::string line = "INFO ow.owcimomd.CIMServer: The configuration was read again";
    // The first one was below the level.
    EXPECT_NE(log.find(line), log.rfind(line));
    EXPECT_EQ(log.find(line, log.find(line) + 1), log.rfind(line));
    EXPECT_NE(log.find(" REQUEST "), log.rfind(" REQUEST "));
    EXPECT_EQ(log.find(" REQUEST ", log.find(" REQUEST ") + 1), log.rfind(" REQUEST "));
}

TEST_F(Managed, HangUpOpensTheLogFileAnew) {
    const auto file = directory / "log";
    Configure("log.main.type = file\nlog.main.location = " + file.string() + "\n");
    Running server(Serving(), Notifying());
    EXPECT_EQ(notices->Next(), "READY=1");
    const auto port = server.WaitForPort();
    Ask(port);
    std::filesystem::rename(file, directory / "old");
    HangUp(server);
    Ask(port);
    ExpectStop(server);
    for (const char* name : {"old", "log"}) {
        const std::string text = TextOf(directory / name);
        EXPECT_THAT(text, HasSubstr(" REQUEST ")) << name;
        EXPECT_EQ(text.find(" REQUEST "), text.rfind(" REQUEST ")) << name;
    }
}

TEST_F(Managed, AFaultyFileLeavesEverythingAndEachMistakeIsLogged) {
    Running server(Serving(), Notifying());
    EXPECT_EQ(notices->Next(), "READY=1");
    const auto port = server.WaitForPort();
    Configure("log.main.level = info\nnonsense\ncimserver.request_log = maybe\n");
    HangUp(server);
    std::filesystem::remove(directory / "my.conf");
    HangUp(server);
    EXPECT_THAT(Ask(port), HasSubstr("INSTANCENAME"));
    ExpectStop(server);
    const std::string& log = server.Error();
    const std::string start = "ERROR ow.owcimomd.CIMServer: Configuration not taken: ";
    const std::string file = (directory / "my.conf").string();
    EXPECT_THAT(log, HasSubstr(start + file + ":2: expected `name = value`\n"));
    EXPECT_THAT(log, HasSubstr(start + file +
                               ":3: cimserver.request_log = maybe: expected true or false\n"));
    EXPECT_THAT(log,
                HasSubstr(start + file + ": No such file or directory; name a configuration file"));
    EXPECT_THAT(log, Not(HasSubstr("INFO")));
    EXPECT_THAT(log, HasSubstr(" REQUEST "));
}

TEST_F(Managed, ItemsThatWaitForARestartAreNamedWhenTheyHaveChanged) {
    Configure("cppprovifc.prov_TTL = 7\ntest.text = one\n");
    Running server(Serving(), Notifying());
    EXPECT_EQ(notices->Next(), "READY=1");
    Configure("cppprovifc.prov_TTL = 7\nhttp_server.timeout = 5\nlog.main.level = info\n");
    HangUp(server);
    ExpectStop(server);
    const std::string& log = server.Error();
    const std::string end = " has changed, which counts from the next start on\n";
    EXPECT_THAT(log, Not(HasSubstr("cppprovifc.prov_TTL" + end)));
    EXPECT_THAT(log, Not(HasSubstr("log.main.level" + end)));
    EXPECT_THAT(log, HasSubstr("http_server.timeout" + end));
    EXPECT_THAT(log, HasSubstr("test.text" + end));
}

TEST_F(Managed, ALogThatCannotBeOpenedLeavesTheOldOne) {
    Running server(Serving(), Notifying());
    EXPECT_EQ(notices->Next(), "READY=1");
    Configure("log.main.type = file\nlog.main.location = /absent/log\nlog.main.level = info\n");
    HangUp(server);
    ExpectStop(server);
    EXPECT_THAT(server.Error(),
                HasSubstr("Configuration not taken: Cannot write the log "
                          "/absent/log: No such file or directory; log.main.location"));
    EXPECT_THAT(server.Error(), Not(HasSubstr("INFO")));
}

TEST_F(Managed, ManyHangUpsDoNoHarm) {
    Running server(Serving(), Notifying());
    EXPECT_EQ(notices->Next(), "READY=1");
    HangUp(server);
    EXPECT_THAT(Ask(server.WaitForPort()), HasSubstr("INSTANCENAME"));
    for (int i = 0; i < 100; ++i) {
        server.Signal(SIGHUP);
    }
    ExpectStop(server);
}

} // namespace
} // namespace programtest
