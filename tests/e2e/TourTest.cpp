// The whole job with the stand-in in the tool's place: what an administrator does with wbemcli, and
// what it does to the disk. The servers that updates come from are real ones, in a network of the
// test's own.
#include "e2e/OverHttp.hpp"

#include "patchkeeper/TemporaryDirectory.hpp"
#include "patchkeeper/TestBundle.hpp"
#include "patchkeeper/Tree.hpp"
#include "patchkeeper/network/OwnNetwork.hpp"
#include "patchkeeper/network/ServerProgram.hpp"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <set>
#include <thread>

namespace {

namespace fs = std::filesystem;
using patchkeeper_test::BundleContent;
using patchkeeper_test::Contents;
using patchkeeper_test::MakeTestBundle;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

const std::string updates = "ZNX_AvailableSoftwareUpdate";
const std::string update = R"(ZNX_AvailableSoftwareUpdate.InstanceID="0")";
const std::string components = "ZNX_SoftwareUpdateComponent";
const std::string schedule = "ZNX_ScheduledSoftwareUpdate";
const std::string active = "ZNX_ActiveSoftwareUpdate";
const std::string history = "ZNX_HistorySoftwareUpdate";
const std::string password = "s3cr3t";

class Tour : public e2e::OverHttp {
protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        setenv("PATCHKEEPER_ROOT", Root().c_str(), 1);
        Configure("");
        fs::create_directories(Served() / "public"); // the FTP server wants that one
        StartServer();
    }

    fs::path Root() const { return directory_.Path() / "root"; }
    fs::path Target() const { return Root() / "target"; }
    fs::path Served() const { return directory_.Path() / "served"; }
    void Configure(const std::string& more) const {
        directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\n" + more);
    }
    // A server of the bundles below Served(), a script of the tests or of the project.
    void Serve(const std::string& script, const std::vector<std::string>& arguments, int port) {
        std::vector<std::string> command = {"/usr/bin/python3", PROJECT_DIRECTORY "/" + script,
                                            Served().string()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        server_.emplace(command, port, (directory_.Path() / "server.log").string());
    }

    std::vector<std::string> Ask(const std::string& operation, const std::string& object,
                                 const std::string& words = "") {
        const e2e::ClientRun run = Wbemcli(operation, object, words);
        EXPECT_EQ(run.exitCode, 0) << operation << " " << object << ": " << run.text;
        return e2e::WithoutPrefix(run.Lines(), Prefix());
    }
    // What a method returned and its out-parameter, as wbemcli prints them.
    std::string Call(const std::string& object, const std::string& method,
                     const std::string& parameters = "") {
        std::string words = method;
        if (!parameters.empty()) {
            words += ".'" + parameters + "'";
        }
        const std::vector<std::string> lines = Ask("cm", object, words);
        const std::string before = object + " " + method + ": ";
        if (lines.empty() || lines[0].rfind(before, 0) != 0) {
            ADD_FAILURE() << before << testing::PrintToString(lines);
            return {};
        }
        return lines[0].substr(before.size());
    }
    // Calls a method that works in the background, waits for the end, and returns how it ended.
    std::string Finish(const std::string& object, const std::string& method,
                       const std::string& parameters = "", const std::string& returned = "") {
        EXPECT_EQ(Call(object, method, parameters), returned);
        std::string progress;
        do {
            progress = Call(updates, "GetProgress");
            seen_.insert(progress);
        } while (progress.rfind("1,", 0) == 0);
        return progress;
    }
    void TakeIn(const BundleContent& content) {
        MakeTestBundle(Served() / "taken.tar.gz", content);
        EXPECT_THAT(
            Finish(updates, "GetViaHardDrive", "Path=" + (Served() / "taken.tar.gz").string()),
            StartsWith("2, "));
    }
    std::string OnDisk(const std::string& name) const { return Contents(Target() / name); }

    patchkeeper_test::OwnNetwork network_;
    patchkeeper_test::TemporaryDirectory directory_;
    std::optional<patchkeeper_test::ServerProgram> server_;
    std::set<std::string> seen_; // every progress that was told
};

// As wbemcli writes it: the date part of one parameter and the time part of the other count.
std::string DateAndTime(std::time_t moment) {
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "%Y%m%d%H%M%S.000000+000", std::gmtime(&moment));
    return "Date=" + std::string(text.data()) + ",Time=" + text.data();
}

