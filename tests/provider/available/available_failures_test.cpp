#include "AvailableTest.hpp"

#include <csignal>

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::NotFound;
using test_support::ToolAnswer;
using testing::ElementsAre;

// Whatever the tool prints, the next enumeration works.
class AvailableFailures : public AvailableTest {
protected:
    AvailableFailures() {
        Lists(Line("former"));
        Updates();
        log->Forget();
    }

    ~AvailableFailures() override {
        tool.RestoreTool();
        Lists(Line("later"));
        EXPECT_EQ(Updates().size(), 1U);
        EXPECT_EQ(ValueOf(GetUpdate("0"), "Name"), "later");
    }

    static std::string MissingField(const std::string& field) {
        return FailureToParse(field, "/qv/bin/patchkeeper --cache ");
    }

    // A line of so many bytes, its newline included.
    static std::string LineOf(std::size_t size) {
        const std::string rest = "\tV\tDesc\t12\treboot\tApplied\n";
        return std::string(size - rest.size(), 'n') + rest;
    }
};

TEST_F(AvailableFailures, AFailingToolIsDescribedAndLeavesNothing) {
    tool.Plays("--cache", ToolAnswer().Output(Line("N")).ExitCode(33));
    const std::string text = "A description.\n\n#SWU_Patchkeeper_NoLocalPatchesFound#";
    EXPECT_EQ(UpdatesError(), Failed(text));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --cache ",
                                        "INFO: Executing: /qv/bin/patchkeeper --errors 33",
                                        "INFO: Exception: " + text));
    EXPECT_EQ(gAvaliableList.size(), 0U);
}

TEST_F(AvailableFailures, AMissingToolIsAFailureWithoutADescription) {
    tool.TakeToolAway();
    EXPECT_EQ(UpdatesError(), Failed("SWU_Patchkeeper_Unknown"));
    EXPECT_EQ(gAvaliableList.size(), 0U);
}

