#include "provider/ProviderTest.hpp"

using OpenWBEM::String;
using test_support::CimErrorOf;
using test_support::Failed;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

String Next(char* line) {
    return GetNextToken(line, "Name", "the source");
}

} // namespace

using GetNextToken_ = LogTest;

TEST_F(GetNextToken_, CutsAtTabsAndNewlines) {
    char line[] = "one field\ttwo\nthree\r";
    EXPECT_EQ(Text(Next(line)), "one field");
    EXPECT_EQ(Text(Next(nullptr)), "two");
    EXPECT_EQ(Text(Next(nullptr)), "three\r");
    EXPECT_THAT(log->All(), IsEmpty());
}

TEST_F(GetNextToken_, SaysWhichFieldIsMissingWhere) {
    char line[] = "a\n";
    EXPECT_EQ(Text(Next(line)), "a");
    const std::string text = "Failed to parse Date field from /qv/bin/patchkeeper \n"
                             "#SWU_Error_ParsingFailed,Date,/qv/bin/patchkeeper #";
    EXPECT_EQ(CimErrorOf([] { GetNextToken(nullptr, "Date", "/qv/bin/patchkeeper "); }),
              Failed(text));
    EXPECT_THAT(log->All(),
                ElementsAre("ERROR: Failed to parse Date field from /qv/bin/patchkeeper ",
                            "INFO: Exception: " + text));
}

TEST_F(GetNextToken_, FindsNoFieldInAnEmptyLine) {
    for (const char* const text : {"", "\n", "\t\t\n"}) {
        std::string line = text;
        EXPECT_EQ(CimErrorOf([&] { Next(line.data()); }).number, 1);
    }
}

TEST_F(GetNextToken_, KeepsThePlaceOfEachThreadApart) {
    char mine[] = "a\tb";
    char other[] = "x\ty";
    EXPECT_EQ(Text(Next(mine)), "a");
    std::thread([&] { EXPECT_EQ(Text(Next(other)), "x"); }).join();
    EXPECT_EQ(Text(Next(nullptr)), "b");
}

TEST(CommonOddities, CM4_AnEmptyFieldIsSkipped) {
    char line[] = "a\t\tb\n";
    EXPECT_EQ(Text(Next(line)), "a");
    EXPECT_EQ(Text(Next(nullptr)), "b");
    EXPECT_EQ(CimErrorOf([] { Next(nullptr); }).number, 1);
}
