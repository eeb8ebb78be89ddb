// A fetch from a server killed at each call that changes something. After every kill the next fetch
// of the same has the bundle, and nothing else is left.

#include <filesystem>
#include <iostream>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/network/OnNetwork.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper_test::goodPassword;
using patchkeeper_test::Result;

constexpr int killed = 128 + SIGKILL;
constexpr int mostPoints = 2'000;

// Two tests share the work. With a sanitizer each run takes many times as long, and tells no more
// about what a kill leaves behind: then a fifth of the calls have to do.
constexpr int stride = 2 * KILL_SPARSENESS;

class NetworkKill : public patchkeeper_test::OnNetwork {
protected:
    void StartServer() {
        Start({"/usr/bin/python3", TEST_DATA_DIRECTORY "/ftp_server.py", Served().string(),
               goodPassword, At("requests.log").string()},
              2121);
    }
    Result RunAndKill(const std::string& command, int point) const {
        return InShell("export ASAN_OPTIONS=\"$ASAN_OPTIONS:verify_asan_link_order=0\"; "
                       "export KILL_POINT=" +
                       std::to_string(point) + " LD_PRELOAD=" KILL_POINTS_LIBRARY "; patchkeeper " +
                       command);
    }
    void KillAndFetchAgain(int first);
};

// At this call and those that follow by `stride`.
void NetworkKill::KillAndFetchAgain(int first) {
    fs::create_directories(Served() / "public");
    const auto bundle = ServeLargeBundle("public/large.tar.gz", 200'000);
    StartServer();
    const std::string command = "--ftp 127.0.0.1 '' '' :2121/large.tar.gz";
    Output("prune"); // makes the database
    fs::copy(Root(), At("empty"), fs::copy_options::recursive);
    int points = 0;
    int continued = 0;
    for (int point = first; point < mostPoints; point += stride) {
        SCOPED_TRACE("killed at call " + std::to_string(point));
        fs::remove_all(Root());
        fs::copy(At("empty"), Root(), fs::copy_options::recursive);
        const Result result = RunAndKill(command, point);
        if (result.exitCode != killed) {
            EXPECT_EQ(result.exitCode, 0) << result.errors;
            break;
        }
        ++points;
        std::error_code none;
        continued += fs::file_size(Partial(), none) > 0 && !none ? 1 : 0;
        const Result again = Run(command);
        ASSERT_EQ(again.exitCode, 0) << again.errors;
        ASSERT_NO_FATAL_FAILURE(ExpectHeld(bundle));
        if (HasFailure()) {
            break; // the next ones fail for the same reason
        }
    }
    std::cout << points << " kill points, a partial copy behind " << continued << " of them\n";
    EXPECT_GE(points, 30 / KILL_SPARSENESS);
    EXPECT_GE(continued, 1);
}

TEST_F(NetworkKill, FetchIsContinuedAfterAKillAtAnyOddCall) {
    KillAndFetchAgain(1);
}

TEST_F(NetworkKill, FetchIsContinuedAfterAKillAtAnyEvenCall) {
    KillAndFetchAgain(2);
}

} // namespace
