#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "patchkeeper/OnState.hpp"
#include "patchkeeper/Running.hpp"
#include "patchkeeper/Tree.hpp"
#include "patchkeeper/network/OwnNetwork.hpp"
#include "patchkeeper/network/ServerProgram.hpp"

namespace patchkeeper_test {

inline constexpr const char* goodUser = "fetcher";
inline constexpr const char* goodPassword = "s3cr3t pass"; // of all servers

// The program on a state of its own and with servers in a network of its own. What they serve is
// below Served().
class OnNetwork : public OnState {
protected:
    OnNetwork() { std::filesystem::create_directories(Served()); }

    std::filesystem::path Served() const { return At("served"); }
    std::filesystem::path Partial() const { return Root() / "bundles" / "partial"; }
    std::string Log() const { return Contents(At("requests.log")); }

    // Starts the server, or starts it again.
    void Start(const std::vector<std::string>& command, int port) {
        server_.reset();
        server_ = std::make_unique<ServerProgram>(command, port, At("server.log").string());
    }
    void KillServer() { server_->Kill(); }

    // A bundle that takes a server which is made slow some seconds. It is an hour old: of a file
    // that has just been written a server does not say for certain that it is the same.
    std::filesystem::path ServeLargeBundle(const std::string& name = "large.tar.gz",
                                           std::size_t size = 600'000) const {
        const auto file = MakeTestBundle(Served() / name, {.text = Noise(size)});
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() -
                                                   std::chrono::hours(1));
        return file;
    }

    void ExpectFailure(const std::string& arguments, int code, const std::string& sentence) const {
        const Result result = Run(arguments);
        EXPECT_EQ(result.exitCode, code) << arguments;
        EXPECT_EQ(result.output, "") << arguments;
        EXPECT_EQ(result.errors, "patchkeeper: " + sentence + ".\n") << arguments;
        EXPECT_EQ(Output("--status"), "-1\t" + sentence + "\n") << arguments;
    }
    // Where the sentence is in part libcurl's.
    void ExpectFailureLike(const std::string& arguments, int code,
                           const testing::Matcher<std::string>& sentence) const {
        const Result result = Run(arguments);
        EXPECT_EQ(result.exitCode, code) << arguments;
        EXPECT_EQ(result.output, "") << arguments;
        EXPECT_THAT(result.errors, sentence) << arguments;
        EXPECT_THAT(result.errors, testing::EndsWith(".\n")) << arguments;
    }

    // The one bundle that is held is, byte for byte, this one, and nothing else is there.
    void ExpectHeld(const std::filesystem::path& bundle) const {
        std::vector<std::string> held;
        for (const auto& file : std::filesystem::directory_iterator(Root() / "bundles")) {
            held.push_back(file.path().filename().string());
        }
        ASSERT_EQ(held.size(), 1U) << testing::PrintToString(held);
        EXPECT_TRUE(Contents(Root() / "bundles" / held[0]) == Contents(bundle));
        EXPECT_THAT(Output("--cache"), testing::EndsWith("\tAvailable\n"));
    }

    // No file below the root has the password, and no line of what has been said.
    void ExpectNoPassword() const {
        for (const auto& [name, text] : TreeOf(Root())) {
            EXPECT_THAT(text, testing::Not(testing::HasSubstr(goodPassword))) << name;
        }
    }

    // "PERCENT %, DONE of TOTAL bytes: …" of a running operation.
    struct Seen {
        std::uint64_t percent = 0;
        std::uint64_t done = 0;
        std::uint64_t total = 0;
    };
    Seen Progress() const {
        const std::string text = Output("--status");
        Seen seen;
        if (std::sscanf(text.c_str(), "1\t%lu %%, %lu of %lu bytes", &seen.percent, &seen.done,
                        &seen.total) != 3) {
            return {};
        }
        return seen;
    }
    // All that is told until the command ends.
    std::set<std::uint64_t> PercentsOf(Running& command) const {
        std::set<std::uint64_t> percents;
        while (command.IsRunning()) {
            const Seen seen = Progress();
            if (seen.total > 0) {
                percents.insert(seen.percent);
            }
        }
        return percents;
    }
    void WaitUntilSomeIsThere(Running& command) const {
        while (command.IsRunning() && Progress().percent < 20) {
            std::this_thread::yield(); // every look is a program that runs
        }
        ASSERT_TRUE(command.IsRunning()) << Output("--status");
    }

    // A fetch of a large bundle from a slow server that dies in the middle; then the server is
    // back, and another fetch. Returns how much the first one had left behind.
    template <typename StartServer>
    std::uint64_t CutOffAndFetchAgain(const std::vector<std::string>& command, int code,
                                      const StartServer& start) {
        start();
        Running first(Root(), command);
        WaitUntilSomeIsThere(first);
        KillServer();
        EXPECT_EQ(first.Wait(), code);
        EXPECT_THAT(Output("--status"), testing::StartsWith("-1\t"));
        EXPECT_EQ(Output("--cache"), "");
        const std::uint64_t left = std::filesystem::file_size(Partial());
        EXPECT_GT(left, 0U);
        start();
        Running second(Root(), command);
        EXPECT_EQ(second.Wait(), 0) << Output("--status");
        return left;
    }

private:
    OwnNetwork network_;
    std::unique_ptr<ServerProgram> server_;
};

} // namespace patchkeeper_test
