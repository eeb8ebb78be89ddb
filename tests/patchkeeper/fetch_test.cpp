#include "patchkeeper/Fetch.hpp"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Intake.hpp"
#include "patchkeeper/Operation.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"
#include "patchkeeper/TestBundle.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::PathOfFileUrl;
using patchkeeper_test::MakeTestBundle;
using patchkeeper_test::TemporaryDirectory;
using testing::HasSubstr;

TEST(FileUrl, GivesThePath) {
    EXPECT_EQ(PathOfFileUrl("file:///srv/updates"), "/srv/updates");
    EXPECT_EQ(PathOfFileUrl("file:/srv/updates"), "/srv/updates");
    EXPECT_EQ(PathOfFileUrl("file://localhost/srv/a%20b%2fc%C3%A9"), "/srv/a b/c\xC3\xA9");
}

TEST(FileUrl, EverythingElseIsRefused) {
    for (const char* url :
         {"", "http://10.0.0.1/x", "ftp://10.0.0.1/x", "/srv/updates", "file:", "file://",
          "file://other.example/x", "file:srv", "file:///a%2", "file:///a%zz", "file:///a%00b"}) {
        EXPECT_THROW(PathOfFileUrl(url), patchkeeper::NoPlace) << url;
    }
}

class IntakeTest : public testing::Test {
protected:
    IntakeTest() { settings_.allowUnsigned = true; }

    patchkeeper::Taken TakeIn(const fs::path& file) {
        patchkeeper::Intake intake(state_, store_, settings_);
        patchkeeper::Operation operation(state_, store_, settings_, {"fetch", "test", "", ""},
                                         notes_);
        auto taken =
            intake.TakeIn(file, operation, [&](std::uint64_t done) { progress_.push_back(done); });
        operation.Succeed("done");
        return taken;
    }
    std::string RefusalOf(const fs::path& file) {
        try {
            TakeIn(file);
        } catch (const patchkeeper::Refused& refused) {
            return refused.what();
        }
        return "none";
    }
    std::vector<std::string> Held() const {
        std::vector<std::string> names;
        for (const auto& file : fs::directory_iterator(state_.BundleDirectory())) {
            names.push_back(file.path().filename().string());
        }
        return names;
    }

    TemporaryDirectory directory_;
    patchkeeper::Settings settings_;
    patchkeeper::State state_{directory_.Path() / "root"};
    patchkeeper::Store store_ = state_.OpenOrMake(settings_);
    std::ostringstream notes_;
    std::vector<std::uint64_t> progress_;
};

TEST_F(IntakeTest, ProgressFollowsTheCopyByteForByte) {
    const fs::path file = MakeTestBundle(directory_.Path() / "a.tar.gz",
                                         {.text = patchkeeper_test::Noise(3'000'000)});
    TakeIn(file);
    ASSERT_GE(progress_.size(), 5U);
    EXPECT_TRUE(std::is_sorted(progress_.begin(), progress_.end()));
    EXPECT_LT(progress_.front(), fs::file_size(file) / 5);
    EXPECT_EQ(progress_.back(), fs::file_size(file));
}

TEST_F(IntakeTest, WhatTheManifestSaysIsKept) {
    TakeIn(MakeTestBundle(directory_.Path() / "a.tar.gz",
                          {.more = R"("long_description": "two\nlines", "warnings": ["careful"],)",
                           .component = "docs"}));
    const auto held = store_.FindBundle("demo", "1.0");
    ASSERT_TRUE(held);
    EXPECT_EQ(held->shortDescription, "A demo");
    EXPECT_EQ(held->longDescription, "two\nlines");
    EXPECT_EQ(held->category, "Fixes");
    EXPECT_EQ(held->classification, "Middleware");
    EXPECT_FALSE(held->rebootNeeded);
    EXPECT_TRUE(held->removable);
    EXPECT_EQ(held->size, 11U);
    EXPECT_EQ(held->location, (directory_.Path() / "a.tar.gz").string());
    EXPECT_EQ(held->faults, "");
    EXPECT_THAT(store_.FilesOf(held->id), testing::ElementsAre("etc/demo.conf", "usr/docs"));
    EXPECT_THAT(store_.ComponentsOf(held->id), testing::ElementsAre("docs"));
    EXPECT_THAT(store_.WarningsOf(held->id), testing::ElementsAre("careful"));
    EXPECT_THAT(Held(), testing::ElementsAre(held->file));
}

TEST_F(IntakeTest, SameBundleAgainChangesNothing) {
    const fs::path file = MakeTestBundle(directory_.Path() / "a.tar.gz");
    TakeIn(file);
    const auto before = Held();
    EXPECT_EQ(TakeIn(file).how, patchkeeper::Taken::How::HeldAlready);
    EXPECT_EQ(Held(), before);
}

