// Password hashes and the file that keeps them.
#include "cimserver/http/PasswordFile.hpp"
#include "cimserver/http/PasswordHash.hpp"
#include "cimserver/http/SecretFiles.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

#include <sys/stat.h>

namespace {

using cimserver::http::CredentialError;
using cimserver::http::HashOf;
using cimserver::http::IsHash;
using cimserver::http::IsUserName;
using cimserver::http::Matches;
using cimserver::http::PasswordTable;
using cimserver::http::ReadPasswordFile;
using cimserver::http::SetPassword;
using http_test::cheap;
using http_test::SecretFiles;
using testing::HasSubstr;

TEST(PasswordHash, MatchesItsPasswordOnly) {
    const std::string hash = HashOf("secret", cheap);
    EXPECT_TRUE(Matches("secret", hash));
    EXPECT_FALSE(Matches("secreT", hash));
    EXPECT_FALSE(Matches("", hash));
    EXPECT_FALSE(Matches(std::string("secret\0", 7), hash));
    EXPECT_FALSE(Matches("secret", "secret"));
    EXPECT_FALSE(Matches("secret", ""));
}

TEST(PasswordHash, IsYescryptWithASaltOfItsOwn) {
    EXPECT_EQ(HashOf("secret").substr(0, 7), "$y$j9T$");
    EXPECT_NE(HashOf("secret", cheap), HashOf("secret", cheap));
}

TEST(PasswordHash, AnythingElseIsNoHash) {
    const std::string hash = HashOf("secret", cheap);
    EXPECT_TRUE(IsHash(hash));
    EXPECT_FALSE(IsHash(hash.substr(0, hash.size() - 1)));
    EXPECT_FALSE(IsHash(hash.substr(0, hash.rfind('$'))));
    EXPECT_FALSE(IsHash("secret"));
    EXPECT_FALSE(IsHash(""));
    EXPECT_FALSE(IsHash("$6$salt$" + std::string(86, 'x')));
}

TEST(PasswordHash, APasswordThatCannotBeHashedIsRefused) {
    EXPECT_THROW(HashOf(std::string(512, 'x'), cheap), std::runtime_error);
    EXPECT_THROW(HashOf(std::string("a\0b", 3), cheap), std::runtime_error);
    EXPECT_TRUE(Matches(std::string(511, 'x'), HashOf(std::string(511, 'x'), cheap)));
}

TEST(UserNames, HoldNoColonAndNoControlCharacter) {
    EXPECT_TRUE(IsUserName("anna"));
    EXPECT_TRUE(IsUserName("anna maria@x"));
    for (const std::string name : {"", "a:b", "a\nb", "a\x7f"}) {
        EXPECT_FALSE(IsUserName(name)) << name;
    }
}

std::string ErrorOf(const std::filesystem::path& file) {
    try {
        ReadPasswordFile(file);
    } catch (const CredentialError& error) {
        return error.what();
    }
    return "no error";
}

TEST(PasswordFile, IsMadeWithModeSixHundred) {
    const SecretFiles files;
    umask(0);
    SetPassword(files.Path("passwords"), "anna", HashOf("secret", cheap));
    EXPECT_EQ(std::filesystem::status(files.Path("passwords")).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    const PasswordTable table = ReadPasswordFile(files.Path("passwords"));
    ASSERT_EQ(table.size(), 1U);
    EXPECT_TRUE(Matches("secret", table.at("anna")));
}

TEST(PasswordFile, AnotherPasswordTakesThePlaceOfTheFirst) {
    const SecretFiles files;
    const auto file = files.Path("passwords");
    SetPassword(file, "anna", HashOf("one", cheap));
    SetPassword(file, "annabel", HashOf("two", cheap));
    SetPassword(file, "anna", HashOf("three", cheap));
    const PasswordTable table = ReadPasswordFile(file);
    ASSERT_EQ(table.size(), 2U);
    EXPECT_TRUE(Matches("three", table.at("anna")));
    EXPECT_TRUE(Matches("two", table.at("annabel")));
    EXPECT_EQ(files.Names(), std::vector<std::string>{"passwords"}) << "a draft was left";
}

TEST(PasswordFile, IsReplacedSoThatWhoHasItOpenReadsTheOldOne) {
    const SecretFiles files;
    const auto file = files.Path("passwords");
    SetPassword(file, "anna", HashOf("one", cheap));
    std::filesystem::create_hard_link(file, files.Path("before"));
    SetPassword(file, "anna", HashOf("two", cheap));
    EXPECT_TRUE(Matches("one", ReadPasswordFile(files.Path("before")).at("anna")));
    EXPECT_TRUE(Matches("two", ReadPasswordFile(file).at("anna")));
}

TEST(PasswordFile, ALinkToItStaysOne) {
    const SecretFiles files;
    SetPassword(files.Path("real"), "anna", HashOf("one", cheap));
    std::filesystem::create_symlink("real", files.Path("link"));
    SetPassword(files.Path("link"), "bert", HashOf("two", cheap));
    EXPECT_TRUE(std::filesystem::is_symlink(files.Path("link")));
    EXPECT_EQ(ReadPasswordFile(files.Path("real")).size(), 2U);
}

TEST(PasswordFile, WritersAtTheSameTimeLoseNothing) {
    const SecretFiles files;
    const auto file = files.Path("passwords");
    std::vector<std::future<void>> writers;
    for (int i = 0; i < 8; ++i) {
        writers.push_back(std::async(std::launch::async, [&, i] {
            SetPassword(file, "user" + std::to_string(i), HashOf("x", cheap));
        }));
    }
    for (auto& writer : writers) {
        writer.get();
    }
    EXPECT_EQ(ReadPasswordFile(file).size(), 8U);
}

TEST(PasswordFile, OneThatOthersCanReadIsRefused) {
    const SecretFiles files;
    const auto file = files.Path("passwords");
    SetPassword(file, "anna", HashOf("one", cheap));
    for (const unsigned mode : {0640U, 0604U, 0620U, 0602U}) {
        chmod(file.c_str(), mode);
        EXPECT_EQ(ErrorOf(file),
                  file.string() + ": group or others have access to these passwords; chmod 600 " +
                      file.string());
        EXPECT_THROW(SetPassword(file, "bert", HashOf("x", cheap)), CredentialError);
    }
    chmod(file.c_str(), 0400);
    EXPECT_EQ(ErrorOf(file), "no error");
}

TEST(PasswordFile, AMissingOneIsNamedWithTheCommandThatMakesIt) {
    const SecretFiles files;
    EXPECT_THAT(ErrorOf(files.Path("none")),
                HasSubstr("cimserver passwd USER --file " + files.Path("none").string()));
    EXPECT_THAT(ErrorOf("/"), HasSubstr("is no regular file"));
}

TEST(PasswordFile, AFaultyLineIsNamedWithItsNumber) {
    const SecretFiles files;
    const auto file = files.Path("passwords");
    const std::string good = "anna:" + HashOf("x", cheap) + "\n";
    const auto error = [&](const std::string& text) {
        files.Write("passwords", text);
        const std::string whole = ErrorOf(file);
        EXPECT_EQ(whole.find(file.string()), 0U) << whole;
        return whole.substr(file.string().size());
    };
    EXPECT_EQ(error(good + "\nbert\n"),
              ":3: expected `user:hash`, as `cimserver passwd` writes it");
    EXPECT_EQ(error(":x\n"), ":1: expected `user:hash`, as `cimserver passwd` writes it");
    EXPECT_EQ(error(good + good), ":2: `anna` stands here twice");
    const std::string plain = error(good + "bert:plainword\n");
    EXPECT_THAT(plain, HasSubstr(":2: no yescrypt hash stands behind `bert`"));
    EXPECT_THAT(plain, testing::Not(HasSubstr("plainword")));
    files.Write("passwords", "\n" + good);
    EXPECT_EQ(ReadPasswordFile(file).size(), 1U);
}

} // namespace
