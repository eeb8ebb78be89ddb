#include "OW_LogMessage.hpp"
#include "OW_Logger.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace OpenWBEM {
namespace {

typedef std::vector<LogMessage> Lines;

// Writes to a list that its clones share.
class ListLogger : public Logger {
public:
    explicit ListLogger(ELogLevel level, const String& component = STR_DEFAULT_COMPONENT)
        : Logger(component, level), lines(std::make_shared<Lines>()) {}

    std::shared_ptr<Lines> lines;

protected:
    void doProcessLogMessage(const LogMessage& message) const override {
        lines->push_back(message);
    }
    LoggerRef doClone() const override { return LoggerRef(new ListLogger(*this)); }
};

class RefusingLogger : public ListLogger {
public:
    RefusingLogger() : ListLogger(E_ALL_LEVEL) {}

protected:
    bool doCategoryIsEnabled(const String& category) const override { return category == "A"; }
    bool doComponentAndCategoryAreEnabled(const String& component,
                                          const String& category) const override {
        return component == "C" && category == "A";
    }
};

struct Expected {
    const char* component;
    const char* category;
    const char* message;
    const char* filename;
    int fileline;
    const char* methodname;
};

void expectLine(const Lines& lines, const Expected& expected) {
    ASSERT_EQ(lines.size(), 1u);
    const LogMessage& line = lines.front();
    EXPECT_EQ(line.component, expected.component);
    EXPECT_EQ(line.category, expected.category);
    EXPECT_EQ(line.message, expected.message);
    EXPECT_STREQ(line.filename, expected.filename);
    EXPECT_EQ(line.fileline, expected.fileline);
    EXPECT_STREQ(line.methodname, expected.methodname);
}

} // namespace

TEST(LogLevel, RisesFromNothingToEverything) {
    EXPECT_EQ(E_NONE_LEVEL, 0);
    EXPECT_EQ(E_FATAL_ERROR_LEVEL, 1);
    EXPECT_EQ(E_ERROR_LEVEL, 2);
    EXPECT_EQ(E_INFO_LEVEL, 3);
    EXPECT_EQ(E_DEBUG_LEVEL, 4);
    EXPECT_EQ(E_ALL_LEVEL, 5);
}

TEST(Logger, NamesItsCategories) {
    EXPECT_EQ(Logger::STR_NONE_CATEGORY, "NONE");
    EXPECT_EQ(Logger::STR_FATAL_CATEGORY, "FATAL");
    EXPECT_EQ(Logger::STR_ERROR_CATEGORY, "ERROR");
    EXPECT_EQ(Logger::STR_INFO_CATEGORY, "INFO");
    EXPECT_EQ(Logger::STR_DEBUG_CATEGORY, "DEBUG");
    EXPECT_EQ(Logger::STR_ALL_CATEGORY, "ALL");
    EXPECT_EQ(Logger::STR_DEFAULT_COMPONENT, "none");
}

TEST(Logger, DeliversAtOrAboveItsLevelOnly) {
    const struct {
        ELogLevel level;
        std::vector<std::string> delivered;
    } rows[] = {
        {E_NONE_LEVEL, {}},
        {E_FATAL_ERROR_LEVEL, {"FATAL"}},
        {E_ERROR_LEVEL, {"FATAL", "ERROR"}},
        {E_INFO_LEVEL, {"FATAL", "ERROR", "INFO"}},
        {E_DEBUG_LEVEL, {"FATAL", "ERROR", "INFO", "DEBUG"}},
        {E_ALL_LEVEL, {"FATAL", "ERROR", "INFO", "DEBUG"}},
    };
    for (const auto& row : rows) {
        const ListLogger logger(row.level);
        logger.logFatalError("x");
        logger.logError("x");
        logger.logInfo("x");
        logger.logDebug("x");
        std::vector<std::string> delivered;
        for (const LogMessage& line : *logger.lines) {
            delivered.push_back(line.category.c_str());
        }
        EXPECT_EQ(delivered, row.delivered) << row.level;
    }
}

TEST(Logger, FillsInComponentAndLeavesThePlaceOpen) {
    const ListLogger logger(E_ALL_LEVEL, "part");
    logger.logInfo("text");
    expectLine(*logger.lines, {"part", "INFO", "text", nullptr, -1, nullptr});
}