TEST_F(Tour, AnUpdateIsFetchedLookedAtAppliedWithAComponentAndTakenBack) {
    directory_.Write("root/target/etc/demo.conf", "as it was\n");
    MakeTestBundle(Served() / "a.tar.gz",
                   {.more = R"("long_description": "All of it.", "warnings": ["It stops."],)",
                    .text = patchkeeper_test::Noise(200'000),
                    .component = "manual"});
    Serve("scripts/updates-server", {"100000", "8080"}, 8080);

    EXPECT_THAT(Finish(updates, "GetViaHttp",
                       "Server=127.0.0.1,User=,Password=,Path=:8080/a.tar.gz,Secure=false"),
                HasSubstr("demo 1.0 has been taken in"));
    EXPECT_GE(seen_.size(), 5U) << testing::PrintToString(seen_);
    EXPECT_THAT(Ask("ei", updates), ElementsAre(HasSubstr(R"(Name="demo",)")));
    EXPECT_THAT(Ask("gi", update, "UpdateDescription"), testing::Contains(HasSubstr("All of it.")));
    EXPECT_EQ(Call(update, "Warnings"), "It stops.");
    EXPECT_THAT(
        Ask("ain -ac ZNX_AvailableSoftwareFileList -arc ZNX_AvailableSoftwareFileName", update),
        ElementsAre(HasSubstr(R"("etc/demo.conf")"), HasSubstr(R"("usr/manual")")));

    EXPECT_EQ(Call(update, "HasOptionalComponents"), "TRUE");
    EXPECT_THAT(Ask("ei", components), ElementsAre(HasSubstr(R"(Name="manual")")));
    Ask("mi", components + R"(.InstanceID="0")", "Install=true");
    EXPECT_THAT(Finish(update, "Apply"), HasSubstr("demo 1.0 has been applied"));
    EXPECT_TRUE(OnDisk("etc/demo.conf") == patchkeeper_test::Noise(200'000));
    EXPECT_EQ(OnDisk("usr/manual"), "part\n");
    EXPECT_THAT(Ask("ei", history), ElementsAre(HasSubstr(R"(Name="demo",VersionString="1.0")")));
    EXPECT_THAT(Ask("ei", "ZNX_SoftwareIdentity"), testing::Contains(HasSubstr(R"(Name="demo")")));

    EXPECT_THAT(Finish(history + R"(.InstanceID="0")", "Remove", "", "TRUE"),
                HasSubstr("demo 1.0 has been rolled back"));
    EXPECT_EQ(OnDisk("etc/demo.conf"), "as it was\n");
    EXPECT_FALSE(fs::exists(Target() / "usr"));
    EXPECT_THAT(Ask("ei", history), IsEmpty());
}

TEST_F(Tour, UpdatesComeFromEveryPlace) {
    const auto log = (directory_.Path() / "requests.log").string();
    const std::string from = "Server=127.0.0.1,User=fetcher,Password=" + password + ",Path=:";
    MakeTestBundle(Served() / "ftp.tar.gz", {.name = "over-ftp"});
    Serve("tests/patchkeeper/network/ftp_server.py", {password, log}, 2121);
    EXPECT_THAT(Finish(updates, "GetViaFtp", from + "2121/ftp.tar.gz"), HasSubstr("over-ftp 1.0"));

    MakeTestBundle(Served() / "smb.tar.gz", {.name = "over-smb"});
    Serve("tests/patchkeeper/network/smb_server.py", {password, log}, 4455);
    EXPECT_THAT(Finish(updates, "GetViaSamba", from + "4455/UPDATES/smb.tar.gz"),
                HasSubstr("over-smb 1.0"));

    MakeTestBundle(Served() / "em/em.tar.gz", {.name = "from-em"});
    Serve("scripts/updates-server", {"1000000", "8080"}, 8080);
    Configure("em_url = http://127.0.0.1:8080/em/\n");
    EXPECT_THAT(Finish(updates, "GetViaElementManager"), HasSubstr("from-em 1.0"));

    MakeTestBundle(Served() / "stick/usb.tar.gz", {.name = "from-usb"});
    EXPECT_THAT(Finish(updates, "GetViaUsb", "Path=" + (Served() / "stick").string()),
                HasSubstr("from-usb 1.0"));
    TakeIn({.name = "from-disk"});
    EXPECT_THAT(Ask("ei", updates), SizeIs(5));
}

TEST_F(Tour, AFetchThatFailsSaysWhy) {
    Serve("scripts/updates-server", {"1000000", "8080"}, 8080);
    EXPECT_THAT(Finish(updates, "GetViaHttp",
                       "Server=127.0.0.1,User=,Password=,Path=:8080/none,Secure=false"),
                testing::AllOf(StartsWith("-1, "), HasSubstr("there is nothing on the server")));
    EXPECT_THAT(Ask("ei", updates), IsEmpty());
}

TEST_F(Tour, AnUpdateIsScheduledMovedAndAppliedWhenItIsDue) {
    TakeIn({});
    Ask("ei", updates);
    const std::time_t now = std::time(nullptr);
    Call(update, "AddToSchedule", DateAndTime(now + 86'400));
    const std::string planned = schedule + R"(.InstanceID="demo 1.0")";
    EXPECT_THAT(Ask("ein", schedule), ElementsAre(planned));
    ASSERT_EQ(std::system("/qv/bin/patchkeeper --run-due"), 0);
    EXPECT_FALSE(fs::exists(Target()));

    const std::time_t soon = std::time(nullptr) + 2;
    Call(planned, "Modify", DateAndTime(soon));
    while (std::time(nullptr) < soon) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50)); // the clock is what counts here
    }
    ASSERT_EQ(std::system("/qv/bin/patchkeeper --run-due"), 0);
    EXPECT_EQ(OnDisk("etc/demo.conf"), "hello\n");
    EXPECT_THAT(Ask("ein", schedule), IsEmpty());
    EXPECT_THAT(Ask("ei", history), SizeIs(1));
}

TEST_F(Tour, AScheduleIsDropped) {
    TakeIn({});
    Ask("ei", updates);
    Call(update, "AddToSchedule", DateAndTime(std::time(nullptr) + 86'400));
    Ask("ei", schedule);
    Call(schedule + R"(.InstanceID="demo 1.0")", "Remove");
    EXPECT_THAT(Ask("ein", schedule), IsEmpty());
    EXPECT_THAT(Ask("ei", updates), ElementsAre(HasSubstr("Status=3")));
}

TEST_F(Tour, AnApplyIsCancelled) {
    TakeIn({.text = patchkeeper_test::Noise(1'000'000)});
    directory_.Write("root/target/etc/demo.conf", "as it was\n");
    Configure("apply_rate = 100K\n");
    Ask("ei", updates);
    EXPECT_EQ(Call(update, "Apply"), "");
    const std::string applying = active + R"(.InstanceID="demo 1.0")";
    while (Ask("ein", active) != std::vector{applying} && Call(updates, "GetProgress")[0] == '1') {
    }
    EXPECT_THAT(Finish(applying, "Cancel"),
                StartsWith("-1, Status (string): demo 1.0 was cancelled"));
    EXPECT_EQ(OnDisk("etc/demo.conf"), "as it was\n");
    EXPECT_THAT(Ask("ei", history), IsEmpty());
    EXPECT_THAT(Ask("ein", active), IsEmpty());
}

TEST_F(Tour, TheCartridgeShowsItsVersionOnceItIsApplied) {
    const std::string cartridge = "ZNX_ElementManagerCartridgeVersionInfo";
    TakeIn({.name = "znxliteEMcartridge", .version = "2.1"});
    EXPECT_THAT(Ask("ei", cartridge), IsEmpty());
    Ask("ei", updates);
    EXPECT_THAT(Finish(update, "Apply"), StartsWith("2, "));
    EXPECT_THAT(Ask("ei", cartridge), ElementsAre(HasSubstr(R"(Version="2.1")")));
}

} // namespace
