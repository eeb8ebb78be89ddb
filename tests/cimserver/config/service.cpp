// What the server understands of a service manager's variables, and the notices that it sends.
#include "cimserver/PassedListeners.hpp"
#include "cimserver/ServiceManager.hpp"
#include "cimserver/Settings.hpp"
#include "cimserver/config/program/NoticeSocket.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <time.h>

namespace {

using cimserver::Configuration;
using cimserver::ConfigurationError;
using cimserver::PassedSocket;
using cimserver::ServiceManager;
using programtest::NoticeSocket;
using testing::ElementsAre;
using testing::IsEmpty;

class Service : public testing::Test {
protected:
    Service() {
        std::string name = (std::filesystem::temp_directory_path() / "service.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no directory for the test");
        }
        directory = name;
    }
    ~Service() override { std::filesystem::remove_all(directory); }

    static std::string Error() {
        try {
            const ServiceManager manager;
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no error";
    }

    std::filesystem::path directory;
};

TEST_F(Service, WithoutAServiceManagerNothingHappens) {
    const ServiceManager manager;
    EXPECT_THAT(manager.Sockets(), IsEmpty());
    manager.Ready();
}

TEST_F(Service, NoticesArriveOnTheSocketThatTheVariableNames) {
    const NoticeSocket notices((directory / "notify").string());
    setenv("NOTIFY_SOCKET", notices.Name().c_str(), 1);
    const ServiceManager manager;
    EXPECT_EQ(std::getenv("NOTIFY_SOCKET"), nullptr);
    manager.Ready();
    EXPECT_EQ(notices.Next(), "READY=1");
    timespec before{};
    clock_gettime(CLOCK_MONOTONIC, &before);
    manager.Reloading();
    const std::string reloading = notices.Next();
    const std::string start = "RELOADING=1\nMONOTONIC_USEC=";
    ASSERT_TRUE(reloading.starts_with(start)) << reloading;
    const long long time = std::stoll(reloading.substr(start.size()));
    const long long earliest = before.tv_sec * 1'000'000LL + before.tv_nsec / 1000;
    EXPECT_GE(time, earliest);
    EXPECT_LT(time, earliest + 60'000'000);
    manager.Stopping();
    EXPECT_EQ(notices.Next(), "STOPPING=1");
}

TEST_F(Service, NoticesArriveInTheAbstractSpace) {
    const NoticeSocket notices("@cimserver-test-" + std::to_string(getpid()));
    setenv("NOTIFY_SOCKET", notices.Name().c_str(), 1);
    ServiceManager().Ready();
    EXPECT_EQ(notices.Next(), "READY=1");
}

TEST_F(Service, NoticesToNobodyAreLost) {
    setenv("NOTIFY_SOCKET", (directory / "absent").c_str(), 1);
    EXPECT_NO_THROW(ServiceManager().Ready());
    setenv("NOTIFY_SOCKET", std::string(500, 'x').c_str(), 1);
    EXPECT_NO_THROW(ServiceManager().Ready());
}

TEST_F(Service, SocketsOfAnotherProcessArePassedOverAndTheVariablesRemoved) {
    setenv("LISTEN_PID", std::to_string(getppid()).c_str(), 1);
    setenv("LISTEN_FDS", "1", 1);
    setenv("LISTEN_FDNAMES", "http", 1);
    const ServiceManager manager;
    EXPECT_THAT(manager.Sockets(), IsEmpty());
    for (const char* name : {"LISTEN_PID", "LISTEN_FDS", "LISTEN_FDNAMES"}) {
        EXPECT_EQ(std::getenv(name), nullptr) << name;
    }
}

TEST_F(Service, VariablesThatMeanNothingAreNamed) {
    setenv("LISTEN_PID", "me", 1);
    setenv("LISTEN_FDS", "1", 1);
    EXPECT_EQ(Error(), "LISTEN_PID=me is no number");
    setenv("LISTEN_PID", std::to_string(getpid()).c_str(), 1);
    setenv("LISTEN_FDS", "-1", 1);
    EXPECT_EQ(Error(), "LISTEN_FDS=-1 is no number");
    setenv("LISTEN_PID", std::to_string(getpid()).c_str(), 1);
    setenv("LISTEN_FDS", "100000", 1);
    EXPECT_THAT(Error(), testing::MatchesRegex("LISTEN_FDS=100000: descriptor [0-9]+ is not open"));
}

std::string Refusal(const std::vector<PassedSocket>& sockets) {
    Configuration configuration;
    try {
        cimserver::OverrideAddresses(sockets, configuration);
    } catch (const ConfigurationError& error) {
        return error.what();
    }
    return "no error";
}

TEST_F(Service, OnlyASingleSocketNeedsNoName) {
    EXPECT_THAT(cimserver::PlainSockets({{7, ""}}), ElementsAre(7));
    EXPECT_THAT(cimserver::PlainSockets({{7, "unknown"}}), ElementsAre(7));
    EXPECT_THAT(cimserver::PlainSockets({{7, "cimserver.socket"}}), ElementsAre(7));
    EXPECT_THAT(cimserver::PlainSockets({{7, "http"}, {8, "http"}}), ElementsAre(7, 8));
    EXPECT_THAT(cimserver::PlainSockets({{7, "http"}, {8, "https"}}), ElementsAre(7));
    EXPECT_THAT(cimserver::TlsSockets({{7, "http"}, {8, "https"}}), ElementsAre(8));
    EXPECT_EQ(Refusal({{7, "other"}}),
              "LISTEN_FDS: socket 7 (other) has a name that says nothing to this server; expected "
              "http or https");
}

TEST_F(Service, WhatIsNoListeningTcpSocketIsRefused) {
    const NoticeSocket datagrams((directory / "notify").string());
    const int unconnected = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const std::string number = std::to_string(unconnected);
    EXPECT_EQ(Refusal({{unconnected, "http"}}),
              "LISTEN_FDS: socket " + number + " (http) is no TCP socket that listens");
    close(unconnected);
    EXPECT_EQ(Refusal({{0, ""}}), "LISTEN_FDS: socket 0 () is no TCP socket that listens");
}

} // namespace
