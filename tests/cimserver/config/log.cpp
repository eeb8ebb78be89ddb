#include "cimserver/Log.hpp"
#include "cimserver/LimitLog.hpp"

#include "OW_String.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <utility>
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

LoggerRef Logger(OpenWBEM::ELogLevel level) {
    return cimserver::Log(level, {}).Logger();
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
    const auto written = Written([] { Logger(OpenWBEM::E_ERROR_LEVEL)->logError("text"); });
    EXPECT_THAT(written, testing::MatchesRegex(
                             "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}"
                             "[+-][0-9]{2}:[0-9]{2} ERROR ow.owcimomd.CIMServer: text\n"));
}

TEST(Log, LevelHoldsForEveryWayIn) {
    const auto lines = [](OpenWBEM::ELogLevel level) {
        return Lines(Written([&] { LogAll(Logger(level)); }));
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
    const auto log = Logger(OpenWBEM::E_INFO_LEVEL);
    EXPECT_TRUE(log->categoryIsEnabled("INFO"));
    EXPECT_FALSE(log->categoryIsEnabled("DEBUG"));
    EXPECT_TRUE(log->componentAndCategoryAreEnabled("any", "FATAL"));
    EXPECT_FALSE(log->componentAndCategoryAreEnabled("any", "CHATTER"));
}

TEST(Log, CloneHasAComponentOfItsOwnAndTheSamePlace) {
    const auto written = Written([] {
        const auto log = Logger(OpenWBEM::E_ERROR_LEVEL);
        const auto clone = log->clone();
        clone->setDefaultComponent("other");
        clone->logError("1");
        log->logError("2");
    });
    EXPECT_THAT(Lines(written), ElementsAre("ERROR other: 1", "ERROR ow.owcimomd.CIMServer: 2"));
}

TEST(Log, MessageStaysOneLine) {
    const auto written = Written([] {
        Logger(OpenWBEM::E_ERROR_LEVEL)
            ->logMessage("c\n", "ERROR", "one\ntwo\r\ttab \x1B[0m \x7F {} %s \xC3\xA9");
    });
    EXPECT_THAT(Lines(written),
                ElementsAre("ERROR c\\n: one\\ntwo\\x0D\\x09tab \\x1B[0m \\x7F {} %s \xC3\xA9"));
}

TEST(Log, LinesOfSeveralThreadsDoNotMix) {
    const auto written = Written([] {
        const auto log = Logger(OpenWBEM::E_ERROR_LEVEL);
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

TEST(Log, ChangedLevelHoldsForLoggersThatAreThereAndForTheirClones) {
    cimserver::Log log(OpenWBEM::E_ERROR_LEVEL, {});
    const auto logger = log.Logger();
    const auto clone = logger->clone();
    const auto written = Written([&] {
        clone->logInfo("before");
        log.SetLevel(OpenWBEM::E_INFO_LEVEL);
        clone->logInfo("1");
        logger->logInfo("2");
        clone->clone()->logInfo("3");
        log.Logger()->logInfo("4");
        log.SetLevel(OpenWBEM::E_ERROR_LEVEL);
        clone->logInfo("after");
    });
    const std::string own = "INFO ow.owcimomd.CIMServer: ";
    EXPECT_THAT(Lines(written), ElementsAre(own + "1", own + "2", own + "3", own + "4"));
}

TEST(Log, LevelMayChangeWhileThreadsLog) {
    cimserver::Log log(OpenWBEM::E_ERROR_LEVEL, {});
    const auto logger = log.Logger();
    const auto lines = Lines(Written([&] {
        std::thread changes([&] {
            for (int i = 0; i < 200; ++i) {
                log.SetLevel(i % 2 == 0 ? OpenWBEM::E_INFO_LEVEL : OpenWBEM::E_ERROR_LEVEL);
            }
        });
        for (int i = 0; i < 200; ++i) {
            logger->clone()->logInfo("i");
            logger->logError("e");
        }
        changes.join();
    }));
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "ERROR ow.owcimomd.CIMServer: e"), 200);
}

class LogFile : public testing::Test {
protected:
    LogFile() {
        std::string name = (std::filesystem::temp_directory_path() / "log.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no directory for the test");
        }
        directory = name;
        file = directory / "cimserver.log";
    }
    ~LogFile() override { std::filesystem::remove_all(directory); }

    static std::vector<std::string> LinesOf(const std::filesystem::path& file) {
        std::ifstream stream(file);
        std::stringstream text;
        text << stream.rdbuf();
        return Lines(text.str());
    }

    std::filesystem::path directory;
    std::filesystem::path file;
};

TEST_F(LogFile, IsCreatedForOwnerAndGroupAndAddedTo) {
    const mode_t before = umask(022);
    EXPECT_EQ(Written([this] {
                  cimserver::Log(OpenWBEM::E_ERROR_LEVEL, file).Logger()->logError("1");
                  cimserver::Log(OpenWBEM::E_ERROR_LEVEL, file).Logger()->logError("2");
              }),
              "");
    umask(before);
    EXPECT_EQ(static_cast<int>(std::filesystem::status(file).permissions()), 0640);
    const std::string own = "ERROR ow.owcimomd.CIMServer: ";
    EXPECT_THAT(LinesOf(file), ElementsAre(own + "1", own + "2"));
}

TEST_F(LogFile, IsOpenedAnewWhenItWasMovedAway) {
    cimserver::Log log(OpenWBEM::E_ERROR_LEVEL, file);
    const auto logger = log.Logger();
    logger->logError("1");
    std::filesystem::rename(file, directory / "old");
    logger->logError("2");
    log.Reopen(file);
    logger->logError("3");
    const std::string own = "ERROR ow.owcimomd.CIMServer: ";
    EXPECT_THAT(LinesOf(directory / "old"), ElementsAre(own + "1", own + "2"));
    EXPECT_THAT(LinesOf(file), ElementsAre(own + "3"));
}

TEST_F(LogFile, OneThatCannotBeOpenedIsNamedAndTheOldOneGoesOn) {
    cimserver::Log log(OpenWBEM::E_ERROR_LEVEL, file);
    try {
        log.Reopen(directory / "absent" / "log");
        FAIL() << "nothing thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "Cannot write the log " + (directory / "absent" / "log").string() +
                                    ": No such file or directory; "
                                    "log.main.location names a file that can be written");
    }
    log.Logger()->logError("1");
    EXPECT_EQ(LinesOf(file).size(), 1U);
}

