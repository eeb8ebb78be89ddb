#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"
#include "patchkeeper/bundle/Bundle.hpp"
#include "patchkeeper/bundle/HandMade.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::ExitCode;
using patchkeeper::Failure;
using patchkeeper::Manifest;
using patchkeeper::ReadManifest;
using patchkeeper::Trust;
using patchkeeper_test::Below;
using patchkeeper_test::ContentOf;
using patchkeeper_test::HandMade;
using patchkeeper_test::TemporaryDirectory;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class Unpack : public testing::Test {
protected:
    Unpack() {
        bundle_.manifest["components"] = {"docs", "more"};
        bundle_.File("files/usr/bin/tool", "binary", "0750").File("files/empty", "");
        bundle_.Link("files/usr/bin/link", "../../empty");
        bundle_.File("components/docs/usr/share/doc", "manual").File("components/more/x", "y");
    }

    void Store(const HandMade& bundle) {
        file_ = directory_.Write("bundle.tar.gz", bundle.Bytes());
        manifest_ = ReadManifest(file_);
    }
    void Run(const std::vector<std::string>& components = {},
             const patchkeeper::BundleProgress& progress = {}) {
        Trust trust;
        trust.allowUnsigned = true;
        patchkeeper::Unpack(file_, manifest_, components, target_, trust, {}, progress);
    }
    std::string Sentence(const std::vector<std::string>& components = {}) {
        try {
            Run(components);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Code(), ExitCode::ApplyFailed);
            return failure.what();
        }
        return "";
    }

    TemporaryDirectory directory_;
    fs::path target_ = directory_.Path() / "a/target";
    HandMade bundle_;
    fs::path file_;
    Manifest manifest_;
};

TEST_F(Unpack, FilesOfNoComponentGoToTheirPlaces) {
    Store(bundle_);
    Run();
    EXPECT_THAT(Below(target_), ElementsAre("empty", "usr/bin/link", "usr/bin/tool"));
    EXPECT_EQ(ContentOf(target_ / "usr/bin/tool"), "binary");
    EXPECT_EQ(fs::status(target_ / "usr/bin/tool").permissions(), fs::perms(0750));
    EXPECT_EQ(fs::status(target_ / "usr/bin").permissions(), fs::perms(0755));
    EXPECT_EQ(fs::file_size(target_ / "empty"), 0U);
    EXPECT_EQ(fs::read_symlink(target_ / "usr/bin/link"), "../../empty");
}

TEST_F(Unpack, ChosenComponentsComeWithThem) {
    Store(bundle_);
    Run({"docs"});
    EXPECT_THAT(Below(target_),
                ElementsAre("empty", "usr/bin/link", "usr/bin/tool", "usr/share/doc"));
    fs::remove_all(target_);
    Run({"more", "docs", "docs"});
    EXPECT_THAT(Below(target_),
                ElementsAre("empty", "usr/bin/link", "usr/bin/tool", "usr/share/doc", "x"));
}

TEST_F(Unpack, UnknownComponentsAreRefused) {
    Store(bundle_);
    EXPECT_EQ(Sentence({"docs", "Docs"}), "fix 1.0 has no component 'Docs'");
    EXPECT_FALSE(fs::exists(target_));
}

TEST_F(Unpack, ModesDoNotDependOnTheUmask) {
    bundle_.File("files/open", "x", "0666");
    Store(bundle_);
    const auto before = umask(0077);
    Run();
    umask(before);
    EXPECT_EQ(fs::status(target_ / "open").permissions(), fs::perms(0666));
    EXPECT_EQ(fs::status(target_ / "usr/bin").permissions(), fs::perms(0755));
}

TEST_F(Unpack, BundleWithAFaultLeavesNothing) {
    bundle_.items.back().data = "z";
    Store(bundle_);
    EXPECT_EQ(Sentence(), file_.string() + " has a fault: 'components/more/x' has another SHA-256 "
                                           "than the manifest says");
    EXPECT_FALSE(fs::exists(target_));
    bundle_.items[0].data = "Binary";
    Store(bundle_);
    EXPECT_THAT(Sentence(), EndsWith(" (and 1 more)"));
    EXPECT_FALSE(fs::exists(target_));
}

