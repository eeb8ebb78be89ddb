// Fetches from an FTP server.

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "patchkeeper/network/OnNetwork.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper_test::goodPassword;
using patchkeeper_test::MakeTestBundle;
using testing::HasSubstr;
using testing::StartsWith;

constexpr int port = 2121;

class Ftp : public patchkeeper_test::OnNetwork {
protected:
    Ftp() { fs::create_directories(Served() / "public"); }

    void StartServer(long rate = 0, const std::vector<std::string>& more = {}) {
        std::vector<std::string> command = {
            "/usr/bin/python3",  TEST_DATA_DIRECTORY "/ftp_server.py", Served().string(),
            goodPassword,        At("requests.log").string(),          "--rate",
            std::to_string(rate)};
        command.insert(command.end(), more.begin(), more.end());
        Start(command, port);
    }
    static std::string AsFetcher(const std::string& path) {
        return "--ftp 127.0.0.1 fetcher '" + std::string(goodPassword) + "' '" + path + "'";
    }
    static std::string AsNobody(const std::string& path) {
        return "--ftp 127.0.0.1 '' '' '" + path + "'";
    }
};

TEST_F(Ftp, BundleIsFetchedWithCredentials) {
    const auto bundle = MakeTestBundle(Served() / "updates/a b%41.tar.gz");
    StartServer();
    EXPECT_EQ(Output(AsFetcher(":2121/updates/a b%41.tar.gz")), "");
    ExpectHeld(bundle);
    const std::string bytes = std::to_string(fs::file_size(bundle));
    EXPECT_EQ(Output("--status"),
              "2\t100 %, " + bytes + " of " + bytes + " bytes: demo 1.0 has been taken in\n");
    EXPECT_THAT(Log(), HasSubstr("USER fetcher"));
    ExpectNoPassword();
}

TEST_F(Ftp, BundleIsFetchedByNobody) {
    const auto bundle = MakeTestBundle(Served() / "public/a.tar.gz");
    StartServer();
    EXPECT_EQ(Output(AsNobody(":2121/a.tar.gz")), "");
    ExpectHeld(bundle);
    EXPECT_THAT(Log(), HasSubstr("USER anonymous"));
}

TEST_F(Ftp, DirectoryGivesItsBundles) {
    MakeTestBundle(Served() / "two/b.tar.gz", {.name = "second"});
    MakeTestBundle(Served() / "two/a #1?.tar.gz", {.name = "first"});
    MakeTestBundle(Served() / "two/deeper/c.tar.gz", {.name = "third"});
    directory_.Write("served/two/readme", "no bundle");
    StartServer();
    for (const char* path : {":2121/two", ":2121/two/", ":2121//two"}) {
        EXPECT_EQ(Output(AsFetcher(path)), "") << path;
    }
    EXPECT_EQ(Output("--cache"), "first\t1.0\tA demo\t6\t-\tAvailable\n"
                                 "second\t1.0\tA demo\t6\t-\tAvailable\n");
}

TEST_F(Ftp, NothingThereHasItsCodes) {
    fs::create_directory(Served() / "empty");
    StartServer();
    ExpectFailure(AsFetcher(":2121/empty"), 23,
                  "there is no update bundle in ftp://127.0.0.1:2121/empty");
    ExpectFailure(AsFetcher(":2121/none.tar.gz"), 11,
                  "ftp://127.0.0.1:2121/none.tar.gz cannot be fetched: there is nothing on the "
                  "server, or it does not allow it");
}

TEST_F(Ftp, FileThatIsNoBundleIsRefusedAndNothingIsKept) {
    directory_.Write("served/text", "no bundle");
    StartServer();
    ExpectFailureLike(AsFetcher(":2121/text"), 11,
                      StartsWith("patchkeeper: ftp://127.0.0.1:2121/text"));
    EXPECT_TRUE(fs::is_empty(Root() / "bundles"));
}

TEST_F(Ftp, WrongPasswordIsRefused) {
    StartServer();
    ExpectFailure("--ftp 127.0.0.1 fetcher wrong :2121/a.tar.gz", 11,
                  "ftp://127.0.0.1:2121/a.tar.gz cannot be fetched: the user name or the password "
                  "is not accepted");
}

