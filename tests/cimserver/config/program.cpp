// The program as its users meet it: command line, exit codes, signals, what its children inherit.
#include "cimserver/config/program/Running.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace programtest {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string mofFile = TEST_DATA_DIRECTORY "/program/test.mof";

class Program : public testing::Test {
protected:
    Program() {
        std::string name = (std::filesystem::temp_directory_path() / "program.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no directory for the test");
        }
        directory = name;
    }
    ~Program() override { std::filesystem::remove_all(directory); }

    std::string ConfigFile(const std::string& text) const {
        const auto file = directory / "my.conf";
        std::ofstream(file) << text;
        return file.string();
    }
    /// One that lets everybody on this machine in.
    std::string OpenConfigFile(const std::string& text = "") const {
        return ConfigFile("owcimomd.allow_anonymous = true\n" + text);
    }
    /// Arguments of a server that serves the class of the tests on a free port.
    std::vector<std::string> Serving(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments{
            "--mof", mofFile, "--provider-dir", PROGRAM_TEST_PROVIDERS, "--listen", "127.0.0.1:0"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        if (std::find(more.begin(), more.end(), "--config") == more.end()) {
            arguments.insert(arguments.end(), {"--config", OpenConfigFile()});
        }
        return arguments;
    }
    static std::string Names(std::uint16_t port) {
        return test_support::CimClient(port)
            .Post(test_support::IntrinsicCall(
                "EnumerateInstanceNames",
                "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"HT_Program\"/></IPARAMVALUE>"))
            .body;
    }
    /// A server that must not start: exit code 1 and one line on standard error.
    static std::string StartError(const std::vector<std::string>& arguments) {
        Running server(arguments);
        EXPECT_EQ(server.Wait(), 1);
        EXPECT_THAT(server.Output(), IsEmpty());
        EXPECT_THAT(server.Error(), AllOf(StartsWith("cimserver: "), EndsWith("\n")));
        EXPECT_EQ(std::count(server.Error().begin(), server.Error().end(), '\n'), 1);
        return server.Error();
    }

    /// The set after that text, one bit a signal; without 32 and 33, which the C library ignores in
    /// the programs that it starts.
    static std::uint64_t Signals(const std::string& log, const std::string& after) {
        const auto at = log.find(after);
        if (at == std::string::npos) {
            throw std::runtime_error("there is no `" + after + "`");
        }
        return std::stoull(log.substr(at + after.size()), nullptr, 16) & ~0x180000000ULL;
    }

    std::filesystem::path directory;
};

TEST_F(Program, HelpGoesToStandardOutputAndIsNoError) {
    Running server({"--help"});
    EXPECT_EQ(server.Wait(), 0);
    EXPECT_THAT(server.Output(), HasSubstr("--listen ADDR:PORT"));
    EXPECT_THAT(server.Error(), IsEmpty());
}

TEST_F(Program, Version) {
    Running server({"--version"});
    EXPECT_EQ(server.Wait(), 0);
    EXPECT_THAT(server.Output(), testing::MatchesRegex("cimserver [0-9.]+\n"));
}

TEST_F(Program, UsageErrorEndsWithTwo) {
    Running server({"--nonsense"});
    EXPECT_EQ(server.Wait(), 2);
    EXPECT_THAT(server.Output(), IsEmpty());
    EXPECT_THAT(server.Error(), HasSubstr("--nonsense"));
}

TEST_F(Program, StartErrorsAreOneLineEach) {
    EXPECT_THAT(StartError({}), HasSubstr("no MOF file: name the files"));
    EXPECT_THAT(StartError({"--mof", "/absent.mof"}), HasSubstr("/absent.mof"));
    EXPECT_THAT(StartError({"--mof", mofFile, "--listen", "0.0.0.0:0"}),
                HasSubstr("`0.0.0.0` can be reached from other machines"));
    EXPECT_THAT(StartError({"--config", "/absent.conf"}),
                EndsWith("/absent.conf: No such file or directory; name a configuration file "
                         "that can be read\n"));
    EXPECT_THAT(StartError({"--config", ConfigFile("# x\nnonsense\n")}),
                EndsWith("my.conf:2: expected `name = value`\n"));
    EXPECT_THAT(StartError({"--mof", mofFile, "--provider-dir", "/absent"}),
                HasSubstr("there is no directory /absent; name one that is there"));
}

