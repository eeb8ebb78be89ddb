#include "ScheduledTest.hpp"

#include <csignal>

using namespace OpenWBEM;
using test_support::CimError;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::NotFound;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

class ScheduledList : public ScheduledTest {
protected:
    CimError Fill() {
        return CimErrorOf([&] { EXPECT_TRUE(list.getObjectList()); });
    }

    ScheduledUpdate_ObjectList list;
};

TEST_F(ScheduledList, ANewListIsEmptyAndBeforeTheFirstRecord) {
    EXPECT_THROW(list.getName(), OutOfBoundsException);
    EXPECT_FALSE(list.hasObject());
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(ScheduledList, TheToolIsAskedWithABlankBehindTheOption) {
    Prints(Line("vim", "9.0"));
    EXPECT_EQ(Fill().number, 0);
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --sched  2>&1"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --sched "));
}

TEST_F(ScheduledList, NineFieldsFillTheColumns) {
    tool.Plays("--sched",
               ToolAnswer().OutputOfFile(TEST_DATA_DIRECTORY "/scheduled/two_updates.tsv"));
    EXPECT_EQ(Fill().number, 0);
    ASSERT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getInstanceID()), "vim 9.0");
    EXPECT_EQ(Text(list.getName()), "vim");
    EXPECT_EQ(Text(list.getVersion()), "9.0");
    EXPECT_EQ(Text(list.getShortDescription()), "An editor");
    EXPECT_EQ(Text(list.getLocation()), "ftp://10.0.0.1/pub");
    EXPECT_EQ(Text(list.getDownloadDate()), "Thu Jan  2 03:04:05 UTC 2025");
    EXPECT_EQ(Text(list.getApplyDate()), "Fri Feb 13 23:59:00 CET 2026");
    EXPECT_TRUE(list.getRebootRequired());
    EXPECT_EQ(Text(list.getSize()), "12 MB");
    EXPECT_EQ(Text(list.getStatus()), "Scheduled");
    ASSERT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getInstanceID()), "bash-doc 1:5.2");
    EXPECT_EQ(Text(list.getDownloadDate()), "Jan 2 2025 03:04");
    EXPECT_EQ(Text(list.getApplyDate()), "20260213225900.000000+060");
    EXPECT_FALSE(list.getRebootRequired());
    EXPECT_EQ(Text(list.getSize()), "7");
    EXPECT_EQ(Text(list.getStatus()), "Waiting");
    EXPECT_FALSE(list.hasObject());
}

TEST_F(ScheduledList, OnlyTheExactWordMeansReboot) {
    const std::vector<std::string> others = {"Reboot",  "REBOOT", "reboot ",  " reboot",
                                             "reboots", "reboo",  "noreboot", "no reboot",
                                             "true",    "1"};
    std::string output = Line("a", "1", "reboot");
    for (const std::string& other : others) {
        output += Line("a", "1", other);
    }
    Prints(output);
    EXPECT_EQ(Fill().number, 0);
    ASSERT_TRUE(list.hasObject());
    EXPECT_TRUE(list.getRebootRequired());
    for (const std::string& other : others) {
        ASSERT_TRUE(list.hasObject());
        EXPECT_FALSE(list.getRebootRequired()) << other;
    }
}

TEST_F(ScheduledList, TheLastFieldKeepsItsBlanksAndCarriageReturn) {
    Prints("a\t1\td\tftp\tx\ty\tno\t 3 \t Waiting \r\n");
    EXPECT_EQ(Fill().number, 0);
    ASSERT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getSize()), " 3 ");
    EXPECT_EQ(Text(list.getStatus()), " Waiting \r");
}

TEST_F(ScheduledList, FillingReplacesTheRecordsAndGoesBeforeTheFirst) {
    Prints(Line("a", "1") + Line("b", "1") + Line("c", "1"));
    Fill();
    EXPECT_TRUE(list.hasObject());
    EXPECT_TRUE(list.hasObject());
    Prints(Line("d", "1") + Line("e", "1"));
    Fill();
    EXPECT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getName()), "d");
    EXPECT_THAT(IdentifiersOf(list), ElementsAre("d 1", "e 1"));
}

TEST_F(ScheduledList, InitializeForgetsEveryColumn) {
    Prints(Line("a", "1"));
    Fill();
    EXPECT_TRUE(list.hasObject());
    list.Initialize();
    EXPECT_THROW(list.getName(), OutOfBoundsException);
    EXPECT_FALSE(list.hasObject());
    EXPECT_THROW(list.getInstanceID(), OutOfBoundsException);
    EXPECT_THROW(list.getName(), OutOfBoundsException);
    EXPECT_THROW(list.getVersion(), OutOfBoundsException);
    EXPECT_THROW(list.getShortDescription(), OutOfBoundsException);
    EXPECT_THROW(list.getLocation(), OutOfBoundsException);
    EXPECT_THROW(list.getDownloadDate(), OutOfBoundsException);
    EXPECT_THROW(list.getApplyDate(), OutOfBoundsException);
    EXPECT_THROW(list.getRebootRequired(), OutOfBoundsException);
    EXPECT_THROW(list.getSize(), OutOfBoundsException);
    EXPECT_THROW(list.getStatus(), OutOfBoundsException);
}

