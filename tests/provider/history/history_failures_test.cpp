#include "HistoryTest.hpp"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <iterator>

#include <sys/resource.h>
#include <sys/wait.h>

using namespace OpenWBEM;
using test_support::CimError;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::NotFound;
using test_support::ToolAnswer;
using testing::ElementsAre;

namespace {

std::size_t OpenDescriptors() {
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

bool NoChildIsLeft() {
    return waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
}

// No program can be started while this lives: nothing can be opened.
class NoMoreDescriptors {
public:
    NoMoreDescriptors() {
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit none = {0, before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoMoreDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }
    NoMoreDescriptors(const NoMoreDescriptors&) = delete;
    NoMoreDescriptors& operator=(const NoMoreDescriptors&) = delete;

private:
    rlimit before_ = {};
};

} // namespace

// Every one of these leaves nothing open, nothing running, and a provider that answers the next
// call.
class HistoryFailures : public HistoryTest {
protected:
    HistoryFailures() {
        tool.Plays("--errors", ToolAnswer().Output("A description.\n"));
        Lists(Line("bash", "5"));
        descriptors_ = OpenDescriptors();
    }

    ~HistoryFailures() override {
        EXPECT_EQ(OpenDescriptors(), descriptors_);
        EXPECT_TRUE(NoChildIsLeft());
        tool.RestoreTool();
        Prints(Line("vim", "9"));
        EXPECT_EQ(calls.EnumInstances(HISTORY).size(), 1U);
    }

    CimError Enumerate() {
        return CimErrorOf([&] { calls.EnumInstances(HISTORY); });
    }

    static std::string MissingField(const std::string& field) {
        return "Failed to parse " + field + " field from /qv/bin/patchkeeper --hist\n" +
               "#SWU_Error_ParsingFailed," + field + ",/qv/bin/patchkeeper --hist#";
    }

private:
    std::size_t descriptors_ = 0;
};

TEST_F(HistoryFailures, AFailingToolIsDescribedAndLeavesNothing) {
    tool.Plays("--hist", ToolAnswer().Output(Line("bash", "5")).ExitCode(23));
    const std::string text = "A description.\n\n#SWU_Patchkeeper_NoPatchesFound#";
    EXPECT_EQ(Enumerate(), Failed(text));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --hist",
                                        "INFO: Executing: /qv/bin/patchkeeper --errors 23",
                                        "INFO: Exception: " + text));
    EXPECT_TRUE(gHistoryList.empty());
}

TEST_F(HistoryFailures, AMissingTool) {
    tool.TakeToolAway();
    EXPECT_EQ(Enumerate(), Failed("SWU_Patchkeeper_Unknown"));
    EXPECT_TRUE(log->Contains("INFO: Executing: /qv/bin/patchkeeper --errors 127"));
    EXPECT_TRUE(gHistoryList.empty());
}

TEST_F(HistoryFailures, ExitCode1IsAFailureLikeAnyOther) {
    tool.Plays("--hist", ToolAnswer().Output(Line("bash", "5")).ExitCode(1));
    EXPECT_EQ(Enumerate(), Failed("A description.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_TRUE(gHistoryList.empty());
}

TEST_F(HistoryFailures, AToolThatCannotBeStartedIsAFailure) {
    // The undefined behaviour sanitizer opens a pipe when it sees a type for the first time.
    tool.TakeToolAway();
    CimError error = Enumerate();
    tool.RestoreTool();
    Lists(Line("bash", "5"));
    {
        const NoMoreDescriptors none;
        error = Enumerate();
    }
    EXPECT_EQ(error, Failed("SWU_Patchkeeper_Unknown"));
    EXPECT_TRUE(log->Contains("INFO: Executing: /qv/bin/patchkeeper --errors -1"));
    EXPECT_TRUE(gHistoryList.empty());
}

TEST_F(HistoryFailures, ADescriptionThatCannotBeAskedForIsAFailure) {
    HistoryUpdate record;
    record.InstanceID = "0";
    record.Name = std::string(200'000, 'n').c_str(); // more than a command line may hold
    record.Date = "Jan 2 2025 03:04";
    PublishList(gHistoryList, Array<HistoryUpdate>(1, record));
    const StringArray wanted(1, "UpdateDescription");
    EXPECT_EQ(CimErrorOf([&] { Get("0", &wanted); }),
              Failed("A description.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_THAT(tool.CommandLines(), ElementsAre("/qv/bin/patchkeeper --errors 1"));
}

TEST_F(HistoryFailures, EachMissingFieldIsNamed) {
    Prints("\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Name")));
    Prints("n\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Version")));
    Prints("n\tv\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Description")));
    Prints("n\tv\td\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Category")));
    Prints("n\tv\td\tc\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Date")));
    Prints("n\tv\td\tc\tw\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Removable")));
}

TEST_F(HistoryFailures, AnEmptyFieldShiftsTheOthers) {
    Prints("n\tv\t\tc\tThu Jan  2 03:04:05 UTC 2025\tRemovable\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Removable")));
}

TEST_F(HistoryFailures, AShortLineKeepsTheRecordsBeforeIt) {
    Prints(Line("a", "1") + Line("b", "2") + "c\t3\n" + Line("d", "4"));
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstanceNames(HISTORY); }),
              Failed(MissingField("Description")));
    EXPECT_THAT(
        log->All(),
        ElementsAre("INFO: Executing: /qv/bin/patchkeeper --hist",
                    "ERROR: Failed to parse Description field from /qv/bin/patchkeeper --hist",
                    "INFO: Exception: " + MissingField("Description")));
    EXPECT_EQ(Value(Get("1"), "Name"), "b");
    EXPECT_EQ(CimErrorOf([&] { Get("2"); }), NotFound());
}