TEST_F(Program, CheckOfTheConfigurationTellsAllAndEnds) {
    Running faulty({"--check-config", "--config",
                    ConfigFile("log.main.level = loud\nzz = 1\ncimserver.mof_files = " + mofFile)});
    EXPECT_EQ(faulty.Wait(), 1);
    EXPECT_THAT(faulty.Output(), IsEmpty());
    EXPECT_THAT(faulty.Error(), AllOf(HasSubstr("/my.conf:1: log.main.level = loud: "),
                                      HasSubstr("/my.conf:2: zz: unknown item")));
    Running well({"--check-config", "--mof", mofFile, "--config", OpenConfigFile()});
    EXPECT_EQ(well.Wait(), 0);
    EXPECT_EQ(well.Output(), "The configuration is in order.\n");
    EXPECT_THAT(well.Error(), IsEmpty());
}

TEST_F(Program, MistakeInTheMofIsNamedWithItsPlace) {
    const auto file = directory / "bad.mof";
    std::ofstream(file) << "class HT_A {\n  nonsense\n};\n";
    EXPECT_THAT(StartError({"--mof", file.string(), "--config", OpenConfigFile()}),
                HasSubstr(file.string() + ":"));
}

TEST_F(Program, PortInUseIsAStartError) {
    Running first(Serving());
    const auto port = std::to_string(first.WaitForPort());
    EXPECT_THAT(StartError({"--mof", mofFile, "--provider-dir", PROGRAM_TEST_PROVIDERS, "--listen",
                            "127.0.0.1:" + port, "--config", OpenConfigFile()}),
                AllOf(HasSubstr(port), HasSubstr("in use")));
}

TEST_F(Program, StopSignalsEndItWithZero) {
    for (const int signal : {SIGTERM, SIGINT}) {
        Running server(Serving());
        EXPECT_THAT(Names(server.WaitForPort()), HasSubstr("INSTANCENAME"));
        server.Signal(signal);
        EXPECT_EQ(server.Wait(), 0);
    }
}

TEST_F(Program, OtherSignalsOfClientsDoNotEndIt) {
    Running server(Serving());
    const auto port = server.WaitForPort();
    server.Signal(SIGPIPE);
    EXPECT_THAT(Names(port), HasSubstr("INSTANCENAME"));
    server.Signal(SIGTERM);
    EXPECT_EQ(server.Wait(), 0);
}

TEST_F(Program, ConfigFileGivesWhatTheCommandLineDoesNot) {
    Running server({"--config", OpenConfigFile("http_server.http_port = 0\n"
                                               "http_server.listen_addresses = 127.0.0.1 ::1\n"
                                               "cppprovifc.prov_location = " PROGRAM_TEST_PROVIDERS
                                               "\ncimserver.mof_files = " +
                                               mofFile + "\ncimserver.namespace = root/cimv2\n")});
    EXPECT_THAT(Names(server.WaitForPort()), HasSubstr("INSTANCENAME"));
    EXPECT_THAT(server.WaitForLine("Listening on http://["),
                testing::MatchesRegex("Listening on http://\\[::1\\]:[0-9]+"));
}

TEST_F(Program, ProviderReadsItemsAndItsLinesGoToTheLog) {
    Running server(Serving({"--config", OpenConfigFile("test.text = any words\n")}));
    Names(server.WaitForPort());
    server.Signal(SIGTERM);
    EXPECT_EQ(server.Wait(), 0);
    EXPECT_THAT(server.Error(), HasSubstr(" ERROR test.provider: any words\n"));
    EXPECT_THAT(server.Error(), Not(HasSubstr("not at the default level")));
}