TEST_F(ScheduledList, BeginGoesBack) {
    Prints(Line("a", "1") + Line("b", "1"));
    Fill();
    EXPECT_THAT(IdentifiersOf(list), ElementsAre("a 1", "b 1"));
    EXPECT_THAT(IdentifiersOf(list), ElementsAre("a 1", "b 1"));
}

TEST_F(ScheduledList, NothingStandsBehindTheLastRecord) {
    Prints(Line("a", "1"));
    Fill();
    EXPECT_TRUE(list.hasObject());
    EXPECT_FALSE(list.hasObject());
    EXPECT_THROW(list.getStatus(), OutOfBoundsException);
}

TEST_F(ScheduledList, NoOutputIsAnEmptyList) {
    Prints("");
    EXPECT_EQ(Fill().number, 0);
    EXPECT_FALSE(list.hasObject());
}

TEST_F(ScheduledList, DuplicateRecordsStayTwo) {
    Prints(Line("a", "1") + Line("a", "1"));
    EXPECT_EQ(Fill().number, 0);
    EXPECT_THAT(IdentifiersOf(list), ElementsAre("a 1", "a 1"));
}

class ScheduledListFailures : public ScheduledList {
protected:
    ScheduledListFailures() {
        Prints(Line("before", "1"));
        EXPECT_EQ(Fill().number, 0);
        log->Forget();
    }

    // Whatever has gone wrong, the same list can be filled anew.
    ~ScheduledListFailures() override {
        tool.RestoreTool();
        Prints(Line("after", "1"));
        EXPECT_EQ(Fill().number, 0);
        EXPECT_THAT(IdentifiersOf(list), ElementsAre("after 1"));
    }
};

TEST_F(ScheduledListFailures, AFailingToolIsDescribedAndNothingIsKept) {
    tool.Plays("--sched", ToolAnswer().Output(Line("a", "1")).ExitCode(17));
    const std::string text = "It failed.\n\n#SWU_Patchkeeper_PatchScheduleFailed#";
    EXPECT_EQ(Fill(), Failed(text));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --sched ",
                                        "INFO: Executing: /qv/bin/patchkeeper --errors 17",
                                        "INFO: Exception: " + text));
    EXPECT_THAT(IdentifiersOf(list), IsEmpty());
}

TEST_F(ScheduledListFailures, AMissingToolIsAFailureWithoutADescription) {
    tool.TakeToolAway();
    EXPECT_EQ(Fill(), Failed("SWU_Patchkeeper_Unknown"));
    EXPECT_TRUE(log->Contains("INFO: Executing: /qv/bin/patchkeeper --errors 127"));
    EXPECT_THAT(IdentifiersOf(list), IsEmpty());
}

TEST_F(ScheduledListFailures, AKilledToolFailsWith128AndItsSignal) {
    tool.Plays("--sched", ToolAnswer().Output(Line("a", "1")).DiesBySignal(SIGKILL));
    EXPECT_EQ(Fill(), Failed("It failed.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_TRUE(log->Contains("INFO: Executing: /qv/bin/patchkeeper --errors 137"));
    EXPECT_THAT(IdentifiersOf(list), IsEmpty());
}

TEST_F(ScheduledListFailures, EachMissingFieldIsNamed) {
    const std::vector<std::string> fields = {
        "Name",          "Version",    "Short Description", "Location",
        "Download Date", "Apply Date", "Reboot Required",   "Size",
        "Status"};
    std::string line;
    for (const std::string& field : fields) {
        Prints(line + "\n");
        EXPECT_EQ(Fill(), Failed(MissingField(field)));
        EXPECT_TRUE(log->Contains("ERROR: Failed to parse " + field +
                                  " field from /qv/bin/patchkeeper --sched "));
        line += line.empty() ? "x" : "\tx";
    }
    Prints(line + "\n");
    EXPECT_EQ(Fill().number, 0);
}

TEST_F(ScheduledListFailures, AnEmptyLineOrHeaderIsARecordLikeAnyOther) {
    Prints(Line("a", "1") + "\n" + Line("b", "1"));
    EXPECT_EQ(Fill(), Failed(MissingField("Name")));
    Prints("Scheduled updates:\n" + Line("a", "1"));
    EXPECT_EQ(Fill(), Failed(MissingField("Version")));
}

TEST_F(ScheduledListFailures, AShortLineLeavesTheRecordsBeforeItInColumnsOfOneLength) {
    Prints(Line("a", "1") + "b\t1\tdescription\n" + Line("c", "1"));
    EXPECT_EQ(Fill(), Failed(MissingField("Location")));
    EXPECT_THAT(IdentifiersOf(list), ElementsAre("a 1"));
    EXPECT_FALSE(list.hasObject());
    EXPECT_THROW(list.getName(), OutOfBoundsException);
    EXPECT_THROW(list.getStatus(), OutOfBoundsException);
}

TEST_F(ScheduledListFailures, AnEmptyFieldShiftsTheOthers) {
    Prints("a\t1\t\tftp\tJan 2 2025 03:04\tFeb 3 2025 04:05\treboot\t12\tScheduled\n");
    EXPECT_EQ(Fill(), Failed(MissingField("Status")));
    Prints("a\t1\t\tftp\tJan 2 2025 03:04\tFeb 3 2025 04:05\treboot\t12\tScheduled\tmore\n");
    EXPECT_EQ(Fill().number, 0);
    ASSERT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getShortDescription()), "ftp");
    EXPECT_EQ(Text(list.getSize()), "Scheduled");
    EXPECT_EQ(Text(list.getStatus()), "more");
    EXPECT_FALSE(list.getRebootRequired());
}