TEST_F(HistoryFailures, FieldsBeyondTheSixthAreIgnored) {
    Prints("n\tv\td\tc\tThu Jan  2 03:04:05 UTC 2025\tRemovable\tmore\tand more\n");
    EXPECT_EQ(Value(calls.EnumInstances(HISTORY)[0], "Removeable"), "true");
}

TEST_F(HistoryFailures, TheLastLineNeedsNoNewline) {
    Prints("n\tv\td\tc\tThu Jan  2 03:04:05 UTC 2025\tRemovable");
    EXPECT_EQ(Value(calls.EnumInstances(HISTORY)[0], "Removeable"), "true");
}

TEST_F(HistoryFailures, ACarriageReturnIsPartOfTheLastField) {
    Prints("n\tv\td\tc\tThu Jan  2 03:04:05 UTC 2025\tRemovable\r\n");
    EXPECT_EQ(Value(calls.EnumInstances(HISTORY)[0], "Removeable"), "false");
}

TEST_F(HistoryFailures, ALineOf1023BytesIsReadWhole) {
    const std::string rest = Line("", "5");
    Prints(std::string(1023 - rest.size(), 'n') + rest + Line("next", "1"));
    const CIMInstanceArray instances = calls.EnumInstances(HISTORY);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(Value(instances[0], "Name"), std::string(1023 - rest.size(), 'n'));
    EXPECT_EQ(Value(instances[1], "InstanceID"), "1");
}

TEST_F(HistoryFailures, ALineOf1024BytesLosesItsNewlineToALineOfItsOwn) {
    const std::string rest = Line("", "5");
    Prints(std::string(1024 - rest.size(), 'n') + rest);
    EXPECT_EQ(Enumerate(), Failed(MissingField("Name")));
    EXPECT_EQ(gHistoryList.size(), 1U);
}

TEST_F(HistoryFailures, AZeroByteEndsItsLine) {
    Prints(std::string("ba\0sh\t5\td\tc\tw\tr\n", 16));
    EXPECT_EQ(Enumerate(), Failed(MissingField("Version")));
}

TEST_F(HistoryFailures, AnyBytesPassAsText) {
    Prints(Line("\xff\xc3\x01", "5"));
    EXPECT_EQ(Value(calls.EnumInstances(HISTORY)[0], "Name"), "\xff\xc3\x01");
}

TEST_F(HistoryFailures, DuplicateRecordsStandSideBySide) {
    Prints(Line("n", "1") + Line("n", "1"));
    const CIMInstanceArray instances = calls.EnumInstances(HISTORY);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(Value(instances[0], "InstanceID"), "0");
    EXPECT_EQ(Value(instances[1], "InstanceID"), "1");
}

TEST_F(HistoryFailures, AnUnreadableDateIsTheLibrarysException) {
    Prints("n\tv\td\tc\tyesterday\tRemovable\n");
    EXPECT_THROW(calls.EnumInstances(HISTORY), DateTimeException);
    EXPECT_EQ(calls.EnumInstanceNames(HISTORY).size(), 1U);
    EXPECT_THROW(Get("0"), DateTimeException);
}

TEST_F(HistoryFailures, AHandlerThatThrowsEndsTheEnumeration) {
    class Thrower : public CIMInstanceResultHandlerIFC {
        void doHandle(const CIMInstance&) override { OW_THROWCIM(CIMException::ACCESS_DENIED); }
    } thrower;
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(HISTORY, thrower); }).number, 2);
}

// The positions are 16-bit numbers.
class HistoryLimit : public HistoryFailures {
protected:
    void PrintsLines(std::size_t count, const std::string& last = "") {
        std::string output;
        for (std::size_t i = 0; i < count; ++i) {
            output += "n\tv\td\tc\tw\tr\n";
        }
        Prints(output + last);
    }

    CimError EnumerateNames() {
        return CimErrorOf([&] { calls.EnumInstanceNames(HISTORY); });
    }

    const CimError tooMany =
        Failed("Too many records: more than 65535 lines from /qv/bin/patchkeeper --hist");
};

TEST_F(HistoryLimit, AsManyRecordsAsCanBeNumbered) {
    PrintsLines(65535);
    EXPECT_EQ(calls.EnumInstanceNames(HISTORY).size(), 65535U);
}

TEST_F(HistoryLimit, OneRecordMoreIsAFailure) {
    PrintsLines(65536);
    EXPECT_EQ(EnumerateNames(), tooMany);
    EXPECT_EQ(gHistoryList.size(), 65535U);
}

TEST_F(HistoryLimit, SeventyThousandLinesKeepThoseThatCanBeNumbered) {
    PrintsLines(70000);
    EXPECT_EQ(EnumerateNames(), tooMany);
    EXPECT_EQ(gHistoryList.size(), 65535U);
    EXPECT_EQ(ListSnapshot(gHistoryList)[65534].InstanceID, "65534");
    EXPECT_TRUE(log->Contains("INFO: Exception: Too many records: more than 65535 lines from "
                              "/qv/bin/patchkeeper --hist"));
}