TEST_F(Program, EachRequestHasALineWithoutAnythingSecret) {
    Running server(Serving());
    const auto port = server.WaitForPort();
    Names(port);
    const std::string key = "<INSTANCENAME CLASSNAME=\"HT_Program\"><KEYBINDING NAME=\"Id\">"
                            "<KEYVALUE>topsecret</KEYVALUE></KEYBINDING></INSTANCENAME>";
    test_support::CimClient client(port);
    client.Post(test_support::IntrinsicCall("GetInstance", "<IPARAMVALUE NAME=\"InstanceName\">" +
                                                               key + "</IPARAMVALUE>"));
    client.Post(test_support::ExtrinsicCall("Top\nsecret", key, ""));
    client.Request("GET", {}, "");
    test_support::CimClient(port).Request("POST", {{"X-Big", std::string(9000, 'x')}}, "");
    server.Signal(SIGTERM);
    EXPECT_EQ(server.Wait(), 0);
    const std::string time = "[0-9.]+ ms\n";
    const std::string& log = server.Error();
    EXPECT_THAT(log,
                ContainsRegex(" REQUEST 127.0.0.1 - EnumerateInstanceNames HT_Program ok " + time));
    EXPECT_THAT(
        log, ContainsRegex(" REQUEST 127.0.0.1 - GetInstance HT_Program CIM_ERR_[A-Z_]+ " + time));
    EXPECT_THAT(log, ContainsRegex(" REQUEST 127.0.0.1 - - - status-405 " + time));
    EXPECT_THAT(log, ContainsRegex(" REQUEST 127.0.0.1 - - - status-431 " + time));
    EXPECT_THAT(log, HasSubstr("Limit reached: cimserver.max_header_bytes, client 127.0.0.1\n"));
    EXPECT_THAT(log, Not(HasSubstr("topsecret")));
}

TEST_F(Program, LinesOfRequestsCanBeSwitchedOff) {
    Running server(Serving({"--config", OpenConfigFile("cimserver.request_log = false\n")}));
    Names(server.WaitForPort());
    server.Signal(SIGTERM);
    EXPECT_EQ(server.Wait(), 0);
    EXPECT_THAT(server.Error(), Not(HasSubstr("REQUEST")));
}

TEST_F(Program, LimitsOfTheConfigurationCount) {
    Running server(Serving({"--config", OpenConfigFile("cimserver.max_body_bytes = 2000\n"
                                                       "cimserver.max_header_bytes = 1000\n"
                                                       "cimserver.max_xml_depth = 16\n"
                                                       "cimserver.request_seconds = 1\n")}));
    const auto port = server.WaitForPort();
    std::string nested;
    for (int i = 0; i < 17; ++i) {
        nested += "<a>";
    }
    EXPECT_EQ(test_support::CimClient(port).Post(nested).status, 400);
    EXPECT_EQ(test_support::CimClient(port).Post(std::string(2001, 'x')).status, 413);
    test_support::CimClient head(port);
    EXPECT_EQ(head.Request("POST", {{"X-Big", std::string(1000, 'x')}}, "").status, 431);
    const auto start = std::chrono::steady_clock::now();
    test_support::CimClient silent(port);
    EXPECT_EQ(silent.Receive().status, 408);
    // Without the item it would be 30.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
    for (const char* item : {"cimserver.max_body_bytes", "cimserver.max_header_bytes",
                             "cimserver.max_xml_depth", "cimserver.request_seconds"}) {
        EXPECT_THAT(server.WaitForText(std::string("Limit reached: ") + item),
                    HasSubstr(", client 127.0.0.1"));
    }
}

TEST_F(Program, ConnectionsAreLimitedByTheConfiguration) {
    Running server(
        Serving({"--config", OpenConfigFile("cimserver.max_connections_per_address = 1\n")}));
    const auto port = server.WaitForPort();
    test_support::CimClient held(port);
    EXPECT_EQ(held.Request("GET", {}, "").status, 405);
    EXPECT_EQ(test_support::CimClient(port).Receive().status, 503);
    EXPECT_THAT(server.WaitForText("Limit reached: cimserver.max_connections_per_address"),
                HasSubstr(", client 127.0.0.1"));
    Running other(Serving({"--config", OpenConfigFile("http_server.max_connections = 1\n")}));
    const auto otherPort = other.WaitForPort();
    test_support::CimClient alsoHeld(otherPort);
    EXPECT_EQ(alsoHeld.Request("GET", {}, "").status, 405);
    EXPECT_EQ(test_support::CimClient(otherPort).Receive().status, 503);
    other.WaitForText("Limit reached: http_server.max_connections, client 127.0.0.1");
}