TEST(Logger, PassesThePlaceOn) {
    typedef void (Logger::*Log)(const String&, const char*, int, const char*) const;
    const struct {
        Log log;
        const char* category;
    } rows[] = {
        {&Logger::logFatalError, "FATAL"},
        {&Logger::logError, "ERROR"},
        {&Logger::logInfo, "INFO"},
        {&Logger::logDebug, "DEBUG"},
    };
    for (const auto& row : rows) {
        const ListLogger logger(E_ALL_LEVEL, "part");
        (logger.*row.log)("text", "file.cpp", 12, "method");
        expectLine(*logger.lines, {"part", row.category, "text", "file.cpp", 12, "method"});
    }
}

TEST(Logger, DeliversEmptyMessages) {
    const ListLogger logger(E_INFO_LEVEL);
    logger.logInfo("");
    expectLine(*logger.lines, {"none", "INFO", "", nullptr, -1, nullptr});
}

TEST(Logger, LogMessageIsNotFilteredByLevel) {
    const struct {
        std::function<void(const Logger&)> log;
        Expected expected;
    } rows[] = {
        {[](const Logger& l) { l.logMessage("c", "DEBUG", "m"); },
         {"c", "DEBUG", "m", nullptr, -1, nullptr}},
        {[](const Logger& l) { l.logMessage("c", "x", "m", "f", 3, "g"); },
         {"c", "x", "m", "f", 3, "g"}},
        {[](const Logger& l) { l.logMessage("DEBUG", "m"); },
         {"own", "DEBUG", "m", nullptr, -1, nullptr}},
        {[](const Logger& l) { l.logMessage("x", "m", "f", 3, "g"); },
         {"own", "x", "m", "f", 3, "g"}},
        {[](const Logger& l) { l.logMessage(LogMessage("c", "x", "m", "f", 3, "g")); },
         {"c", "x", "m", "f", 3, "g"}},
    };
    int number = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(number++);
        const ListLogger logger(E_NONE_LEVEL, "own");
        row.log(logger);
        expectLine(*logger.lines, row.expected);
    }
}

TEST(Logger, ComponentCanBeChanged) {
    ListLogger logger(E_ALL_LEVEL);
    EXPECT_EQ(logger.getDefaultComponent(), "none");
    logger.setDefaultComponent("other");
    EXPECT_EQ(logger.getDefaultComponent(), "other");
    logger.logDebug("text");
    expectLine(*logger.lines, {"other", "DEBUG", "text", nullptr, -1, nullptr});
}

TEST(Logger, LevelIsSetByNumberOrName) {
    ListLogger logger(E_NONE_LEVEL);
    logger.setLogLevel(E_DEBUG_LEVEL);
    EXPECT_EQ(logger.getLogLevel(), E_DEBUG_LEVEL);
    const struct {
        const char* name;
        ELogLevel level;
    } rows[] = {
        {"INFO", E_INFO_LEVEL},
        {"info", E_INFO_LEVEL},
        {"DEBUG", E_DEBUG_LEVEL},
        {"Debug", E_DEBUG_LEVEL},
        {"ERROR", E_ERROR_LEVEL},
        {"eRRoR", E_ERROR_LEVEL},
        {"ALL", E_ALL_LEVEL},
        {"all", E_ALL_LEVEL},
        {"NONE", E_NONE_LEVEL},
        {"none", E_NONE_LEVEL},
        {"FATAL", E_FATAL_ERROR_LEVEL},
        {"", E_FATAL_ERROR_LEVEL},
        {"DEBUG ", E_FATAL_ERROR_LEVEL},
        {"warning", E_FATAL_ERROR_LEVEL},
    };
    for (const auto& row : rows) {
        logger.setLogLevel(String(row.name));
        EXPECT_EQ(logger.getLogLevel(), row.level) << row.name;
    }
}

TEST(Logger, EverythingIsEnabledUnlessTheLogSaysOtherwise) {
    const ListLogger open(E_NONE_LEVEL);
    EXPECT_TRUE(open.categoryIsEnabled("any"));
    EXPECT_TRUE(open.componentAndCategoryAreEnabled("any", "any"));
    const RefusingLogger refusing;
    EXPECT_TRUE(refusing.categoryIsEnabled("A"));
    EXPECT_FALSE(refusing.categoryIsEnabled("B"));
    EXPECT_TRUE(refusing.componentAndCategoryAreEnabled("C", "A"));
    EXPECT_FALSE(refusing.componentAndCategoryAreEnabled("C", "B"));
    EXPECT_FALSE(refusing.componentAndCategoryAreEnabled("D", "A"));
}

