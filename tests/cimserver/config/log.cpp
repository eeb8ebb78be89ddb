#include "cimserver/Log.hpp"

#include "OW_String.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using OpenWBEM::LoggerRef;
using testing::ElementsAre;
using testing::IsEmpty;

std::string Written(const std::function<void()>& action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

/// The lines without their times.
std::vector<std::string> Lines(const std::string& written) {
    std::vector<std::string> lines;
    std::istringstream stream(written);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line.substr(line.find(' ') + 1));
    }
    return lines;
}

void LogAll(const LoggerRef& log) {
    log->logFatalError("f");
    log->logError("e");
    log->logInfo("i");
    log->logDebug("d");
    log->logMessage("c", "ERROR", "past the level test");
    log->logMessage("c", "INFO", "past the level test");
    log->logMessage("c", "CHATTER", "past the level test");
}

TEST(Log, LineHasTimeCategoryComponentAndMessage) {
    const auto written =
        Written([] { cimserver::MakeLogger(OpenWBEM::E_ERROR_LEVEL)->logError("text"); });
    EXPECT_THAT(written, testing::MatchesRegex(
                             "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}"
                             "[+-][0-9]{2}:[0-9]{2} ERROR ow.owcimomd.CIMServer: text\n"));
}

TEST(Log, LevelHoldsForEveryWayIn) {
    const auto lines = [](OpenWBEM::ELogLevel level) {
        return Lines(Written([&] { LogAll(cimserver::MakeLogger(level)); }));
    };
    const std::string own = " ow.owcimomd.CIMServer: ";
    EXPECT_THAT(lines(OpenWBEM::E_FATAL_ERROR_LEVEL), ElementsAre("FATAL" + own + "f"));
    EXPECT_THAT(
        lines(OpenWBEM::E_ERROR_LEVEL),
        ElementsAre("FATAL" + own + "f", "ERROR" + own + "e", "ERROR c: past the level test"));
    EXPECT_THAT(lines(OpenWBEM::E_INFO_LEVEL),
                ElementsAre("FATAL" + own + "f", "ERROR" + own + "e", "INFO" + own + "i",
                            "ERROR c: past the level test", "INFO c: past the level test"));
    EXPECT_THAT(lines(OpenWBEM::E_DEBUG_LEVEL),
                ElementsAre("FATAL" + own + "f", "ERROR" + own + "e", "INFO" + own + "i",
                            "DEBUG" + own + "d", "ERROR c: past the level test",
                            "INFO c: past the level test", "CHATTER c: past the level test"));
}

TEST(Log, CategoriesAreEnabledUpToTheLevel) {
    const auto log = cimserver::MakeLogger(OpenWBEM::E_INFO_LEVEL);
    EXPECT_TRUE(log->categoryIsEnabled("INFO"));
    EXPECT_FALSE(log->categoryIsEnabled("DEBUG"));
    EXPECT_TRUE(log->componentAndCategoryAreEnabled("any", "FATAL"));
    EXPECT_FALSE(log->componentAndCategoryAreEnabled("any", "CHATTER"));
}

TEST(Log, CloneHasAComponentOfItsOwnAndTheSamePlace) {
    const auto written = Written([] {
        const auto log = cimserver::MakeLogger(OpenWBEM::E_ERROR_LEVEL);
        const auto clone = log->clone();
        clone->setDefaultComponent("other");
        clone->logError("1");
        log->logError("2");
    });
    EXPECT_THAT(Lines(written), ElementsAre("ERROR other: 1", "ERROR ow.owcimomd.CIMServer: 2"));
}

TEST(Log, MessageStaysOneLine) {
    const auto written = Written([] {
        cimserver::MakeLogger(OpenWBEM::E_ERROR_LEVEL)
            ->logMessage("c\n", "ERROR", "one\ntwo\r\ttab \x1B[0m \x7F {} %s \xC3\xA9");
    });
    EXPECT_THAT(Lines(written),
                ElementsAre("ERROR c\\n: one\\ntwo\\x0D\\x09tab \\x1B[0m \\x7F {} %s \xC3\xA9"));
}

TEST(Log, LinesOfSeveralThreadsDoNotMix) {
    const auto written = Written([] {
        const auto log = cimserver::MakeLogger(OpenWBEM::E_ERROR_LEVEL);
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&log] {
                for (int n = 0; n < 100; ++n) {
                    log->logError(OpenWBEM::String(std::string(200, 'x').c_str()));
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
    });
    const auto lines = Lines(written);
    EXPECT_EQ(lines.size(), 400U);
    EXPECT_THAT(lines, testing::Each("ERROR ow.owcimomd.CIMServer: " + std::string(200, 'x')));
}

TEST(Log, ReadinessLineIsBare) {
    EXPECT_EQ(Written([] { cimserver::WriteReadinessLine("Listening on x"); }), "Listening on x\n");
}

} // namespace