TEST_F(Ftp, ControlCharacterInThePasswordReachesNobody) {
    StartServer();
    Output("--setinprogress");
    ExpectFailure("--ftp 127.0.0.1 fetcher \"$(printf 'x\\r\\nDELE y')\" :2121/a.tar.gz", 11,
                  "the user name or the password holds a control character");
    EXPECT_EQ(Log(), "");
}

TEST_F(Ftp, ServerThatIsNotThereIsAFailure) {
    ExpectFailureLike(AsNobody(":2121/a.tar.gz"), 11,
                      StartsWith("patchkeeper: ftp://127.0.0.1:2121/a.tar.gz cannot be fetched: "
                                 "Failed to connect to 127.0.0.1 port 2121"));
    ExpectFailureLike("--ftp no-such-host.invalid '' '' a.tar.gz", 11,
                      HasSubstr("Could not resolve host: no-such-host.invalid"));
}

TEST_F(Ftp, ProgressOfASlowServerIsSeen) {
    const auto bundle = ServeLargeBundle();
    StartServer(300'000);
    patchkeeper_test::Running fetch(
        Root(), {"--ftp", "127.0.0.1", "fetcher", goodPassword, ":2121/large.tar.gz"});
    EXPECT_GE(PercentsOf(fetch).size(), 5U);
    EXPECT_EQ(fetch.Wait(), 0);
    ExpectHeld(bundle);
}

TEST_F(Ftp, FetchThatWasCutOffIsContinued) {
    const auto bundle = ServeLargeBundle();
    const std::uint64_t left =
        CutOffAndFetchAgain({"--ftp", "127.0.0.1", "fetcher", goodPassword, ":2121/large.tar.gz"},
                            11, [&] { StartServer(300'000); });
    EXPECT_THAT(Log(), HasSubstr("REST " + std::to_string(left) + "\n"));
    ExpectHeld(bundle);
    ExpectNoPassword();
}

TEST_F(Ftp, ChangedFileIsFetchedAnew) {
    ServeLargeBundle();
    bool isSecond = false;
    CutOffAndFetchAgain(
        {"--ftp", "127.0.0.1", "fetcher", goodPassword, ":2121/large.tar.gz"}, 11, [&] {
            if (isSecond) {
                MakeTestBundle(Served() / "large.tar.gz",
                               {.text = "other, " + patchkeeper_test::Noise(600'000)});
            }
            StartServer(isSecond ? 0 : 300'000);
            isSecond = true;
        });
    EXPECT_THAT(Log(), testing::Not(testing::ContainsRegex("REST [1-9]")));
    ExpectHeld(Served() / "large.tar.gz");
}

TEST_F(Ftp, FileThatChangesWhileItIsLookedForIsFetchedAnew) {
    const auto bundle = ServeLargeBundle();
    bool isSecond = false;
    CutOffAndFetchAgain(
        {"--ftp", "127.0.0.1", "fetcher", goodPassword, ":2121/large.tar.gz"}, 11, [&] {
            StartServer(isSecond ? 0 : 300'000, isSecond ? std::vector<std::string>{"--restless"}
                                                         : std::vector<std::string>{});
            isSecond = true;
        });
    EXPECT_THAT(Log(), testing::Not(testing::ContainsRegex("REST [1-9]")));
    ExpectHeld(bundle);
}

TEST_F(Ftp, LargerThanTheLimitIsRefusedBeforeItIsFetched) {
    const auto bundle = ServeLargeBundle();
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\nsize_limit = 1000\n");
    StartServer();
    ExpectFailure(AsFetcher(":2121/large.tar.gz"), 11,
                  "ftp://127.0.0.1:2121/large.tar.gz has " + std::to_string(fs::file_size(bundle)) +
                      " bytes, more than the 1000 of size_limit");
    EXPECT_THAT(Log(), testing::Not(HasSubstr("RETR")));
    EXPECT_TRUE(fs::is_empty(Root() / "bundles"));
}

} // namespace
