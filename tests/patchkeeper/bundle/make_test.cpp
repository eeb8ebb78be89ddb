#include <filesystem>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"
#include "patchkeeper/bundle/Bundle.hpp"
#include "patchkeeper/bundle/HandMade.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::Failure;
using patchkeeper::FaultsOf;
using patchkeeper::MakeBundle;
using patchkeeper::Manifest;
using patchkeeper::ReadManifest;
using patchkeeper::Trust;
using patchkeeper_test::Below;
using patchkeeper_test::ContentOf;
using patchkeeper_test::MakeKeys;
using patchkeeper_test::TemporaryDirectory;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* sourceManifest = R"({"name": "fix", "version": "1.0", "category": "Security",
    "reboot_needed": true, "removable": false, "warnings": ["careful"]})";

class Make : public testing::Test {
protected:
    Make() {
        Write("manifest.json", sourceManifest);
        Write("files/usr/bin/tool", "binary");
        fs::permissions(source_ / "files/usr/bin/tool", fs::perms(0755));
        fs::create_symlink("tool", source_ / "files/usr/bin/link");
    }

    void Write(const std::string& name, const std::string& text) const {
        directory_.Write("source/" + name, text);
        fs::permissions(source_ / name, fs::perms(0644));
    }
    Manifest Run() const {
        EXPECT_EQ(MakeBundle(source_, output_, std::nullopt), output_);
        Trust trust;
        trust.allowUnsigned = true;
        EXPECT_THAT(FaultsOf(output_, trust), IsEmpty());
        return ReadManifest(output_);
    }
    // A failure leaves neither a bundle nor a draft of it.
    std::string Sentence() const {
        std::string sentence;
        try {
            MakeBundle(source_, output_, std::nullopt);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Code(), patchkeeper::ExitCode::SoftwareUpdateFailed);
            sentence = failure.what();
        }
        EXPECT_TRUE(fs::is_empty(output_.parent_path()));
        return sentence;
    }

    TemporaryDirectory directory_;
    TemporaryDirectory outputDirectory_;
    fs::path source_ = directory_.Path() / "source";
    fs::path output_ = outputDirectory_.Path() / "fix.tar.gz";
};

TEST_F(Make, BundleHasWhatTheDirectoryHas) {
    Write("components/docs/doc", "manual");
    Write("components/docs/\xC3\xA9t\xC3\xA9", "summer");
    Write("components/extra/" + std::string(200, 'x') + "/" + std::string(200, 'y'), "deep");
    const Manifest manifest = Run();
    EXPECT_EQ(manifest.name, "fix");
    EXPECT_EQ(manifest.version, "1.0");
    EXPECT_EQ(manifest.category, "Security");
    EXPECT_TRUE(manifest.rebootNeeded);
    EXPECT_FALSE(manifest.removable);
    EXPECT_THAT(manifest.warnings, ElementsAre("careful"));
    EXPECT_THAT(manifest.components, ElementsAre("docs", "extra"));
    EXPECT_EQ(manifest.size, 6U + 6U + 6U + 4U);
    ASSERT_EQ(manifest.files.size(), 5U);
    EXPECT_EQ(manifest.files[0].entry, "files/usr/bin/link");
    EXPECT_EQ(manifest.files[0].link, "tool");
    EXPECT_EQ(manifest.files[1].entry, "files/usr/bin/tool");
    EXPECT_EQ(manifest.files[1].mode, 0755U);
    EXPECT_EQ(manifest.files[1].sha256, patchkeeper_test::Sha256("binary"));
    EXPECT_EQ(manifest.files[2].mode, 0644U);
    EXPECT_EQ(manifest.FilesOf("docs").size(), 2U);
    EXPECT_EQ(manifest.FilesOf("extra").size(), 1U);
}

TEST_F(Make, UnpackedAgainItIsTheSame) {
    Run();
    Trust trust;
    trust.allowUnsigned = true;
    const fs::path target = outputDirectory_.Path() / "target";
    patchkeeper::Unpack(output_, ReadManifest(output_), {}, target, trust);
    EXPECT_THAT(Below(target), ElementsAre("usr/bin/link", "usr/bin/tool"));
    EXPECT_EQ(ContentOf(target / "usr/bin/link"), "binary");
}

TEST_F(Make, SameDirectoryGivesTheSameBytes) {
    Run();
    const std::string first = ContentOf(output_);
    fs::last_write_time(source_ / "files/usr/bin/tool",
                        fs::file_time_type::clock::now() - std::chrono::hours(5));
    Run();
    EXPECT_EQ(ContentOf(output_), first);
}

TEST_F(Make, ManifestOfABundleMakesItAgain) {
    const Manifest first = Run();
    const std::string bytes = ContentOf(output_);
    const std::string command = "tar -xzf " + output_.string() + " -O manifest.json >" +
                                (source_ / "manifest.json").string();
    ASSERT_EQ(std::system(command.c_str()), 0);
    Write("manifest.sig", "from before");
    EXPECT_EQ(Run().sha256, first.sha256);
    EXPECT_EQ(ContentOf(output_), bytes);
}

TEST_F(Make, OtherToolsReadIt) {
    Write("components/docs/\xC3\xA9t\xC3\xA9", "summer");
    Run();
    const std::string list = (outputDirectory_.Path() / "list").string();
    ASSERT_EQ(
        std::system(("tar -tzf " + output_.string() + " --quoting-style=literal >" + list).c_str()),
        0);
    EXPECT_EQ(ContentOf(list), "manifest.json\nfiles/usr/bin/link\nfiles/usr/bin/tool\n"
                               "components/docs/\xC3\xA9t\xC3\xA9\n");
}

