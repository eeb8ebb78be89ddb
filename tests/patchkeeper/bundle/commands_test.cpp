#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "patchkeeper/TemporaryDirectory.hpp"
#include "patchkeeper/bundle/Commands.hpp"
#include "patchkeeper/bundle/HandMade.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::ExitCode;
using patchkeeper::Failure;
using patchkeeper::IsBundleCommand;
using patchkeeper::Trust;
using patchkeeper_test::HandMade;
using patchkeeper_test::MakeKeys;
using patchkeeper_test::TemporaryDirectory;
using testing::HasSubstr;

struct Answer {
    ExitCode code = ExitCode::Ok;
    std::string out;
    std::string err; // the failure's sentence, or what was written
};

class Commands : public testing::Test {
protected:
    Answer Run(const std::vector<std::string>& arguments) {
        std::ostringstream out;
        std::ostringstream err;
        Answer answer;
        try {
            answer.code = patchkeeper::RunBundleCommand(
                arguments,
                [&] {
                    ++timesAsked_;
                    return settings_;
                },
                out, err);
            answer.err = err.str();
        } catch (const Failure& failure) {
            answer.code = failure.Code();
            answer.err = failure.what();
        }
        answer.out = out.str();
        return answer;
    }

    TemporaryDirectory directory_;
    Trust settings_;
    int timesAsked_ = 0;
};

TEST_F(Commands, KnowsItsOwn) {
    EXPECT_TRUE(IsBundleCommand({"bundle"}));
    EXPECT_TRUE(IsBundleCommand({"check", "file"}));
    EXPECT_FALSE(IsBundleCommand({}));
    EXPECT_FALSE(IsBundleCommand({"--cache", "check"}));
}

TEST_F(Commands, BundleMakesOneAndCheckFindsItGood) {
    directory_.Write("source/manifest.json", R"({"name": "fix", "version": "1.0",
        "reboot_needed": true, "removable": false})");
    directory_.Write("source/files/a", "12345");
    const auto keys = MakeKeys(directory_.Path(), 3);
    const std::string source = directory_.Path() / "source";
    const std::string output = directory_.Path() / "out.tar.gz";

    const Answer made = Run({"bundle", source, "-o", output, "--key", keys.privateKey});
    EXPECT_EQ(made.code, ExitCode::Ok) << made.err;
    EXPECT_EQ(made.out, output + "\n");
    EXPECT_EQ(timesAsked_, 0);

    const Answer checked = Run({"check", output, "--trust", keys.publicKey});
    EXPECT_EQ(checked.code, ExitCode::Ok) << checked.err;
    EXPECT_EQ(checked.out, "No faults: fix 1.0, 1 file, 5 bytes.\n");
    EXPECT_EQ(timesAsked_, 0);

    EXPECT_EQ(Run({"check", output}).code, ExitCode::SoftwareUpdateFailed);
    settings_.keys.push_back(patchkeeper::ReadPublicKey(keys.publicKey));
    EXPECT_EQ(Run({"check", output}).code, ExitCode::Ok);
    EXPECT_EQ(timesAsked_, 2);

    EXPECT_EQ(Run({"bundle", source, "--output", output}).code, ExitCode::Ok);
    EXPECT_EQ(Run({"check", output}).out, "it is not signed.\n");
    EXPECT_EQ(Run({"check", output, "--allow-unsigned"}).code, ExitCode::Ok);
    settings_.allowUnsigned = true;
    EXPECT_EQ(Run({"check", output}).code, ExitCode::Ok);
}

TEST_F(Commands, CheckNamesEveryFault) {
    HandMade bundle;
    bundle.Declare("files/a", "one").Declare("files/b", "two");
    const std::string file = directory_.Write("bad.tar.gz", bundle.Bytes());
    const Answer answer = Run({"check", file});
    EXPECT_EQ(answer.code, ExitCode::SoftwareUpdateFailed);
    EXPECT_EQ(answer.out, "'files/a' is missing.\n'files/b' is missing.\nit is not signed.\n");
    EXPECT_EQ(answer.err, file + " has 3 faults");
    const Answer one = Run({"check", directory_.Write("one.tar.gz", HandMade().Bytes())});
    EXPECT_THAT(one.err, HasSubstr(" has a fault"));
}

TEST_F(Commands, CheckOfWhatIsNoBundleIsAFailure) {
    const std::string file = directory_.Write("text", "text");
    const Answer answer = Run({"check", file, "--allow-unsigned"});
    EXPECT_EQ(answer.code, ExitCode::SoftwareUpdateFailed);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, file + " is no update bundle: it is not packed with gzip");
}

TEST_F(Commands, WrongCommandLinesAreUsageErrors) {
    const std::vector<std::vector<std::string>> rows = {
        {"bundle"},
        {"check"},
        {"bundle", "a", "b"},
        {"check", "a", "b"},
        {"check", "a", "--bogus"},
        {"bundle", "a", "-o"},
        {"bundle", "a", "--key"},
        {"check", "a", "--trust"},
    };
    for (const auto& row : rows) {
        const Answer answer = Run(row);
        EXPECT_EQ(answer.code, ExitCode::Usage) << row.back();
        EXPECT_EQ(answer.out, "") << row.back();
        EXPECT_THAT(answer.err, HasSubstr("--help")) << row.back();
    }
}

TEST_F(Commands, HelpIsForAPerson) {
    for (const char* command : {"bundle", "check"}) {
        const Answer help = Run({command, "--help"});
        EXPECT_EQ(help.code, ExitCode::Ok);
        EXPECT_THAT(help.out, HasSubstr("patchkeeper " + std::string(command)));
        EXPECT_EQ(help.err, "");
    }
}

} // namespace
