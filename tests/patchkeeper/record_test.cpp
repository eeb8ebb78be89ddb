#include "patchkeeper/Record.hpp"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

using patchkeeper::FieldText;
using patchkeeper::RecordLine;
using patchkeeper::RecordWriter;
using testing::EndsWith;
using testing::StartsWith;

TEST(RecordLine, HasTabsBetweenItsFieldsAndANewline) {
    EXPECT_EQ(RecordLine({"one", "two words", "3"}), "one\ttwo words\t3\n");
    EXPECT_EQ(RecordLine({"alone"}), "alone\n");
}

TEST(RecordLine, EmptyAndControlCharactersNeverChangeTheNumberOfFields) {
    EXPECT_EQ(RecordLine({"", "a\tb\nc\r\x7f", ""}), "-\ta b c  \t-\n");
}

TEST(RecordLine, ExactlyTheLongestLineIsLeftAlone) {
    const std::string text(1023 - 4, 'x');
    EXPECT_EQ(RecordLine({"ab", text}), "ab\t" + text + "\n");
    EXPECT_EQ(RecordLine({"ab", text + "y"}), "ab\t" + text + "\n");
}

TEST(RecordLine, OnlyTheLongestFieldsAreCut) {
    const std::string line =
        RecordLine({"name", std::string(3000, 'd'), std::string(200, 'l'), "Available"});
    EXPECT_EQ(line.size(), 1023U);
    EXPECT_THAT(line, StartsWith("name\tddd"));
    EXPECT_THAT(line, EndsWith("\t" + std::string(200, 'l') + "\tAvailable\n"));
}

TEST(RecordLine, SeveralLongFieldsShareTheRoom) {
    const std::string line =
        RecordLine({std::string(5000, 'a'), std::string(4000, 'b'), std::string(100, 'c')});
    EXPECT_EQ(line.size(), 1023U);
    const auto length = [&](char letter) { return std::count(line.begin(), line.end(), letter); };
    EXPECT_LE(std::abs(length('a') - length('b')), 1);
    EXPECT_EQ(length('c'), 100);
}

TEST(RecordLine, IsCutAtTheBorderOfACharacter) {
    std::string text;
    for (int i = 0; i < 600; ++i) {
        text += "\xE2\x82\xAC";
    }
    const std::string line = RecordLine({text, "z"});
    EXPECT_EQ(line.size(), 1023U); // 340 characters of three bytes, a tab, a letter, a newline
    EXPECT_EQ(line, text.substr(0, 1020) + "\tz\n");
    EXPECT_EQ(FieldText("a\xE2\x82\xAC", 3), "a");
}

TEST(RecordWriter, PrintsRecordsAsTheyCome) {
    std::ostringstream out;
    RecordWriter records(out, false, {"Name", "Version"});
    records.Add({"demo", "1.0"});
    EXPECT_EQ(out.str(), "demo\t1.0\n");
    records.Finish();
    EXPECT_EQ(out.str(), "demo\t1.0\n");
}

TEST(RecordWriter, TableHasHeadingsAndColumnsOfCharacters) {
    std::ostringstream out;
    RecordWriter records(out, true, {"Name", "Version", "State"});
    records.Add({"a-long-name", "1", "Available"});
    records.Add({"d\xC3\xA9j\xC3\xA0", "1.0~rc1", ""});
    records.Finish();
    EXPECT_EQ(out.str(), "Name         Version  State\n"
                         "a-long-name  1        Available\n"
                         "d\xC3\xA9j\xC3\xA0         1.0~rc1  -\n");
}

TEST(RecordWriter, EmptyTablePrintsNothing) {
    std::ostringstream out;
    RecordWriter records(out, true, {"Name"});
    records.Finish();
    EXPECT_EQ(out.str(), "");
}

} // namespace