TEST_F(Program, LogCanBeAFile) {
    const auto file = directory / "cimserver.log";
    Running server(Serving(
        {"--config",
         OpenConfigFile("log.main.type = file\nlog.main.location = " + file.string() + "\n")}));
    Names(server.WaitForPort());
    server.Signal(SIGTERM);
    EXPECT_EQ(server.Wait(), 0);
    EXPECT_THAT(server.Error(), Not(HasSubstr("REQUEST")));
    std::stringstream text;
    text << std::ifstream(file).rdbuf();
    EXPECT_THAT(text.str(), HasSubstr(" REQUEST 127.0.0.1 - EnumerateInstanceNames HT_Program ok"));
}

TEST_F(Program, LogThatCannotBeWrittenIsAStartError) {
    EXPECT_THAT(
        StartError(Serving({"--config", OpenConfigFile("log.main.type = file\n"
                                                       "log.main.location = /absent/x\n")})),
        HasSubstr("Cannot write the log /absent/x: No such file or directory; "
                  "log.main.location names a file that can be written"));
}

TEST_F(Program, WhatAProviderPrintsGoesToTheLogAtOnce) {
    Running server(Serving());
    Names(server.WaitForPort());
    EXPECT_EQ(server.WaitForLine("printed on"), "printed on standard output");
    server.Signal(SIGTERM);
    EXPECT_EQ(server.Wait(), 0);
    EXPECT_THAT(server.Output(), IsEmpty());
}

// The server's parent leaves it what a careless one may: open descriptors, a standard input,
// ignored and blocked signals.
TEST_F(Program, ChildrenOfProvidersInheritNothing) {
    Running server(Serving({"--config", OpenConfigFile("test.child = " PROGRAM_TEST_CHILD "\n")}),
                   [] {
                       dup2(open("/etc/passwd", O_RDONLY), 9);
                       dup2(9, 200);
                       dup2(9, STDIN_FILENO);
                       std::signal(SIGCHLD, SIG_IGN);
                       std::signal(SIGPIPE, SIG_IGN);
                       sigset_t all;
                       sigfillset(&all);
                       sigprocmask(SIG_SETMASK, &all, nullptr);
                   });
    const auto port = server.WaitForPort();
    const test_support::CimClient idle(port);
    EXPECT_THAT(Names(port), HasSubstr("INSTANCENAME"));
    server.Signal(SIGTERM);
    EXPECT_EQ(server.Wait(), 0);
    const auto& log = server.Error();
    for (const std::string way : {"popen: ", "system: "}) {
        EXPECT_THAT(log, HasSubstr(way + "descriptor 0 /dev/null\n"));
        EXPECT_THAT(log, HasSubstr(way + "descriptor 1 pipe:"));
        EXPECT_THAT(log, HasSubstr(way + "descriptor 2 pipe:"));
        EXPECT_THAT(log, Not(ContainsRegex(way + "descriptor ([3-9]|[1-9][0-9])")));
        EXPECT_EQ(Signals(log, way + "signals SigBlk:"), 0U);
        EXPECT_EQ(Signals(log, way + "signals SigIgn:"), 0U);
    }
    EXPECT_THAT(log, HasSubstr("popen: status 0\n"));
}

TEST_F(Program, WithoutStandardStreamsItStillServes) {
    Running server(Serving(), [] {
        close(STDIN_FILENO);
        close(STDOUT_FILENO);
    });
    EXPECT_THAT(Names(server.WaitForPort()), HasSubstr("INSTANCENAME"));
    server.Signal(SIGTERM);
    EXPECT_EQ(server.Wait(), 0);
}

TEST_F(Program, AClientThatGoesAwayDoesNotEndIt) {
    Running server(Serving());
    const auto port = server.WaitForPort();
    {
        test_support::CimClient client(port);
        client.Send("POST /cimom HTTP/1.1\r\nHost: localhost\r\nContent-Length: 100\r\n\r\nhalf");
    }
    EXPECT_THAT(Names(port), HasSubstr("INSTANCENAME"));
    server.Signal(SIGTERM);
    EXPECT_EQ(server.Wait(), 0);
}

} // namespace
} // namespace programtest
