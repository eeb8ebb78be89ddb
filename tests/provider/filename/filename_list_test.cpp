#include "FileNameTest.hpp"

using namespace OpenWBEM;
using test_support::CimError;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::NotFound;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

class FileNameList : public FileNameTest {
protected:
    CimError Fill(const char* patch = "p-1") {
        return CimErrorOf([&] { EXPECT_TRUE(list.getObjectList(patch)); });
    }

    FileName_ObjectList list;
};

TEST_F(FileNameList, ANewListIsEmptyAndBeforeTheFirstName) {
    FileName_ObjectList named("p-1");
    EXPECT_FALSE(named.hasObject());
    EXPECT_FALSE(list.hasObject());
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(FileNameList, TheFilesOfTheNamedUpdateAreListed) {
    Prints("a\nb\n");
    EXPECT_EQ(Fill("vim-9.0").number, 0);
    EXPECT_THAT(NamesOf(list), ElementsAre("a", "b"));
    FileName_ObjectList named("bash-5");
    EXPECT_TRUE(named.getObjectList());
    named.setPatchName("other-1");
    EXPECT_TRUE(named.getObjectList());
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --files vim-9.0 2>&1",
                                                  "/qv/bin/patchkeeper --files bash-5 2>&1",
                                                  "/qv/bin/patchkeeper --files other-1 2>&1"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --files vim-9.0",
                                        "INFO: Executing: /qv/bin/patchkeeper --files bash-5",
                                        "INFO: Executing: /qv/bin/patchkeeper --files other-1"));
}

TEST_F(FileNameList, TheUpdateOfTheLastFillingIsKept) {
    Prints("a");
    Fill("vim-9.0");
    list.Initialize();
    EXPECT_FALSE(list.hasObject());
    EXPECT_TRUE(list.getObjectList());
    EXPECT_THAT(tool.CommandLines(), ElementsAre("/qv/bin/patchkeeper --files vim-9.0",
                                                 "/qv/bin/patchkeeper --files vim-9.0"));
}

TEST_F(FileNameList, FillingReplacesTheNamesAndGoesBeforeTheFirst) {
    Prints("a b c");
    Fill();
    EXPECT_TRUE(list.hasObject());
    EXPECT_TRUE(list.hasObject());
    Prints("d e");
    Fill();
    EXPECT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getName()), "d");
    EXPECT_THAT(NamesOf(list), ElementsAre("d", "e"));
}

TEST_F(FileNameList, BeginGoesBack) {
    Prints("a b");
    Fill();
    EXPECT_THAT(NamesOf(list), ElementsAre("a", "b"));
    EXPECT_THAT(NamesOf(list), ElementsAre("a", "b"));
}

TEST_F(FileNameList, ThereIsNoNameBeforeTheFirstAndBehindTheLast) {
    Prints("a");
    Fill();
    EXPECT_THROW(list.getName(), OutOfBoundsException);
    EXPECT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getName()), "a");
    EXPECT_FALSE(list.hasObject());
    EXPECT_THROW(list.getName(), OutOfBoundsException);
}

TEST_F(FileNameList, NamesAreSeparatedByAnyWhiteSpace) {
    Prints("one\r\ntwo  three\n");
    Fill();
    EXPECT_THAT(NamesOf(list), ElementsAre("one", "two", "three"));
    Prints("\n\n a\tb\vc\rd \t\v\r\n e");
    Fill();
    EXPECT_THAT(NamesOf(list), ElementsAre("a", "b", "c", "d", "e"));
}

TEST_F(FileNameList, AFormFeedIsPartOfAName) {
    Prints("a\fb");
    Fill();
    EXPECT_THAT(NamesOf(list), ElementsAre("a\fb"));
}

TEST_F(FileNameList, WhiteSpaceAloneNamesNothing) {
    Prints(" \n\t\r\v\n");
    EXPECT_EQ(Fill().number, 0);
    EXPECT_THAT(NamesOf(list), IsEmpty());
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --files p-1"));
}

TEST_F(FileNameList, DuplicatesStay) {
    Prints("a b a");
    Fill();
    EXPECT_THAT(NamesOf(list), ElementsAre("a", "b", "a"));
}

