#include "ScheduledTest.hpp"

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::NotFound;
using test_support::ToolAnswer;
using testing::ElementsAre;

namespace {

// What a getter of a text gives.
std::string TextBy(const ScheduledUpdate& record, bool (ScheduledUpdate::*get)(String&) const) {
    String text = "as before";
    EXPECT_TRUE((record.*get)(text));
    return Text(text);
}

std::string DateBy(const ScheduledUpdate& record,
                   bool (ScheduledUpdate::*get)(CIMDateTime&) const) {
    CIMDateTime date;
    EXPECT_TRUE((record.*get)(date));
    return Text(date.toString());
}

bool RebootOf(const ScheduledUpdate& record) {
    bool reboot = false;
    EXPECT_TRUE(record.getRebootRequired(reboot));
    return reboot;
}

} // namespace

class ScheduledRecord : public ScheduledTest {
protected:
    ScheduledUpdate RecordOf(const std::string& line) {
        Prints(line);
        ScheduledUpdate_ObjectList list;
        list.getObjectList();
        EXPECT_TRUE(list.hasObject());
        const ScheduledUpdate record(list);
        tool.ForgetCalls();
        log->Forget();
        return record;
    }

    ScheduledUpdate Vim() { return RecordOf(Line("vim", "9.0")); }
};

TEST_F(ScheduledRecord, ANewRecordHoldsEmptyTexts) {
    const ScheduledUpdate record;
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getInstanceID), "");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getName), "");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getVersion), "");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getShortDescription), "");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getLocation), "");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getStatus), "");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getSize), "");
    EXPECT_FALSE(RebootOf(record));
}

TEST_F(ScheduledRecord, ItHoldsEveryColumnOfTheListsCurrentRecord) {
    Prints(Line("a", "1") +
           "vim\t9.0\td\tl\tJan 2 2025 03:04:05\tFeb 3 2025 04:05:06\treboot\ts\tt\n");
    ScheduledUpdate_ObjectList list;
    list.getObjectList();
    EXPECT_TRUE(list.hasObject());
    EXPECT_TRUE(list.hasObject());
    const ScheduledUpdate made(list);
    ScheduledUpdate record;
    record = made;
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getInstanceID), "vim 9.0");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getName), "vim");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getVersion), "9.0");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getShortDescription), "d");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getLocation), "l");
    EXPECT_EQ(DateBy(record, &ScheduledUpdate::getDownloadDate), "20250102030405.000000+000");
    EXPECT_EQ(DateBy(record, &ScheduledUpdate::getApplyDate), "20250203040506.000000+000");
    EXPECT_TRUE(RebootOf(record));
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getSize), "s");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getStatus), "t");
}

TEST_F(ScheduledRecord, DatesAreReadAsTheProviderApiDoes) {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    const ScheduledUpdate record =
        RecordOf("a\t1\td\tl\tThu Jan  2 03:04:05 UTC 2025\t20260713225900.000000+060\tno\ts\tt\n");
    EXPECT_EQ(DateBy(record, &ScheduledUpdate::getDownloadDate), "20250102040405.000000+060");
    EXPECT_EQ(DateBy(record, &ScheduledUpdate::getApplyDate), "20260713235900.000000+120");
}

TEST_F(ScheduledRecord, AnUnreadableDateIsTheLibrarysException) {
    const ScheduledUpdate record = RecordOf("a\t1\td\tl\tyesterday\tsoon\tno\ts\tt\n");
    CIMDateTime date;
    EXPECT_THROW(record.getDownloadDate(date), DateTimeException);
    EXPECT_THROW(record.getApplyDate(date), DateTimeException);
}

TEST_F(ScheduledRecord, TheDescriptionIsTheWholeOutput) {
    const ScheduledUpdate record = Vim();
    String description;
    EXPECT_TRUE(record.getUpdateDescription(description));
    EXPECT_EQ(Text(description), "The long\ntext.\n");
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper -l vim-9.0 2>&1"));
}

TEST_F(ScheduledRecord, AFailingDescriptionIsNoFailure) {
    const ScheduledUpdate record = Vim();
    tool.Plays("-l", ToolAnswer().Output("x").ExitCode(255));
    String description;
    EXPECT_FALSE(record.getUpdateDescription(description));
    tool.TakeToolAway();
    EXPECT_FALSE(record.getUpdateDescription(description));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper -l vim-9.0",
                                        "INFO: Executing: /qv/bin/patchkeeper -l vim-9.0"));
}

TEST_F(ScheduledRecord, ModifyPutsDayAndTimeInQuotesAsTheyAre) {
    const ScheduledUpdate record = Vim();
    tool.Plays("--msched", ToolAnswer());
    EXPECT_EQ(Text(record.modify("", " ")), "");
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper --msched vim 9.0 \"\" \" \""));
    EXPECT_THAT(tool.Calls(),
                ElementsAre(ElementsAre("/qv/bin/patchkeeper", "--msched", "vim", "9.0", "", " ")));
}

TEST_F(ScheduledRecord, ModifyRunsTheToolAndWaits) {
    const ScheduledUpdate record = Vim();
    tool.Plays("--msched", ToolAnswer().Output("Moved.\n"));
    EXPECT_EQ(Text(record.modify("Feb 13", "23:59")), "");
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper --msched vim 9.0 \"Feb 13\" \"23:59\""));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --msched vim 9.0 "
                                        "\"Feb 13\" \"23:59\""));
    EXPECT_FALSE(BackgroundTasksRun());
}

