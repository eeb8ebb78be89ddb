#include "provider/ProviderTest.hpp"

using test_support::CimErrorOf;
using test_support::Failed;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(LocMsg, PutsTheIdBehindTheText) {
    EXPECT_STREQ(locMsg("ID", "T", nullptr), "T\n#ID#");
}

TEST(LocMsg, PutsTheArgumentsBehindTheId) {
    EXPECT_STREQ(locMsg("ID", "T", "a", "b", nullptr), "T\n#ID,a,b#");
    EXPECT_STREQ(locMsg("ID", "", "", nullptr), "\n#ID,#");
}

TEST(LocMsg, TakesThePreviousMessageAsAnArgument) {
    const char* const previous = locMsg("A", "a", nullptr);
    EXPECT_STREQ(locMsg("B", previous, previous, nullptr), "a\n#A#\n#B,a\n#A##");
}

TEST(LocMsg, KeepsTheMessageOfEachThreadApart) {
    const char* const mine = locMsg("A", "mine", nullptr);
    std::thread([] { EXPECT_STREQ(locMsg("B", "other", nullptr), "other\n#B#"); }).join();
    EXPECT_STREQ(mine, "mine\n#A#");
}

TEST(LocMsg, HasNoLimit) {
    const std::string text(100000, 'x');
    EXPECT_EQ(locMsg("ID", text.c_str(), text.c_str(), nullptr), text + "\n#ID," + text + "#");
}

using Logging = LogTest;

TEST_F(Logging, ThrowCimFailedLogsTheTextThatItThrows) {
    EXPECT_EQ(CimErrorOf([] { ThrowCimFailed("some 100% text"); }), Failed("some 100% text"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Exception: some 100% text"));
}

TEST_F(Logging, OutputDebugOnlyLogsWhileTheSwitchIsOff) {
    EXPECT_EQ(PrintedBy([] { OutputDebug("%s is %d", "this", 5); }), "");
    EXPECT_THAT(log->All(), ElementsAre("INFO: this is 5"));
}

TEST_F(Logging, OutputDebugAlsoPrintsWhileTheSwitchIsOn) {
    gProviderAgentDebug = true;
    EXPECT_EQ(PrintedBy([] { OutputDebug("%s is %d", "this", 5); }), "this is 5\n");
    gProviderAgentDebug = false;
    EXPECT_THAT(log->All(), ElementsAre("INFO: this is 5"));
}

TEST_F(Logging, OutputDebugCutsAt1023Characters) {
    OutputDebug("%s", std::string(1023, 'a').c_str());
    OutputDebug("b%s", std::string(5000, 'b').c_str());
    EXPECT_THAT(log->All(),
                ElementsAre("INFO: " + std::string(1023, 'a'), "INFO: " + std::string(1023, 'b')));
}

TEST_F(Logging, ErrorsAreNeitherCutNorPrinted) {
    gProviderAgentDebug = true;
    EXPECT_EQ(PrintedBy([] { LogError(std::string(5000, 'e').c_str()); }), "");
    gProviderAgentDebug = false;
    EXPECT_THAT(log->All(), ElementsAre("ERROR: " + std::string(5000, 'e')));
}

TEST_F(Logging, NothingIsLoggedOnceItIsStopped) {
    const auto afterTheStop = [this] {
        OutputDebug("before");
        StopLogging();
        OutputDebug("after");
        LogError("after");
        std::exit(log->All().size() == 1 ? 0 : 1);
    };
    EXPECT_EXIT(afterTheStop(), testing::ExitedWithCode(0), "");
}

TEST(LoggingBeforeInitialize, DropsTheLines) {
    ASSERT_FALSE(gLogger);
    EXPECT_EQ(PrintedBy([] {
                  OutputDebug("dropped");
                  LogError("dropped");
              }),
              "");
}

TEST_F(Logging, TheSwitchAndTheUpdateNamesStartEmpty) {
    EXPECT_FALSE(gProviderAgentDebug);
    EXPECT_EQ(Text(gPatchName), "");
    EXPECT_EQ(Text(gPatchVersion), "");
}

TEST(CommonOddities, CM9_ArgumentsAreNotEscaped) {
    EXPECT_STREQ(locMsg("ID", "T#", "a,b", "#", nullptr), "T#\n#ID,a,b,##");
}