TEST_F(Unpack, UnsignedBundleIsAFaultHereToo) {
    Store(bundle_);
    EXPECT_THROW(patchkeeper::Unpack(file_, manifest_, {}, target_, Trust()), Failure);
    EXPECT_FALSE(fs::exists(target_));
}

// What would land outside if paths were only joined.
TEST_F(Unpack, NothingIsWrittenOutsideTheTarget) {
    std::vector<HandMade> attacks(4);
    attacks[0].File("files/../../out", "x");
    attacks[1].File((directory_.Path() / "out").string(), "x");
    attacks[2].Link("files/way", directory_.Path().string()).File("files/way/out", "x");
    attacks[3].Link("files/way", "../..");
    attacks[3].items.push_back({"files/way/out", "x"});
    for (const auto& attack : attacks) {
        Store(attack);
        EXPECT_NE(Sentence(), "");
        EXPECT_THAT(Below(directory_.Path()), ElementsAre("bundle.tar.gz"));
    }
}

TEST_F(Unpack, OtherBundleUnderTheSameNameIsRefused) {
    Store(bundle_);
    HandMade other;
    other.File("files/x", "y");
    directory_.Write("bundle.tar.gz", other.Bytes());
    EXPECT_EQ(Sentence(), file_.string() + " is no longer the bundle that it was");
    EXPECT_FALSE(fs::exists(target_));
}

// The check has passed; then the file is written over, in place, while it is unpacked.
TEST_F(Unpack, BundleThatChangesInBetweenLeavesNothing) {
    bundle_.File("files/z", patchkeeper_test::Noise(3'000'000));
    Store(bundle_);
    HandMade changed = bundle_;
    changed.items.back().data.back() ^= 1;
    bool isWritten = false;
    const auto change = [&](std::uint64_t done, std::uint64_t) {
        if (!isWritten && done > manifest_.size) {
            std::ofstream(file_, std::ios::binary) << changed.Bytes();
            isWritten = true;
        }
    };
    try {
        Run({}, change);
        FAIL() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::ApplyFailed);
        EXPECT_THAT(failure.what(), HasSubstr(" changed while it was unpacked"));
    }
    EXPECT_TRUE(isWritten);
    EXPECT_THAT(Below(target_), IsEmpty());
}

TEST_F(Unpack, TargetMustBeEmpty) {
    Store(bundle_);
    fs::create_directories(target_);
    Run();
    EXPECT_EQ(Sentence(), target_.string() + " is not empty");
    EXPECT_THAT(Below(target_), ElementsAre("empty", "usr/bin/link", "usr/bin/tool"));
}

TEST_F(Unpack, TargetThatCannotBeMadeIsNamed) {
    Store(bundle_);
    target_ = file_ / "target";
    EXPECT_EQ(Sentence(), target_.string() + " cannot be made: Not a directory");
}

TEST_F(Unpack, FullDiskIsASentenceAndLeavesNothing) {
    bundle_.File("files/big", std::string(500'000, 'x'));
    Store(bundle_);
    signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {100'000, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_EQ(Sentence(), (target_ / "big").string() + " cannot be written: File too large");
    EXPECT_THAT(Below(target_), IsEmpty());
    EXPECT_TRUE(fs::is_empty(target_));
}

TEST_F(Unpack, ProgressCoversReadingAndWritingAndMayCancel) {
    bundle_.File("files/big", std::string(500'000, 'x'));
    Store(bundle_);
    const std::uint64_t written = 500'000 + 6;
    std::vector<std::uint64_t> seen;
    Run({}, [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(total, manifest_.size + written);
        seen.push_back(done);
    });
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_EQ(seen.back(), manifest_.size + written);

    fs::remove_all(target_);
    struct Cancelled : Failure {
        Cancelled() : Failure(ExitCode::RemoveFailed, "cancelled") {}
    };
    const auto cancel = [&](std::uint64_t done, std::uint64_t) {
        if (done > manifest_.size + 100'000) {
            throw Cancelled();
        }
    };
    EXPECT_THROW(Run({}, cancel), Cancelled);
    EXPECT_TRUE(fs::is_empty(target_));
}

} // namespace