TEST_F(ScheduledListFailures, FieldsBeyondTheNinthAreIgnored) {
    const std::string line = Line("a", "1");
    Prints(line.substr(0, line.size() - 1) + "\tmore\tand more\n");
    EXPECT_EQ(Fill().number, 0);
    ASSERT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getStatus()), "Scheduled");
}

TEST_F(ScheduledListFailures, TheLastLineNeedsNoNewline) {
    const std::string line = Line("a", "1");
    Prints(line.substr(0, line.size() - 1));
    EXPECT_EQ(Fill().number, 0);
    EXPECT_THAT(IdentifiersOf(list), ElementsAre("a 1"));
}

TEST_F(ScheduledListFailures, ALineOf1023BytesIsOneRecordAndOneMoreMakesTwo) {
    // With its newline, which counts.
    const std::size_t others = Line("", "1").size();
    Prints(Line(std::string(1023 - others, 'n'), "1"));
    EXPECT_EQ(Fill().number, 0);
    EXPECT_EQ(IdentifiersOf(list).size(), 1U);
    // The second piece is the newline alone.
    Prints(Line(std::string(1024 - others, 'n'), "1"));
    EXPECT_EQ(Fill(), Failed(MissingField("Name")));
    EXPECT_EQ(IdentifiersOf(list).size(), 1U);
    Prints(Line(std::string(1100, 'n'), "1"));
    EXPECT_EQ(Fill(), Failed(MissingField("Version")));
    EXPECT_EQ(IdentifiersOf(list).size(), 0U);
}

TEST_F(ScheduledListFailures, AnyBytesPassAsText) {
    Prints(Line("\xff\xc3\x01", "\xc3\xa4") + Line("a\r", "6"));
    EXPECT_EQ(Fill().number, 0);
    EXPECT_THAT(IdentifiersOf(list), ElementsAre("\xff\xc3\x01 \xc3\xa4", "a\r 6"));
}

TEST_F(ScheduledListFailures, AZeroByteEndsItsLine) {
    const std::string line = Line("a", "1");
    Prints(std::string("b\0", 2) + line + line);
    EXPECT_EQ(Fill(), Failed(MissingField("Version")));
}

TEST_F(ScheduledListFailures, AsManyRecordsAsTheCursorCanNumberAreRead) {
    std::string output;
    for (int i = 0; i < 65535; ++i) {
        output += Line("u", std::to_string(i));
    }
    Prints(output);
    EXPECT_EQ(Fill().number, 0);
    EXPECT_EQ(IdentifiersOf(list).size(), 65535U);
    ScheduledUpdate record;
    ScheduledUpdate_ObjectInstanceManager().getOneObject("u 65534", record);
    EXPECT_EQ(CimErrorOf(
                  [&] { ScheduledUpdate_ObjectInstanceManager().getOneObject("u 65535", record); }),
              NotFound());
    Prints(output + Line("u", "65535"));
    EXPECT_EQ(Fill(),
              Failed("Too many records: more than 65535 lines from /qv/bin/patchkeeper --sched "));
}

TEST_F(ScheduledListFailures, MoreRecordsFailAndThoseThatFitStay) {
    std::string output;
    for (int i = 0; i < 70000; ++i) {
        output += Line("u", std::to_string(i));
    }
    Prints(output);
    const std::string text =
        "Too many records: more than 65535 lines from /qv/bin/patchkeeper --sched ";
    EXPECT_EQ(Fill(), Failed(text));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --sched ",
                                        "INFO: Exception: " + text));
    const std::vector<std::string> identifiers = IdentifiersOf(list);
    ASSERT_EQ(identifiers.size(), 65535U);
    EXPECT_EQ(identifiers.back(), "u 65534");
}
