#include "patchkeeper/PartialCopy.hpp"

#include <sstream>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Recovery.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"
#include "patchkeeper/Tree.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::PartialCopy;
using patchkeeper::Refused;
using patchkeeper::RemoteFile;
using patchkeeper_test::Contents;

const RemoteFile file{"http://host/a.tar.gz", "a.tar.gz", 10, "version 1"};

class PartialCopyTest : public testing::Test {
protected:
    PartialCopy Open(const RemoteFile& of, std::uint64_t limit = 0) {
        return {state_, of, limit, [&](std::uint64_t done) { told_ = done; }};
    }
    // Five of ten bytes have come.
    void LeaveHalf(const RemoteFile& of = file) {
        PartialCopy copy = Open(of);
        copy.Begin(0, of);
        copy.Take("01234");
    }
    fs::path Data() const { return state_.BundleDirectory() / "partial"; }
    std::string RecoveryNotes() {
        std::ostringstream notes;
        Recover(state_, store_, notes);
        return notes.str();
    }
    bool IsEmpty() const { return fs::is_empty(state_.BundleDirectory()); }

    patchkeeper_test::TemporaryDirectory directory_;
    patchkeeper::State state_{directory_.Path() / "root"};
    patchkeeper::Store store_ = state_.OpenOrMake({});
    std::uint64_t told_ = 0;
};

TEST_F(PartialCopyTest, SameVersionOfTheSameUrlIsContinued) {
    LeaveHalf();
    PartialCopy copy = Open(file);
    EXPECT_EQ(copy.Size(), 5U);
    copy.Begin(5, file);
    copy.Take("56789");
    copy.Finish();
    EXPECT_EQ(told_, 10U);
    EXPECT_EQ(Contents(Data()), "0123456789");
}

TEST_F(PartialCopyTest, EverythingElseBeginsAnew) {
    const RemoteFile others[] = {
        {"http://host/b.tar.gz", "a.tar.gz", 10, "version 1"},
        {"http://host/a.tar.gz", "a.tar.gz", 10, "version 2"},
        {"http://host/a.tar.gz", "a.tar.gz", 10, ""},
        {"http://host/a.tar.gz", "a.tar.gz", 4, "version 1"},
    };
    for (const auto& other : others) {
        LeaveHalf();
        EXPECT_EQ(Open(other).Size(), 0U) << other.url << ' ' << other.version;
        EXPECT_TRUE(IsEmpty());
    }
}

TEST_F(PartialCopyTest, FileWithoutAVersionIsNeverContinued) {
    const RemoteFile unknown{"http://host/a.tar.gz", "a.tar.gz", 10, ""};
    LeaveHalf(unknown);
    EXPECT_EQ(Open(unknown).Size(), 0U);
}

TEST_F(PartialCopyTest, ServerMayBeginAnewWithAnotherVersion) {
    LeaveHalf();
    PartialCopy copy = Open(file);
    const RemoteFile changed{file.url, file.name, 3, "version 2"};
    copy.Begin(0, changed);
    copy.Take("abc");
    copy.Finish();
    EXPECT_EQ(Contents(Data()), "abc");
    EXPECT_EQ(Open(changed).Size(), 3U);
}

TEST_F(PartialCopyTest, OtherPartThanTheAskedForIsNotTaken) {
    LeaveHalf();
    PartialCopy copy = Open(file);
    EXPECT_THROW(copy.Begin(4, file), patchkeeper::FileFailed);
    EXPECT_TRUE(IsEmpty());
}

TEST_F(PartialCopyTest, NoMoreThanTheLimitIsTaken) {
    const RemoteFile untold{file.url, file.name, 0, file.version};
    PartialCopy copy = Open(untold, 8);
    copy.Begin(0, untold);
    copy.Take("01234567");
    EXPECT_THROW(copy.Take("8"), Refused);
    EXPECT_TRUE(IsEmpty());
    EXPECT_THROW(Open(file, 9), Refused);
}

TEST_F(PartialCopyTest, StaysWhenTheStateIsPutInOrder) {
    LeaveHalf();
    EXPECT_EQ(RecoveryNotes(), "");
    EXPECT_EQ(Open(file).Size(), 5U);
}

TEST_F(PartialCopyTest, OneFileWithoutTheOtherIsALeftover) {
    LeaveHalf();
    fs::remove(state_.BundleDirectory() / "partial.origin");
    EXPECT_THAT(RecoveryNotes(), testing::HasSubstr("a leftover of an interrupted command"));
    EXPECT_TRUE(IsEmpty());
    LeaveHalf();
    fs::remove(Data());
    EXPECT_THAT(RecoveryNotes(), testing::HasSubstr("a leftover of an interrupted command"));
    EXPECT_TRUE(IsEmpty());
}

TEST_F(PartialCopyTest, LinkInItsPlaceIsNotFollowed) {
    LeaveHalf();
    fs::remove(Data());
    const fs::path other = directory_.Write("other", "precious");
    fs::create_symlink(other, Data());
    PartialCopy copy = Open(file);
    EXPECT_EQ(copy.Size(), 0U);
    copy.Begin(0, file);
    copy.Take("0123456789");
    EXPECT_EQ(Contents(other), "precious");
    EXPECT_EQ(Contents(Data()), "0123456789");
}

TEST_F(PartialCopyTest, DirectoryThatCannotBeWrittenToIsAProblemOfTheState) {
    PartialCopy copy = Open(file);
    fs::remove(state_.BundleDirectory());
    EXPECT_THROW(copy.Begin(0, file), patchkeeper::StateProblem);
}

} // namespace