TEST_F(FileNameList, AnyBytesPassAsANameAndAZeroByteCutsItsLine) {
    Prints("\xff\xc3\x01 b\n");
    Fill();
    EXPECT_THAT(NamesOf(list), ElementsAre("\xff\xc3\x01", "b"));
    Prints(std::string("a\0b\nc\n", 6));
    Fill();
    EXPECT_THAT(NamesOf(list), ElementsAre("ac"));
}

TEST_F(FileNameList, ANameMayBeLongerThanTheRunnersBuffer) {
    for (const std::size_t length : {1022U, 1023U, 1024U, 5000U}) {
        Prints("a\n" + std::string(length, 'n') + "\nb");
        Fill();
        EXPECT_THAT(NamesOf(list), ElementsAre("a", std::string(length, 'n'), "b")) << length;
    }
}

TEST_F(FileNameList, AFailingToolIsDescribedAndLeavesTheListEmpty) {
    Prints("a b");
    Fill();
    tool.Plays("--files", ToolAnswer().Output("c d").ExitCode(33));
    EXPECT_EQ(Fill(), Failed("It failed.\n\n#SWU_Patchkeeper_NoLocalPatchesFound#"));
    EXPECT_FALSE(list.hasObject());
    EXPECT_EQ(tool.CommandLines().back(), "/qv/bin/patchkeeper --errors 33");
}