TEST_F(Make, SignedWithAKeyThatIsThenTrusted) {
    const auto keys = MakeKeys(directory_.Path(), 7);
    MakeBundle(source_, output_, keys.privateKey);
    const auto key = patchkeeper::ReadPublicKey(keys.publicKey);
    EXPECT_THAT(FaultsOf(output_, Trust{{key}, false}), IsEmpty());
    EXPECT_THAT(FaultsOf(output_, Trust{{}, true}),
                ElementsAre("its signature is that of no trusted key"));
}

TEST_F(Make, WithoutAnOutputItIsCalledAfterNameAndVersion) {
    const auto before = fs::current_path();
    fs::current_path(outputDirectory_.Path());
    EXPECT_EQ(MakeBundle(source_, "", std::nullopt), "fix-1.0.tar.gz");
    fs::current_path(before);
    EXPECT_EQ(ReadManifest(outputDirectory_.Path() / "fix-1.0.tar.gz").name, "fix");
}

TEST_F(Make, OldBundleIsReplacedAndKeptWhenTheNewOneFails) {
    Run();
    Write("files/more", "more");
    EXPECT_EQ(Run().files.size(), 3U);
    const std::string bytes = ContentOf(output_);
    Write("files/with blank", "x");
    EXPECT_THROW(MakeBundle(source_, output_, std::nullopt), Failure);
    EXPECT_EQ(ContentOf(output_), bytes);
}

TEST_F(Make, WithoutFilesItIsStillABundle) {
    fs::remove_all(source_ / "files");
    EXPECT_THAT(Run().files, IsEmpty());
}

TEST_F(Make, ManifestThatBreaksTheFormatIsNamed) {
    Write("manifest.json", "{}");
    EXPECT_EQ(Sentence(),
              source_.string() + " makes no bundle: manifest.json: the manifest lacks 'name'");
    fs::remove(source_ / "manifest.json");
    EXPECT_EQ(Sentence(),
              (source_ / "manifest.json").string() + " cannot be read: No such file or directory");
}

TEST_F(Make, StrangersAreRefused) {
    Write("README", "text");
    EXPECT_EQ(Sentence(), (source_ / "README").string() + " has no place in a bundle");
}

TEST_F(Make, WhatABundleCannotCarryIsRefused) {
    fs::create_directories(source_ / "files/empty");
    EXPECT_EQ(Sentence(),
              (source_ / "files/empty").string() + " is empty, and a bundle carries files only");
    fs::remove(source_ / "files/empty");
    const fs::path pipe = source_ / "files/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(Sentence(), pipe.string() + " is neither a file nor a link");
    fs::remove(pipe);
    Write("files/with blank", "x");
    EXPECT_EQ(Sentence(),
              "the file name 'files/with blank' holds white space or a control character");
    fs::remove(source_ / "files/with blank");
    fs::create_symlink("/etc/passwd", source_ / "files/out");
    EXPECT_EQ(Sentence(), source_.string() + " makes no sound bundle: 'files/out' is a link that "
                                             "leaves its root: '/etc/passwd'");
    fs::remove(source_ / "files/out");
    fs::permissions(source_ / "files/usr/bin/tool", fs::perms(04755));
    EXPECT_THAT(Sentence(), EndsWith("has a set-user-ID, set-group-ID or sticky bit"));
}

TEST_F(Make, FileNameThatIsNotUtf8IsRefused) {
    Write("files/\xFF", "x");
    EXPECT_THAT(Sentence(), HasSubstr("is not UTF-8"));
}

TEST_F(Make, ComponentsAreThoseOfTheDirectory) {
    Write("components/docs/doc", "manual");
    Write("manifest.json", R"({"name": "fix", "version": "1.0", "reboot_needed": true,
        "removable": false, "components": ["docs", "extra"]})");
    EXPECT_EQ(Sentence(), "the components in manifest.json are not those in " +
                              (source_ / "components").string());
    Write("components/extra/x", "x");
    Write("manifest.json", R"({"name": "fix", "version": "1.0", "reboot_needed": true,
        "removable": false, "components": ["extra", "docs"]})");
    EXPECT_THAT(Run().components, ElementsAre("extra", "docs"));
}

TEST_F(Make, ComponentNamesArePlain) {
    Write("components/a b/doc", "manual");
    EXPECT_EQ(Sentence(), "'a b' is no name for a component");
}

TEST_F(Make, KeyThatIsNoneIsNamed) {
    const fs::path key = directory_.Write("key", "no key");
    EXPECT_THROW(MakeBundle(source_, output_, key), Failure);
    EXPECT_TRUE(fs::is_empty(outputDirectory_.Path()));
}

TEST_F(Make, OutputThatCannotBeWrittenIsNamed) {
    try {
        MakeBundle(source_, "/nowhere/fix.tar.gz", std::nullopt);
        FAIL() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(std::string(failure.what()),
                  "/nowhere/fix.tar.gz cannot be written: No such file or directory");
    }
}

TEST_F(Make, FullDiskIsASentenceAndLeavesNothing) {
    Write("files/noise", patchkeeper_test::Noise(500'000));
    signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {100'000, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_EQ(Sentence(), output_.string() + " cannot be written: File too large");
}

} // namespace
