#include "cimserver/Configuration.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using cimserver::Configuration;
using cimserver::ConfigurationError;
using testing::ElementsAre;

std::vector<std::string> Mistakes(const std::string& text) {
    Configuration configuration;
    configuration.AddText(text, "my.conf");
    std::vector<std::string> texts;
    for (const auto& mistake : configuration.Mistakes()) {
        texts.push_back(mistake.text);
    }
    return texts;
}

struct Row {
    const char* text;
    const char* value; ///< of the item `a`; null: absent
};

class ConfigurationLine : public testing::TestWithParam<Row> {};

TEST_P(ConfigurationLine, GivesTheItem) {
    const auto [text, value] = GetParam();
    Configuration configuration;
    configuration.AddText(text, "my.conf");
    const auto* item = configuration.Find("a");
    if (value == nullptr) {
        EXPECT_EQ(item, nullptr);
    } else {
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->value, value);
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, ConfigurationLine,
    testing::Values(Row{"a = 1", "1"}, Row{"a=1\n", "1"}, Row{" \ta\t =  1 2\t \n", "1 2"},
                    Row{"a = 1\r\n", "1"}, Row{"a = b = c", "b = c"},
                    Row{"a = # no comment", "# no comment"}, Row{"#a = 1", nullptr},
                    Row{";a = 1", nullptr}, Row{"A = 1", nullptr}, Row{"a = 1\na = 2", "1"},
                    Row{"a =\na = 2", "2"}, Row{"a =   \n", nullptr}, Row{"", nullptr},
                    Row{"\n  \n\t\r\na = 1", "1"}, Row{"# x\n\n; y\na = 1", "1"}));

TEST(Configuration, MistakesNameFileAndLineAndTheOtherLinesCount) {
    EXPECT_THAT(Mistakes("a = 1\n\nnonsense\n"), ElementsAre("my.conf:3: expected `name = value`"));
    EXPECT_THAT(Mistakes(" # not in the first column\n = 1\n"),
                ElementsAre("my.conf:1: expected `name = value`",
                            "my.conf:2: there is no name before the `=`"));
    Configuration configuration;
    configuration.AddText("nonsense\na = 1", "my.conf");
    EXPECT_EQ(configuration.Get("a", "(absent)"), "1");
}

TEST(Configuration, RepeatedItemsAreTold) {
    Configuration configuration;
    configuration.AddText("a = 1\nb = 1\na = 2\n", "my.conf");
    EXPECT_THAT(configuration.Repetitions(),
                ElementsAre("my.conf:3: a: does not count, it stands in my.conf:1 already"));
}

TEST(Configuration, ItemsRememberWhereTheyStand) {
    Configuration configuration;
    configuration.AddText("# x\na = 1\na = 2\n", "my.conf");
    EXPECT_EQ(configuration.Find("a")->origin, "my.conf:2");
}

TEST(Configuration, OverrideWinsAndEmptyRemoves) {
    Configuration configuration;
    configuration.AddText("a = 1\nb = 2\n", "my.conf");
    configuration.Override("a", "3", "--option");
    configuration.Override("b", "", "--option");
    EXPECT_EQ(configuration.Find("a")->value, "3");
    EXPECT_EQ(configuration.Find("a")->origin, "--option");
    EXPECT_EQ(configuration.Find("b"), nullptr);
    EXPECT_EQ(configuration.Get("b", "fallback"), "fallback");
    EXPECT_EQ(configuration.Get("a", "fallback"), "3");
}

TEST(Configuration, FileIsReadWhole) {
    std::string name = (std::filesystem::temp_directory_path() / "configuration.XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    const auto file = std::filesystem::path(name) / "my.conf";
    std::ofstream(file) << "a = " << std::string(10000, 'x') << "\nb = end";
    Configuration configuration;
    configuration.AddFile(file);
    std::filesystem::remove_all(name);
    EXPECT_EQ(configuration.Find("a")->value.size(), 10000U);
    EXPECT_EQ(configuration.Find("b")->value, "end");
    EXPECT_EQ(configuration.Find("b")->origin, file.string() + ":2");
}

TEST(Configuration, FileThatCannotBeReadIsNamedWithTheReason) {
    Configuration configuration;
    try {
        configuration.AddFile("/absent/my.conf");
        FAIL() << "nothing thrown";
    } catch (const ConfigurationError& error) {
        EXPECT_STREQ(error.what(), "/absent/my.conf: No such file or directory; "
                                   "name a configuration file that can be read");
    }
    try {
        configuration.AddFile("/");
        FAIL() << "nothing thrown";
    } catch (const ConfigurationError& error) {
        EXPECT_STREQ(error.what(), "/: Is a directory; name a configuration file that can be read");
    }
}

} // namespace
