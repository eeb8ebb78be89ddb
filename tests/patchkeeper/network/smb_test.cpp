// Fetches from a file share.

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

constexpr int port = 4455;
constexpr const char* notAccepted =
    " cannot be fetched: the user name or the password is not accepted, or the server does not "
    "allow it";

class Smb : public patchkeeper_test::OnNetwork {
protected:
    void StartServer(const std::string& pause = "0", const std::vector<std::string>& more = {}) {
        std::vector<std::string> command = {"/usr/bin/python3",
                                            TEST_DATA_DIRECTORY "/smb_server.py",
                                            Served().string(),
                                            goodPassword,
                                            At("requests.log").string(),
                                            "--pause",
                                            pause};
        command.insert(command.end(), more.begin(), more.end());
        Start(command, port);
    }
    static std::string AsFetcher(const std::string& path) {
        return "--samba 127.0.0.1 fetcher '" + std::string(goodPassword) + "' '" + path + "'";
    }
};

TEST_F(Smb, BundleIsFetchedWithCredentials) {
    const auto bundle = MakeTestBundle(Served() / "updates/a b%41.tar.gz");
    StartServer();
    EXPECT_EQ(Output(AsFetcher(":4455/UPDATES/updates/a b%41.tar.gz")), "");
    ExpectHeld(bundle);
    EXPECT_THAT(Output("--status"), StartsWith("2\t100 %, "));
    ExpectNoPassword();
}

TEST_F(Smb, BundleIsFetchedByNobody) {
    const auto bundle = MakeTestBundle(Served() / "a.tar.gz");
    StartServer("0", {"--for-all"});
    EXPECT_EQ(Output("--samba 127.0.0.1 '' '' :4455/UPDATES/a.tar.gz"), "");
    ExpectHeld(bundle);
}

TEST_F(Smb, PathMayHaveBackslashesAndTheUserADomain) {
    const auto bundle = MakeTestBundle(Served() / "updates/a.tar.gz");
    StartServer();
    EXPECT_EQ(Output("--samba 127.0.0.1 'SOMEWHERE\\fetcher' '" + std::string(goodPassword) +
                     "' ':4455\\UPDATES\\updates\\a.tar.gz'"),
              "");
    ExpectHeld(bundle);
}

TEST_F(Smb, DirectoryGivesItsBundles) {
    MakeTestBundle(Served() / "two/b.tar.gz", {.name = "second"});
    MakeTestBundle(Served() / "two/a #1.tar.gz", {.name = "first"});
    directory_.Write("served/two/readme", "no bundle");
    StartServer();
    EXPECT_EQ(Output(AsFetcher(":4455/UPDATES/two")), "");
    EXPECT_EQ(Output("--cache"), "first\t1.0\tA demo\t6\t-\tAvailable\n"
                                 "second\t1.0\tA demo\t6\t-\tAvailable\n");
}

TEST_F(Smb, NothingThereHasItsCodes) {
    fs::create_directory(Served() / "empty");
    StartServer();
    ExpectFailure(AsFetcher(":4455/UPDATES/empty"), 23,
                  "there is no update bundle in smb://127.0.0.1:4455/UPDATES/empty");
    for (const char* path : {"UPDATES/none.tar.gz", "NONE/a.tar.gz"}) {
        ExpectFailure(AsFetcher(std::string(":4455/") + path), 21,
                      "smb://127.0.0.1:4455/" + std::string(path) +
                          " cannot be fetched: there is nothing on the server");
    }
}

TEST_F(Smb, WrongPasswordAndNobodyAreRefused) {
    MakeTestBundle(Served() / "a.tar.gz");
    StartServer();
    const std::string sentence = std::string("smb://127.0.0.1:4455/UPDATES/a.tar.gz") + notAccepted;
    ExpectFailure("--samba 127.0.0.1 fetcher wrong :4455/UPDATES/a.tar.gz", 21, sentence);
    ExpectFailure("--samba 127.0.0.1 '' '' :4455/UPDATES/a.tar.gz", 21, sentence);
}

TEST_F(Smb, ServerThatIsNotThereIsAFailure) {
    ExpectFailure(AsFetcher(":4455/UPDATES/a.tar.gz"), 21,
                  "smb://127.0.0.1:4455/UPDATES/a.tar.gz cannot be fetched: Connection refused");
    ExpectFailureLike("--samba no-such-host.invalid '' '' UPDATES/a.tar.gz", 21,
                      HasSubstr("smb://no-such-host.invalid/UPDATES/a.tar.gz cannot be fetched: "));
}

TEST_F(Smb, FetchThatWasCutOffIsContinued) {
    const auto bundle =
        MakeTestBundle(Served() / "large.tar.gz", {.text = patchkeeper_test::Noise(4'000'000)});
    const std::uint64_t left = CutOffAndFetchAgain(
        {"--samba", "127.0.0.1", "fetcher", goodPassword, ":4455/UPDATES/large.tar.gz"}, 21, [&] {
            fs::remove(At("requests.log"));
            StartServer("0.05");
        });
    EXPECT_THAT(Log(), StartsWith("read " + std::to_string(left) + "\n"));
    ExpectHeld(bundle);
}

TEST_F(Smb, LargerThanTheLimitIsRefused) {
    const auto bundle = ServeLargeBundle();
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\nsize_limit = 1000\n");
    StartServer();
    ExpectFailure(AsFetcher(":4455/UPDATES/large.tar.gz"), 21,
                  "smb://127.0.0.1:4455/UPDATES/large.tar.gz has " +
                      std::to_string(fs::file_size(bundle)) +
                      " bytes, more than the 1000 of size_limit");
    EXPECT_EQ(Log(), "");
    EXPECT_TRUE(fs::is_empty(Root() / "bundles"));
}

} // namespace
