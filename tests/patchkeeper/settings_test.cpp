#include "patchkeeper/Settings.hpp"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::Settings;
using patchkeeper_test::TemporaryDirectory;
using testing::ElementsAre;
using testing::IsEmpty;

Settings Read(const std::string& text) {
    const TemporaryDirectory directory;
    return patchkeeper::ReadSettings(directory.Write("patchkeeper.conf", text), "/root-of-it");
}

// What the sentence about a file says behind the file's name.
std::string MistakesIn(const std::string& text) {
    const TemporaryDirectory directory;
    const fs::path file = directory.Write("c", text);
    try {
        patchkeeper::ReadSettings(file, "/root-of-it");
    } catch (const patchkeeper::StateProblem& problem) {
        std::string sentence = problem.what();
        for (std::size_t at = 0; (at = sentence.find(file.string())) != std::string::npos;) {
            sentence.replace(at, file.string().size(), "FILE");
        }
        return sentence;
    }
    return "none";
}

TEST(Settings, MissingFileGivesTheDefaults) {
    const Settings settings = patchkeeper::ReadSettings("/no/such/file", "/root-of-it");
    EXPECT_EQ(settings.target, "/root-of-it/target");
    EXPECT_EQ(settings.emUrl, "");
    EXPECT_EQ(settings.sizeLimit, 2147483648U);
    EXPECT_EQ(settings.lockTimeout.count(), 10);
    EXPECT_EQ(settings.connectTimeout.count(), 30);
    EXPECT_EQ(settings.transferTimeout.count(), 60);
    EXPECT_EQ(settings.applyRate, 0U);
    EXPECT_THAT(settings.trustedKeys, IsEmpty());
    EXPECT_FALSE(settings.allowUnsigned);
}

TEST(Settings, EveryItemIsRead) {
    const Settings settings = Read("# of this machine\n"
                                   "\n"
                                   "  target = /srv/target  \n"
                                   "em_url=http://10.0.0.1/a?b=c\r\n"
                                   "size_limit = 3M\n"
                                   "lock_timeout = 1\n"
                                   "connect_timeout = 2\n"
                                   "transfer_timeout = 86400\n"
                                   "apply_rate = 4096\n"
                                   "trusted_keys = keys/a.pem , /etc/b.pem\n"
                                   "allow_unsigned = true");
    EXPECT_EQ(settings.target, "/srv/target");
    EXPECT_EQ(settings.emUrl, "http://10.0.0.1/a?b=c");
    EXPECT_EQ(settings.sizeLimit, 3145728U);
    EXPECT_EQ(settings.lockTimeout.count(), 1);
    EXPECT_EQ(settings.connectTimeout.count(), 2);
    EXPECT_EQ(settings.transferTimeout.count(), 86400);
    EXPECT_EQ(settings.applyRate, 4096U);
    EXPECT_THAT(settings.trustedKeys,
                ElementsAre(fs::path("/root-of-it/keys/a.pem"), fs::path("/etc/b.pem")));
    EXPECT_TRUE(settings.allowUnsigned);
}

TEST(Settings, NumbersOfBytesMayHaveAUnit) {
    EXPECT_EQ(Read("size_limit = 0").sizeLimit, 0U);
    EXPECT_EQ(Read("size_limit = 7K").sizeLimit, 7168U);
    EXPECT_EQ(Read("size_limit = 2G").sizeLimit, 2147483648U);
    EXPECT_EQ(Read("size_limit = 9223372036854775807").sizeLimit, 9223372036854775807U);
}

TEST(Settings, EmptyFileAndEmptyLinesAreFine) {
    EXPECT_EQ(Read("").lockTimeout.count(), 10);
    EXPECT_EQ(Read("\n \n#x\n").lockTimeout.count(), 10);
}

TEST(Settings, EveryMistakeIsNamedWithFileLineAndItem) {
    EXPECT_EQ(MistakesIn("size_limit = much\n"
                         "allow_unsigned = yes\n"
                         "target = /ok\n"
                         "colour = red\n"),
              "FILE:1: size_limit: 'much' is not a number of bytes; "
              "FILE:2: allow_unsigned: 'yes' is neither true nor false; "
              "FILE:4: colour: there is no such item");
}

TEST(Settings, WrongValuesAreMistakes) {
    const struct {
        const char* line;
        const char* mistake;
    } rows[] = {
        {"target", "'target' is not of the form name = value"},
        {"target =", "target: a path is missing"},
        {"trusted_keys = a,,b", "trusted_keys: a path is missing"},
        {"size_limit = ", "size_limit: '' is not a number of bytes"},
        {"size_limit = K", "size_limit: 'K' is not a number of bytes"},
        {"size_limit = -1", "size_limit: '-1' is not a number of bytes"},
        {"size_limit = 1.5M", "size_limit: '1.5M' is not a number of bytes"},
        {"apply_rate = 9223372036854775808",
         "apply_rate: '9223372036854775808' is not a number of bytes"},
        {"apply_rate = 9007199254740992G",
         "apply_rate: '9007199254740992G' is not a number of bytes"},
        {"lock_timeout = 0", "lock_timeout: '0' is not a number of seconds from 1 to 86400"},
        {"connect_timeout = 86401",
         "connect_timeout: '86401' is not a number of seconds from 1 to 86400"},
        {"transfer_timeout = 1s",
         "transfer_timeout: '1s' is not a number of seconds from 1 to 86400"},
        {"Target = /x", "Target: there is no such item"},
        {"= x", ": there is no such item"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(MistakesIn(std::string("\n") + row.line), "FILE:2: " + std::string(row.mistake))
            << row.line;
    }
}

TEST(Settings, ItemThatIsSetTwiceIsAMistake) {
    EXPECT_EQ(MistakesIn("target = /a\ntarget = /b\n"), "FILE:2: target: it is set twice");
}

TEST(Settings, FileThatCannotBeReadIsAProblemAndNotTheDefaults) {
    const TemporaryDirectory directory;
    try {
        patchkeeper::ReadSettings(directory.Path(), "/root-of-it");
        FAIL() << "no problem";
    } catch (const patchkeeper::StateProblem& problem) {
        EXPECT_EQ(std::string(problem.what()),
                  directory.Path().string() + " cannot be read: Is a directory");
    }
}

} // namespace