TEST_F(ScheduledRecord, RemoveNamesTheUpdateAlone) {
    const ScheduledUpdate record = Vim();
    tool.Plays("--msched", ToolAnswer().Output("Dropped.\n"));
    EXPECT_EQ(Text(record.remove()), "");
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --msched vim 9.0"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --msched vim 9.0"));
    EXPECT_FALSE(BackgroundTasksRun());
}

TEST_F(ScheduledRecord, ARefusingToolIsDescribed) {
    const ScheduledUpdate record = Vim();
    tool.Plays("--msched", ToolAnswer().ExitCode(18));
    const std::string text = "It failed.\n\n#SWU_Patchkeeper_PatchModifyFailed#";
    EXPECT_EQ(CimErrorOf([&] { record.modify("a", "b"); }), Failed(text));
    EXPECT_EQ(CimErrorOf([&] { record.remove(); }), Failed(text));
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper --msched vim 9.0 \"a\" \"b\"",
                            "/qv/bin/patchkeeper --errors 18 2>&1",
                            "/qv/bin/patchkeeper --msched vim 9.0",
                            "/qv/bin/patchkeeper --errors 18 2>&1"));
}

class ScheduledManager : public ScheduledTest {
protected:
    ScheduledUpdate_ObjectInstanceManager manager;
    ScheduledUpdate record;
};

TEST_F(ScheduledManager, AnIterationHandsOverEachRecordOnce) {
    Prints(Line("a", "1") + Line("b", "2"));
    manager.startIteration();
    ASSERT_TRUE(manager.hasNext());
    manager.getNext(record);
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getInstanceID), "a 1");
    ASSERT_TRUE(manager.hasNext());
    manager.getNext(record);
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getInstanceID), "b 2");
    EXPECT_FALSE(manager.hasNext());
    manager.endIteration();
    EXPECT_EQ(tool.Calls().size(), 1U);
}

TEST_F(ScheduledManager, EachIterationAsksTheToolAnew) {
    Prints(Line("a", "1"));
    manager.startIteration();
    Prints(Line("b", "2"));
    manager.startIteration();
    ASSERT_TRUE(manager.hasNext());
    manager.getNext(record);
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getName), "b");
    Prints("");
    manager.startIteration();
    EXPECT_FALSE(manager.hasNext());
}

TEST_F(ScheduledManager, AFailingToolFailsTheIteration) {
    tool.Plays("--sched", ToolAnswer().ExitCode(34));
    EXPECT_EQ(CimErrorOf([&] { manager.startIteration(); }),
              Failed("It failed.\n\n#SWU_Patchkeeper_TimeZoneNotSet#"));
    EXPECT_FALSE(manager.hasNext());
}

TEST_F(ScheduledManager, InitAsksTheToolNothing) {
    ScheduledUpdate_ObjectInstanceManager::init();
    EXPECT_THAT(tool.Calls(), testing::IsEmpty());
}

TEST_F(ScheduledManager, ALookupFindsTheRecordOfExactlyThatIdentifier) {
    Prints(Line("a", "1") + Line("b", "2", "no") + Line("c", "3"));
    manager.getOneObject("b 2", record);
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getName), "b");
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getVersion), "2");
    EXPECT_FALSE(RebootOf(record));
    for (const char* const other : {"B 2", "b", "b 2 ", " b 2", "b  2", "b-2", "2 b", "", "b 22"}) {
        EXPECT_EQ(CimErrorOf([&] { manager.getOneObject(other, record); }), NotFound()) << other;
    }
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getName), "b");
}

TEST_F(ScheduledManager, EachLookupAsksTheToolAnew) {
    Prints(Line("a", "1"));
    manager.getOneObject("a 1", record);
    manager.getOneObject("a 1", record);
    EXPECT_EQ(tool.Calls().size(), 2U);
    Prints(Line("a", "2"));
    EXPECT_EQ(CimErrorOf([&] { manager.getOneObject("a 1", record); }), NotFound());
}

TEST_F(ScheduledManager, ALookupLeavesAnIterationAlone) {
    Prints(Line("a", "1") + Line("b", "2"));
    manager.startIteration();
    EXPECT_TRUE(manager.hasNext());
    ScheduledUpdate other;
    manager.getOneObject("b 2", other);
    manager.getNext(record);
    EXPECT_EQ(TextBy(record, &ScheduledUpdate::getName), "a");
}

TEST_F(ScheduledManager, ALookupPassesOnWhatTheListingFailsWith) {
    Prints("");
    EXPECT_EQ(CimErrorOf([&] { manager.getOneObject("a 1", record); }), NotFound());
    Prints(Line("a", "1") + "short\n");
    EXPECT_EQ(CimErrorOf([&] { manager.getOneObject("a 1", record); }),
              Failed(MissingField("Version")));
    tool.Plays("--sched", ToolAnswer().ExitCode(17));
    EXPECT_EQ(CimErrorOf([&] { manager.getOneObject("a 1", record); }),
              Failed("It failed.\n\n#SWU_Patchkeeper_PatchScheduleFailed#"));
}

TEST_F(ScheduledManager, DuplicatesAreAnsweredByTheFirst) {
    Prints(Line("a", "1", "reboot") + Line("a", "1", "no"));
    manager.getOneObject("a 1", record);
    EXPECT_TRUE(RebootOf(record));
}