TEST_F(FileNameList, ExitCode1IsAFailureLikeAnyOther) {
    tool.Plays("--files", ToolAnswer().Output("a b").ExitCode(1));
    EXPECT_EQ(Fill(), Failed("It failed.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_FALSE(list.hasObject());
}

TEST_F(FileNameList, ACommandLineThatIsTooLongIsAFailure) {
    EXPECT_EQ(Fill(std::string(200'000, 'p').c_str()),
              Failed("It failed.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_THAT(tool.CommandLines(), ElementsAre("/qv/bin/patchkeeper --errors -1"));
    EXPECT_FALSE(list.hasObject());
}

TEST_F(FileNameList, AMissingToolIsAFailureWithoutADescription) {
    tool.TakeToolAway();
    EXPECT_EQ(Fill(), Failed("SWU_Patchkeeper_Unknown"));
    EXPECT_TRUE(log->Contains("INFO: Executing: /qv/bin/patchkeeper --errors 127"));
}

// The cursor is a 16-bit number.
class FileNameLimit : public FileNameList {
protected:
    void PrintsNames(std::size_t count) {
        std::string output;
        for (std::size_t i = 0; i < count; ++i) {
            output += "n" + std::to_string(i) + "\n";
        }
        Prints(output);
    }

    const CimError tooMany =
        Failed("Too many records: more than 65535 names from /qv/bin/patchkeeper --files p-1");
};

TEST_F(FileNameLimit, AsManyNamesAsTheCursorReachesAreRead) {
    PrintsNames(65535);
    EXPECT_EQ(Fill().number, 0);
    const std::vector<std::string> names = NamesOf(list);
    ASSERT_EQ(names.size(), 65535U);
    EXPECT_EQ(names.back(), "n65534");
}

TEST_F(FileNameLimit, OneNameMoreIsAFailureThatKeepsThoseBefore) {
    PrintsNames(65536);
    EXPECT_EQ(Fill(), tooMany);
    EXPECT_EQ(NamesOf(list).size(), 65535U);
}

TEST_F(FileNameLimit, SeventyThousandNamesEndTheFillingAndTheNextOneWorks) {
    PrintsNames(70000);
    EXPECT_EQ(Fill(), tooMany);
    EXPECT_TRUE(log->Contains("INFO: Exception: Too many records: more than 65535 names from "
                              "/qv/bin/patchkeeper --files p-1"));
    Prints("a");
    EXPECT_EQ(Fill().number, 0);
    EXPECT_THAT(NamesOf(list), ElementsAre("a"));
}

class FileNameRecords : public FileNameTest {};

TEST_F(FileNameRecords, ARecordIsTheNameAtTheCursor) {
    Prints("a b");
    FileName_ObjectList list;
    list.getObjectList();
    list.hasObject();
    list.hasObject();
    const FileNameRecord record(list);
    FileNameRecord assigned;
    String name("before");
    EXPECT_TRUE(assigned.getName(name));
    EXPECT_EQ(Text(name), "");
    assigned = record;
    EXPECT_TRUE(assigned.getName(name));
    EXPECT_EQ(Text(name), "b");
}

TEST_F(FileNameRecords, TheManagerWalksTheNames) {
    Prints("a b");
    FileNameManager::init();
    FileNameManager manager;
    for (int round = 0; round < 2; ++round) {
        std::vector<std::string> names;
        manager.startIteration();
        while (manager.hasNext()) {
            FileNameRecord record;
            manager.getNext(record);
            String name;
            record.getName(name);
            names.push_back(Text(name));
        }
        manager.endIteration();
        EXPECT_THAT(names, ElementsAre("a", "b"));
    }
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --files  2>&1",
                                                  "/qv/bin/patchkeeper --files  2>&1"));
}

TEST_F(FileNameRecords, TheManagerFindsANameExactly) {
    Prints("file file2 a file2");
    const FileNameManager manager;
    FileNameRecord record;
    String name;
    manager.getOneObject("file2", record);
    record.getName(name);
    EXPECT_EQ(Text(name), "file2");
    for (const char* const unknown : {"File2", "fil", "file22", "", "file file2", " a"}) {
        EXPECT_EQ(CimErrorOf([&] { manager.getOneObject(unknown, record); }), NotFound())
            << unknown;
    }
    record.getName(name);
    EXPECT_EQ(Text(name), "file2");
}

TEST_F(FileNameRecords, TheManagersOwnFailuresKeepTheirText) {
    tool.Plays("--files", ToolAnswer().ExitCode(33));
    const CimError error = Failed("It failed.\n\n#SWU_Patchkeeper_NoLocalPatchesFound#");
    FileNameManager manager;
    FileNameRecord record;
    EXPECT_EQ(CimErrorOf([&] { manager.startIteration(); }), error);
    EXPECT_EQ(CimErrorOf([&] { manager.getOneObject("a", record); }), error);
}

class FileNameOddities : public FileNameTest {};

TEST_F(FileNameOddities, FN1_AnUpdateWithoutFilesShowsTwoNames) {
    Prints("");
    FileName_ObjectList list("p-1");
    EXPECT_TRUE(list.getObjectList());
    EXPECT_THAT(NamesOf(list), ElementsAre("Filename1", "Testname"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --files p-1",
                                        "INFO: no file name, use default: Filename1     Testname"));
}

TEST_F(FileNameOddities, FN2_ANameEndsAtABlank) {
    Prints("release notes.txt\n");
    FileName_ObjectList list("p-1");
    list.getObjectList();
    EXPECT_THAT(NamesOf(list), ElementsAre("release", "notes.txt"));
}

TEST_F(FileNameOddities, FN3_TheUpdateStandsUnquotedAndWithoutOneABlankRemains) {
    Prints("a");
    FileName_ObjectList list;
    list.getObjectList();
    list.getObjectList("two $((1+1))-3");
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper --files  2>&1",
                            "/qv/bin/patchkeeper --files two $((1+1))-3 2>&1"));
    EXPECT_THAT(tool.Calls()[1], ElementsAre("/qv/bin/patchkeeper", "--files", "two", "2-3"));
    EXPECT_EQ(log->All()[0], "INFO: Executing: /qv/bin/patchkeeper --files ");
}

TEST_F(FileNameOddities, FN4_WordsOfErrorOutputAreNames) {
    tool.Plays("--files", ToolAnswer().Output("a\n").ErrorText("disk nearly full\n"));
    FileName_ObjectList list("p-1");
    list.getObjectList();
    EXPECT_THAT(NamesOf(list), ElementsAre("a", "disk", "nearly", "full"));
}

TEST_F(FileNameOddities, FN5_AskingMovesOnAndNextDoesNot) {
    Prints("a b c");
    FileName_ObjectList list("p-1");
    list.getObjectList();
    list.next();
    list.next();
    EXPECT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getName()), "a");
    list.next();
    EXPECT_EQ(Text(list.getName()), "a");
    EXPECT_TRUE(list.hasObject());
    EXPECT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getName()), "c");
    list.end();
    EXPECT_EQ(Text(list.getName()), "c");
    EXPECT_FALSE(list.hasObject());
    EXPECT_FALSE(list.hasObject());
}