TEST_F(IntakeTest, OtherContentUnderTheSameNameAndVersionIsRefused) {
    TakeIn(MakeTestBundle(directory_.Path() / "a.tar.gz"));
    const auto before = Held();
    EXPECT_THAT(
        RefusalOf(MakeTestBundle(directory_.Path() / "b.tar.gz", {.text = "other\n"})),
        testing::EndsWith("b.tar.gz is demo 1.0, which is held already with other content"));
    EXPECT_EQ(Held(), before);
}

TEST_F(IntakeTest, InvalidBundleIsReplacedInItsPlaceAndKeepsItsSchedule) {
    settings_.allowUnsigned = false;
    const fs::path file = MakeTestBundle(directory_.Path() / "a.tar.gz");
    EXPECT_EQ(TakeIn(file).faults, "it is not signed");
    const std::int64_t id = store_.FindBundle("demo", "1.0")->id;
    patchkeeper::Database database(state_.DatabaseFile(), patchkeeper::Database::Access::Existing,
                                   std::chrono::seconds(1));
    database.Execute("INSERT INTO schedules (bundle, apply_at) VALUES (" + std::to_string(id) +
                     ", 2000000000)");
    settings_.allowUnsigned = true;
    EXPECT_EQ(TakeIn(file).faults, "");
    ASSERT_EQ(store_.Schedules().size(), 1U);
    EXPECT_EQ(store_.Schedules()[0].bundle, id);
    ASSERT_EQ(store_.Bundles().size(), 1U);
    EXPECT_EQ(store_.Bundles()[0].id, id);
    EXPECT_THAT(Held(), testing::ElementsAre(store_.Bundles()[0].file));
}

TEST_F(IntakeTest, NameThatReadsLikeAnotherTogetherWithTheVersionIsRefused) {
    TakeIn(MakeTestBundle(directory_.Path() / "a.tar.gz", {.name = "a-1", .version = "2"}));
    EXPECT_THAT(
        RefusalOf(MakeTestBundle(directory_.Path() / "b.tar.gz", {.name = "a", .version = "1-2"})),
        testing::EndsWith("a 1-2 cannot be told from a-1 2, which is here already"));
}

TEST_F(IntakeTest, TooLargeBundleIsRefusedBeforeItIsCopied) {
    settings_.sizeLimit = 10;
    const fs::path file = MakeTestBundle(directory_.Path() / "a.tar.gz");
    EXPECT_EQ(RefusalOf(file), file.string() + " has " + std::to_string(fs::file_size(file)) +
                                   " bytes, more than the 10 of size_limit");
    EXPECT_TRUE(progress_.empty());
    EXPECT_TRUE(Held().empty());
}

TEST_F(IntakeTest, RefusedFilesLeaveNothing) {
    const fs::path text = directory_.Write("text.tar.gz", "no bundle");
    const fs::path half = MakeTestBundle(directory_.Path() / "half.tar.gz",
                                         {.text = patchkeeper_test::Noise(100'000)});
    fs::resize_file(half, 40);
    ASSERT_EQ(mkfifo((directory_.Path() / "fifo").c_str(), 0644), 0);
    for (const fs::path& file :
         {text, half, directory_.Path() / "fifo", directory_.Path() / "none", directory_.Path()}) {
        EXPECT_THAT(RefusalOf(file), HasSubstr(file.string())) << file;
        EXPECT_TRUE(Held().empty()) << file;
        EXPECT_TRUE(store_.Bundles().empty()) << file;
    }
}

TEST_F(IntakeTest, BundleThatIsCutOffBehindItsManifestIsHeldAsInvalid) {
    const fs::path file =
        MakeTestBundle(directory_.Path() / "a.tar.gz", {.text = patchkeeper_test::Noise(500'000)});
    fs::resize_file(file, fs::file_size(file) - 1000);
    EXPECT_NE(TakeIn(file).faults, "");
    EXPECT_NE(store_.FindBundle("demo", "1.0")->faults, "");
}

TEST_F(IntakeTest, KeyThatCannotBeReadIsAProblemOfTheSettings) {
    settings_.trustedKeys = {"/no/such/key.pem"};
    try {
        TakeIn(MakeTestBundle(directory_.Path() / "a.tar.gz"));
        FAIL() << "no problem";
    } catch (const patchkeeper::StateProblem& problem) {
        EXPECT_THAT(problem.what(), testing::StartsWith("trusted_keys: /no/such/key.pem"));
    }
}

} // namespace