TEST_F(AvailableFailures, AKilledToolFailsWith128AndItsSignal) {
    tool.Plays("--cache", ToolAnswer().Output(Line("N")).DiesBySignal(SIGKILL));
    EXPECT_EQ(UpdatesError(), Failed("A description.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_TRUE(log->Contains("INFO: Executing: /qv/bin/patchkeeper --errors 137"));
    EXPECT_EQ(gAvaliableList.size(), 0U);
}

TEST_F(AvailableFailures, EachMissingFieldIsNamed) {
    const std::vector<std::pair<const char*, const char*>> table = {
        {"\n", "Name"},
        {"N\n", "Version"},
        {"N\tV\n", "Short Description"},
        {"N\tV\tDesc\n", "Size"},
        {"N\tV\tDesc\t12\n", "Reboot Required"},
        {"N\tV\tDesc\t12\treboot\n", "Category"},
    };
    for (const auto& [line, field] : table) {
        Lists(line);
        log->Forget();
        EXPECT_EQ(UpdatesError(), Failed(MissingField(field)));
        EXPECT_TRUE(log->Contains(std::string("ERROR: Failed to parse ") + field +
                                  " field from /qv/bin/patchkeeper --cache "));
    }
}

TEST_F(AvailableFailures, AnEmptyFieldShiftsTheOthers) {
    Lists("N\tV\t\t12\treboot\tApplied\n");
    EXPECT_EQ(UpdatesError(), Failed(MissingField("Category")));
    Lists("N\tV\t\t12\treboot\tApplied\tAvailable\n");
    const CIMInstance instance = Updates()[0];
    EXPECT_EQ(ValueOf(instance, "ShortDescription"), "12");
    EXPECT_EQ(ValueOf(instance, "Status"), "3");
}

TEST_F(AvailableFailures, AShortLineKeepsTheRecordsBeforeIt) {
    Lists(Line("a") + Line("b") + "c\t3\n" + Line("d"));
    EXPECT_EQ(UpdatesError(), Failed(MissingField("Short Description")));
    EXPECT_EQ(gAvaliableList.size(), 2U);
    EXPECT_EQ(ValueOf(GetUpdate("1"), "Name"), "b");
    EXPECT_EQ(CimErrorOf([&] { GetUpdate("2"); }), NotFound());
}

TEST_F(AvailableFailures, FieldsBeyondTheSixthAreIgnored) {
    Lists("N\tV\tDesc\t12\treboot\tApplied\tmore\tand more\n");
    EXPECT_EQ(ValueOf(Updates()[0], "Status"), "1");
}

TEST_F(AvailableFailures, TheLastLineNeedsNoNewline) {
    Lists(Line("a") + "N\tV\tDesc\t12\treboot\tApplied");
    EXPECT_EQ(ValueOf(Updates()[1], "Status"), "1");
}

TEST_F(AvailableFailures, ALineOf1023BytesIsRead) {
    Lists(LineOf(1023));
    const CIMInstanceArray instances = Updates();
    ASSERT_EQ(instances.size(), 1U);
    EXPECT_EQ(ValueOf(instances[0], "Status"), "1");
}

TEST_F(AvailableFailures, ALineOf1024BytesIsReadAndItsNewlineIsAShortLine) {
    Lists(LineOf(1024));
    EXPECT_EQ(UpdatesError(), Failed(MissingField("Name")));
    EXPECT_EQ(gAvaliableList.size(), 1U);
    EXPECT_EQ(ValueOf(GetUpdate("0"), "Status"), "1");
}

TEST_F(AvailableFailures, ALongerLineFallsApart) {
    Lists(LineOf(1030));
    EXPECT_EQ(UpdatesError(), Failed(MissingField("Version")));
    EXPECT_EQ(gAvaliableList.size(), 1U);
    EXPECT_EQ(ValueOf(GetUpdate("0"), "Status"), "154");
}

TEST_F(AvailableFailures, ACarriageReturnBelongsToTheLastField) {
    Lists("N\tV\tDesc\t12\treboot\tApplied\r\n");
    EXPECT_EQ(ValueOf(Updates()[0], "Status"), "154");
}

TEST_F(AvailableFailures, AZeroByteEndsItsLine) {
    Lists(std::string("N\tV\0\tDesc\t12\treboot\tApplied\n", 29));
    EXPECT_EQ(UpdatesError(), Failed(MissingField("Short Description")));
}

TEST_F(AvailableFailures, AnyBytesPassAsText) {
    Lists("\xff\xc3\x01\tV\t\xc3\xa4\t12\tno\tApplied\n");
    const CIMInstance instance = Updates()[0];
    EXPECT_EQ(ValueOf(instance, "Name"), "\xff\xc3\x01");
    EXPECT_EQ(ValueOf(instance, "ShortDescription"), "\xc3\xa4");
}

TEST_F(AvailableFailures, EqualLinesAreRecordsOfTheirOwn) {
    Lists(Line("N") + Line("N"));
    EXPECT_EQ(Updates().size(), 2U);
    EXPECT_EQ(ValueOf(GetUpdate("1"), "InstanceID"), "1");
}

TEST_F(AvailableFailures, ALineOfErrorOutputFailsTheEnumeration) {
    tool.Plays("--cache", ToolAnswer().Output(Line("N")).ErrorText("cannot read cache\n"));
    EXPECT_EQ(UpdatesError(), Failed(MissingField("Version")));
}

TEST_F(AvailableFailures, AFullSixteenBitCounterIsRead) {
    std::string output;
    for (int i = 0; i < 65'535; ++i) {
        output += Line("u" + std::to_string(i));
    }
    Lists(output);
    EXPECT_EQ(Updates().size(), 65'535U);
    EXPECT_EQ(ValueOf(GetUpdate("65534"), "Name"), "u65534");
}

TEST_F(AvailableFailures, MoreLinesFailAndTheFirst65535Stay) {
    const std::string text =
        "Too many records: more than 65535 lines from /qv/bin/patchkeeper --cache ";
    std::string output;
    for (int i = 0; i < 65'536; ++i) {
        output += Line("u" + std::to_string(i));
    }
    Lists(output);
    EXPECT_EQ(UpdatesError(), Failed(text));
    EXPECT_EQ(gAvaliableList.size(), 65'535U);
    for (int i = 65'536; i < 70'000; ++i) {
        output += Line("u" + std::to_string(i));
    }
    Lists(output);
    log->Forget();
    EXPECT_EQ(UpdatesError(), Failed(text));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --cache ",
                                        "INFO: Exception: " + text));
    EXPECT_EQ(gAvaliableList.size(), 65'535U);
    EXPECT_EQ(ValueOf(GetUpdate("65534"), "Name"), "u65534");
    EXPECT_EQ(CimErrorOf([&] { GetUpdate("65535"); }), NotFound());
}