TEST(Logger, CloneHasALevelAndComponentOfItsOwn) {
    ListLogger* const original = new ListLogger(E_INFO_LEVEL, "one");
    const LoggerRef reference(original);
    const LoggerRef clone = reference->clone();
    EXPECT_NE(clone.getPtr(), reference.getPtr());
    EXPECT_EQ(clone->getLogLevel(), E_INFO_LEVEL);
    EXPECT_EQ(clone->getDefaultComponent(), "one");
    clone->setLogLevel(E_DEBUG_LEVEL);
    clone->setDefaultComponent("two");
    EXPECT_EQ(reference->getLogLevel(), E_INFO_LEVEL);
    EXPECT_EQ(reference->getDefaultComponent(), "one");
    clone->logDebug("text");
    expectLine(*original->lines, {"two", "DEBUG", "text", nullptr, -1, nullptr});
}

TEST(LoggerRef, IsNullByDefault) {
    EXPECT_TRUE(!LoggerRef());
    EXPECT_EQ(LoggerRef().getPtr(), nullptr);
}

TEST(LogMacros, AddTheirPlace) {
    const int firstLine = __LINE__;
    ListLogger* const log = new ListLogger(E_ALL_LEVEL, "part");
    const LoggerRef logger(log);
    OW_LOG_FATAL_ERROR(logger, "a");
    OW_LOG_ERROR(logger, "b");
    OW_LOG_INFO(logger, "c");
    OW_LOG_DEBUG(logger, "d");
    OW_LOG(logger, "own", "e");
    const Expected expected[] = {
        {"part", "FATAL", "a", __FILE__, firstLine + 3, __func__},
        {"part", "ERROR", "b", __FILE__, firstLine + 4, __func__},
        {"part", "INFO", "c", __FILE__, firstLine + 5, __func__},
        {"part", "DEBUG", "d", __FILE__, firstLine + 6, __func__},
        {"part", "own", "e", __FILE__, firstLine + 7, __func__},
    };
    ASSERT_EQ(log->lines->size(), 5u);
    for (std::size_t i = 0; i < 5; ++i) {
        expectLine(Lines(1, (*log->lines)[i]), expected[i]);
    }
}

TEST(LogMacros, EvaluateTheMessageOnlyWhenItIsWanted) {
    int made = 0;
    const auto text = [&made] {
        ++made;
        return String("text");
    };
    const struct {
        ELogLevel level;
        int made;
    } rows[] = {
        {E_NONE_LEVEL, 0}, {E_FATAL_ERROR_LEVEL, 1}, {E_ERROR_LEVEL, 2},
        {E_INFO_LEVEL, 3}, {E_DEBUG_LEVEL, 4},       {E_ALL_LEVEL, 4},
    };
    for (const auto& row : rows) {
        made = 0;
        const LoggerRef logger(new ListLogger(row.level));
        OW_LOG_FATAL_ERROR(logger, text());
        OW_LOG_ERROR(logger, text());
        OW_LOG_INFO(logger, text());
        OW_LOG_DEBUG(logger, text());
        EXPECT_EQ(made, row.made) << row.level;
    }
}

TEST(LogMacros, OwnCategoryPassesAtEveryLevel) {
    ListLogger* const log = new ListLogger(E_NONE_LEVEL);
    const LoggerRef logger(log);
    OW_LOG(logger, "own", "text");
    EXPECT_EQ(log->lines->size(), 1u);
}

TEST(LogMacros, AreSingleStatements) {
    ListLogger* const log = new ListLogger(E_ALL_LEVEL);
    const LoggerRef logger(log);
    // clang-format off: braces would hide what is tested
    if (log->lines->empty())
        OW_LOG_INFO(logger, "first");
    else
        OW_LOG_INFO(logger, "second");
    // clang-format on
    ASSERT_EQ(log->lines->size(), 1u);
    EXPECT_EQ(log->lines->front().message, "first");
}

} // namespace OpenWBEM
