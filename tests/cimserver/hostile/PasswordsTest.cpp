// Somebody who tries passwords, beside a user who has the right one.
#include "Attack.hpp"

#include "cimserver/http/PasswordHash.hpp"
#include "support/ComesTrue.hpp"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using test_support::CimClient;
using test_support::HeaderList;
using test_support::ServerProcess;

/// A server with one user, anna, and her password.
class Passwords : public testing::Test {
protected:
    Passwords() {
        fs::create_directories(directory_);
        const auto users = directory_ / "users";
        constexpr unsigned long cheap = 1; // what is right takes no time, so that many are tried
        std::ofstream(users) << "anna:" << cimserver::http::HashOf("secret", cheap) << "\n";
        chmod(users.c_str(), 0600);
        std::ofstream(directory_ / "conf") << "simple_auth.password_file = " << users.string()
                                           << "\ncimserver.failure_milliseconds = 20\n";
        server_.emplace(std::vector<std::string>{"--config", (directory_ / "conf").string(),
                                                 "--provider-dir", SHELF_PROVIDERS, "--mof",
                                                 SHELF_MOF});
    }
    ~Passwords() override {
        server_.reset();
        fs::remove_all(directory_);
    }

    int StatusFor(CimClient& client, const std::string& credentials) const {
        return client.Post(hostile::SmallQuestion(), {{"Authorization", "Basic " + credentials}})
            .status;
    }

    const fs::path directory_ = testing::TempDir() + "passwords";
    const std::string right_ = "YW5uYTpzZWNyZXQ="; // anna:secret
    const std::string wrong_ = "YW5uYTpndWVzcw=="; // anna:guess
    std::optional<ServerProcess> server_;
};

TEST_F(Passwords, AThousandWrongOnesKeepNobodyFromWork) {
    CimClient user(server_->Port());
    ASSERT_EQ(StatusFor(user, right_), 200);
    const std::size_t threads = server_->Threads();
    const std::size_t descriptors = server_->OpenDescriptors();
    const double memory = server_->ResidentMegabytes();

    std::atomic<int> tries = 1'000;
    std::vector<std::thread> guessers;
    for (int i = 0; i < 16; ++i) {
        guessers.emplace_back([&] {
            CimClient guesser(server_->Port());
            while (tries-- > 0) {
                EXPECT_EQ(StatusFor(guesser, wrong_), 401);
            }
        });
    }
    int answers = 0;
    while (tries > 0) {
        ASSERT_EQ(StatusFor(user, right_), 200);
        ++answers;
    }
    for (std::thread& guesser : guessers) {
        guesser.join();
    }

    EXPECT_GE(answers, 10);
    EXPECT_TRUE(test_support::ComesTrue([&] {
        return server_->Threads() <= threads && server_->OpenDescriptors() <= descriptors;
    }));
    EXPECT_LT(server_->ResidentMegabytes(), memory + 24); // the hash of one password needs 16 MiB
    EXPECT_THAT(server_->Log(), testing::Not(testing::HasSubstr("guess")));
    EXPECT_THAT(server_->Log(), testing::HasSubstr("refused user `anna` from 127.0.0.1"));
}

} // namespace