TEST_F(LogFile, ChangesToStandardErrorAndBack) {
    cimserver::Log log(OpenWBEM::E_ERROR_LEVEL, file);
    const auto written = Written([&] {
        log.Reopen({});
        log.Logger()->logError("1");
        log.Reopen(file);
        log.Logger()->logError("2");
    });
    EXPECT_THAT(Lines(written), ElementsAre("ERROR ow.owcimomd.CIMServer: 1"));
    EXPECT_THAT(LinesOf(file), ElementsAre("ERROR ow.owcimomd.CIMServer: 2"));
}

std::string LineOf(const cimserver::RequestRecord& record) {
    const auto lines =
        Lines(Written([&] { cimserver::Log(OpenWBEM::E_FATAL_ERROR_LEVEL, {}).Request(record); }));
    return lines.size() == 1 ? lines.front() : "not one line";
}

TEST(RequestLine, HasItsFieldsInOrderWhateverTheLevel) {
    EXPECT_EQ(LineOf({"10.0.0.1", "admin", "EnumerateInstances", "X_Class", "", "ok",
                      std::chrono::microseconds(12'345)}),
              "REQUEST 10.0.0.1 admin EnumerateInstances X_Class ok 12.345 ms");
    EXPECT_EQ(LineOf({"::1", "", "InvokeMethod", "X_Class", "Apply", "CIM_ERR_FAILED", {}}),
              "REQUEST ::1 - InvokeMethod X_Class.Apply CIM_ERR_FAILED 0.000 ms");
    EXPECT_EQ(LineOf({"", "", "", "", "", "status-431", {}}),
              "REQUEST - - - - status-431 0.000 ms");
}

TEST(RequestLine, WhatClientsWriteCannotForgeFieldsOrLines) {
    EXPECT_EQ(LineOf({"c", "a b\n", "x\r\x1B[2J y", "C\tD", "m n", "ok", {}}),
              "REQUEST c a\\x20b\\n x\\x0D\\x1B[2J\\x20y C\\x09D.m\\x20n ok 0.000 ms");
    EXPECT_EQ(LineOf({"c", "", std::string(10'000, 'x'), "", "", "ok", {}}),
              "REQUEST c - " + std::string(128, 'x') + "... - ok 0.000 ms");
}

TEST(RequestLine, CanBeSwitchedOffAndOn) {
    cimserver::Log log(OpenWBEM::E_ERROR_LEVEL, {});
    EXPECT_EQ(Written([&] {
                  log.SetRequests(false);
                  log.Request({});
              }),
              "");
    log.SetRequests(true);
    EXPECT_NE(Written([&] { log.Request({}); }), "");
}

class Limits : public testing::Test {
protected:
    std::vector<std::string> LinesAt(const std::vector<std::pair<const char*, int>>& events) {
        return Lines(Written([&] {
            cimserver::LimitLog limits(Logger(OpenWBEM::E_ERROR_LEVEL));
            for (const auto& [item, milliseconds] : events) {
                limits.Reached(item, "10.0.0.1", start + std::chrono::milliseconds(milliseconds));
            }
        }));
    }
    const cimserver::LimitLog::Clock::time_point start = cimserver::LimitLog::Clock::now();
    const std::string own = "ERROR ow.owcimomd.CIMServer: Limit reached: ";
};

TEST_F(Limits, EachHasALineASecondAndTheOthersAreCounted) {
    EXPECT_THAT(LinesAt({{"a", 0}, {"a", 1}, {"b", 2}, {"a", 999}, {"a", 1000}, {"a", 1001}}),
                ElementsAre(own + "a, client 10.0.0.1", own + "b, client 10.0.0.1",
                            own + "a, client 10.0.0.1 (2 more since the last such line)"));
}

TEST_F(Limits, AfterAPauseNothingIsLeftOut) {
    EXPECT_THAT(LinesAt({{"a", 0}, {"a", 5000}}),
                ElementsAre(own + "a, client 10.0.0.1", own + "a, client 10.0.0.1"));
}

TEST(Log, ReadinessLineIsBare) {
    EXPECT_EQ(Written([] { cimserver::WriteReadinessLine("Listening on x"); }), "Listening on x\n");
}

} // namespace
