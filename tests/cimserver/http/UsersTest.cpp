// Who is accepted, what is remembered, and what a check costs.
#include "cimserver/http/Users.hpp"
#include "cimserver/http/SecretFiles.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <thread>

namespace {

using cimserver::http::CredentialError;
using cimserver::http::HashOf;
using cimserver::http::Matches;
using cimserver::http::SetPassword;
using cimserver::http::Users;
using cimserver::http::UserSettings;
using http_test::cheap;
using http_test::SecretFiles;
using namespace std::chrono_literals;

/// Users whose checks are counted and whose time the test tells.
class UsersTest : public testing::Test {
protected:
    UsersTest()
        : settings(files.AnnaAndBert()),
          users(
              settings,
              [this](const auto& password, const auto& hash) { return Check(password, hash); },
              [this] { return now.load(); }) {}

    bool Check(const std::string& password, const std::string& hash) {
        ++checks;
        const int running = ++checksRunning;
        int most = mostAtOnce;
        while (running > most && !mostAtOnce.compare_exchange_weak(most, running)) {
        }
        const bool result = Matches(password, hash);
        --checksRunning;
        return result;
    }

    SecretFiles files;
    UserSettings settings;
    std::atomic<std::chrono::steady_clock::time_point> now = std::chrono::steady_clock::now();
    std::atomic<int> checks = 0;
    std::atomic<int> checksRunning = 0;
    std::atomic<int> mostAtOnce = 0;
    Users users;
};

TEST_F(UsersTest, ARightPairIsAcceptedAndNoOther) {
    EXPECT_TRUE(users.Accepts("anna", "secret"));
    EXPECT_TRUE(users.Accepts("bert", "hidden"));
    EXPECT_FALSE(users.Accepts("anna", "hidden"));
    EXPECT_FALSE(users.Accepts("anna", ""));
    EXPECT_FALSE(users.Accepts("Anna", "secret"));
    EXPECT_FALSE(users.Accepts("", ""));
}

TEST_F(UsersTest, ARightPairIsCheckedOnceInFiveMinutes) {
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(users.Accepts("anna", "secret"));
    }
    EXPECT_EQ(checks, 1);
    now = now.load() + 5min - 1s;
    EXPECT_TRUE(users.Accepts("anna", "secret"));
    EXPECT_EQ(checks, 1);
    now = now.load() + 1s;
    EXPECT_TRUE(users.Accepts("anna", "secret"));
    EXPECT_EQ(checks, 2);
}

TEST_F(UsersTest, WhatIsRememberedIsThePair) {
    EXPECT_TRUE(users.Accepts("anna", "secret"));
    EXPECT_FALSE(users.Accepts("bert", "secret"));
    EXPECT_FALSE(users.Accepts("anna", "wrong"));
    EXPECT_FALSE(users.Accepts("ann", "asecret"));
    EXPECT_EQ(checks, 4);
}

TEST_F(UsersTest, AWrongPairIsNotRemembered) {
    EXPECT_FALSE(users.Accepts("anna", "wrong"));
    EXPECT_FALSE(users.Accepts("anna", "wrong"));
    EXPECT_EQ(checks, 2);
}

TEST_F(UsersTest, AnUnknownUserCostsWhatAWrongPasswordCosts) {
    EXPECT_FALSE(users.Accepts("nobody", "secret"));
    EXPECT_EQ(checks, 1);
}

TEST_F(UsersTest, APasswordThatFitsTheHashThatStandsInForAnUnknownUserIsWrong) {
    for (const char* password : {"secret", "hidden", ""}) {
        EXPECT_FALSE(users.Accepts("nobody", password));
    }
}

TEST_F(UsersTest, OnlyTheAllowedComeInAndTheRestCostsTheSame) {
    settings.allowed = {"bert", "carl"};
    users.Reload(settings);
    EXPECT_TRUE(users.Accepts("bert", "hidden"));
    EXPECT_FALSE(users.Accepts("anna", "secret"));
    EXPECT_FALSE(users.Accepts("carl", "secret"));
    EXPECT_FALSE(users.Accepts("*", "secret"));
    EXPECT_EQ(checks, 4);
}

TEST_F(UsersTest, AReloadForgetsWhatWasRememberedAndTakesTheNewFile) {
    EXPECT_TRUE(users.Accepts("anna", "secret"));
    SetPassword(settings.passwordFile, "anna", HashOf("other", cheap));
    EXPECT_TRUE(users.Accepts("anna", "secret"));
    users.Reload(settings);
    EXPECT_FALSE(users.Accepts("anna", "secret"));
    EXPECT_TRUE(users.Accepts("anna", "other"));
}

TEST_F(UsersTest, AReloadThatFailsChangesNothing) {
    EXPECT_TRUE(users.Accepts("anna", "secret"));
    files.Write("passwords", "nonsense\n");
    EXPECT_THROW(users.Reload(settings), CredentialError);
    EXPECT_TRUE(users.Accepts("anna", "secret"));
    EXPECT_EQ(checks, 1);
    EXPECT_TRUE(users.Accepts("bert", "hidden"));
}

TEST_F(UsersTest, ChecksRunOneAtATimeAndARightPairIsCheckedOnceByAllWhoBringIt) {
    constexpr int clients = 8;
    std::barrier start(clients);
    std::vector<std::thread> threads;
    std::atomic<int> accepted = 0;
    for (int i = 0; i < clients; ++i) {
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            accepted += users.Accepts("anna", i % 2 == 0 ? "secret" : "wrong") ? 1 : 0;
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(accepted, clients / 2);
    EXPECT_EQ(mostAtOnce, 1);
    EXPECT_EQ(checks, 1 + clients / 2);
}

TEST(UsersOfAFile, WithoutAnybodyNobodyIsAccepted) {
    const SecretFiles files;
    files.Write("passwords", "");
    Users users({files.Path("passwords")});
    EXPECT_FALSE(users.Accepts("anna", ""));
}

TEST(UsersOfAFile, AFileThatCannotBeReadIsAnError) {
    const SecretFiles files;
    EXPECT_THROW(Users({files.Path("none")}), CredentialError);
}

} // namespace
