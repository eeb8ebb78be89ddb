#include "FileNameTest.hpp"

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::NotFound;
using test_support::NotSupported;
using test_support::PathOf;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

// The class provider by itself, after initialize.
class FileName : public FileNameTest {
protected:
    FileName() { provider.initialize(env); }

    CIMInstance Get(const char* name) const {
        return calls.GetInstance(PathOf(FILE_NAMES, "FileName", name));
    }

    FileNameProvider provider;
    test_support::Calls calls{provider, env};
};

TEST_F(FileName, InitializeAndCleanupTouchNothing) {
    provider.cleanup();
    EXPECT_THAT(tool.Calls(), IsEmpty());
    EXPECT_THAT(log->All(), IsEmpty());
}

TEST_F(FileName, AnInstancePerNameWithItsOneProperty) {
    Prints("one\ntwo\none\n");
    const CIMInstanceArray instances = calls.EnumInstances(FILE_NAMES);
    ASSERT_EQ(instances.size(), 3U);
    const char* const names[] = {"one", "two", "one"};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(Text(instances[i].getClassName()), "ZNX_AvailableSoftwareFileName");
        ASSERT_EQ(instances[i].getProperties().size(), 1U);
        EXPECT_EQ(Text(instances[i].getProperties()[0].getName()), "FileName");
        EXPECT_EQ(instances[i].getPropertyValue("FileName"), CIMValue(names[i]));
    }
}

TEST_F(FileName, ClientsCanReturnToAnInstanceByItsPath) {
    Prints("one\ntwo\n");
    const CIMObjectPath path("root/cimv2", calls.EnumInstances(FILE_NAMES)[1]);
    EXPECT_EQ(path, PathOf(FILE_NAMES, "FileName", "two"));
    EXPECT_EQ(calls.EnumInstanceNames(FILE_NAMES)[1], path);
    const CIMInstance instance = calls.GetInstance(path);
    EXPECT_EQ(CIMObjectPath("root/cimv2", instance), path);
    EXPECT_EQ(instance.getPropertyValue("FileName"), CIMValue("two"));
    EXPECT_EQ(instance.getProperties().size(), 1U);
}

TEST_F(FileName, PathsBearTheClassAndNamespaceOfTheRequest) {
    Prints("one\n");
    CIMObjectPathArray paths;
    CIMObjectPathArrayBuilder result(paths);
    provider.enumInstanceNames(env, "root/other", "znx_Other", result, CIMClass());
    ASSERT_EQ(paths.size(), 1U);
    EXPECT_EQ(Text(paths[0].toString()), "/root/other:znx_Other.FileName=\"one\"");
}

TEST_F(FileName, NothingIsKeptBetweenCalls) {
    Prints("one\n");
    calls.EnumInstances(FILE_NAMES);
    Prints("two\n");
    EXPECT_EQ(CimErrorOf([&] { Get("one"); }), NotFound());
    EXPECT_EQ(Get("two").getPropertyValue("FileName"), CIMValue("two"));
    EXPECT_EQ(tool.Calls().size(), 3U);
}

TEST_F(FileName, ThePropertyListHasNoEffect) {
    Prints("one\n");
    const StringArray none;
    EXPECT_EQ(calls.EnumInstances(FILE_NAMES, &none)[0].getProperties().size(), 1U);
    EXPECT_EQ(
        calls.GetInstance(PathOf(FILE_NAMES, "FileName", "one"), &none).getProperties().size(), 1U);
}

TEST_F(FileName, AKeyThatIsNoTextIsNotFoundAndRunsNothing) {
    Prints("5\n");
    CIMObjectPath path(FILE_NAMES);
    path.setKeyValue("FileName", CIMValue(UInt16(5)));
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(path); }), NotFound());
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(FileName, TheKeysNameHasNoCase) {
    Prints("one\n");
    const CIMInstance instance = calls.GetInstance(PathOf(FILE_NAMES, "filename", "one"));
    EXPECT_EQ(instance.getPropertyValue("FileName"), CIMValue("one"));
}

TEST_F(FileName, ARecordIsFoundByAnInstance) {
    Prints("one\ntwo\n");
    CIMInstance instance(FILE_NAMES);
    instance.setProperty("FileName", CIMValue("two"));
    FileNameRecord record;
    provider.getFileNameWithCIMInstance(instance, record);
    String name;
    record.getName(name);
    EXPECT_EQ(Text(name), "two");
    instance.setProperty("FileName", CIMValue("Two"));
    EXPECT_EQ(CimErrorOf([&] { provider.getFileNameWithCIMInstance(instance, record); }),
              NotFound());
    EXPECT_EQ(
        CimErrorOf([&] { provider.getFileNameWithCIMInstance(CIMInstance(FILE_NAMES), record); }),
        NotFound());
    tool.Plays("--files", ToolAnswer().ExitCode(33));
    EXPECT_EQ(CimErrorOf([&] { provider.getFileNameWithCIMInstance(instance, record); }),
              NotFound());
}

TEST_F(FileName, TheAssociationsFormIsAKey) {
    CIMInstance instance(FILE_NAMES);
    FileNameProvider::FileNameToCIMInstance("one", instance);
    EXPECT_TRUE(instance.getProperty("FileName").getQualifier("Key"));
    EXPECT_EQ(CIMObjectPath("root/cimv2", instance), PathOf(FILE_NAMES, "FileName", "one"));
}

TEST_F(FileName, AHandlerThatThrowsEndsTheEnumeration) {
    RefusingResult refusing;
    Prints("one\n");
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(FILE_NAMES, refusing); }).number, 2);
    EXPECT_EQ(calls.EnumInstances(FILE_NAMES).size(), 1U);
}

TEST_F(FileName, SeventyThousandNamesAreAFailureAndNotFoundOneByOne) {
    std::string output;
    for (int i = 0; i < 70000; ++i) {
        output += "n\n";
    }
    Prints(output);
    const auto error =
        Failed("Too many records: more than 65535 names from /qv/bin/patchkeeper --files ");
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(FILE_NAMES); }), error);
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstanceNames(FILE_NAMES); }), error);
    EXPECT_EQ(CimErrorOf([&] { Get("n"); }), NotFound());
    Prints("n\n");
    EXPECT_EQ(Get("n").getPropertyValue("FileName"), CIMValue("n"));
}

class FileNameProviderOddities : public FileName {};

TEST_F(FileNameProviderOddities, FN6_ThePropertyIsNoKeyByQualifier) {
    Prints("one\n");
    EXPECT_FALSE(calls.EnumInstances(FILE_NAMES)[0].getProperty("FileName").isKey());
    EXPECT_FALSE(Get("one").getProperty("FileName").isKey());
}

TEST_F(FileNameProviderOddities, FN7_AFailingToolIsNotFoundForGetInstance) {
    tool.Plays("--files", ToolAnswer().Output("one\n").ExitCode(33));
    EXPECT_EQ(CimErrorOf([&] { Get("one"); }), NotFound());
    EXPECT_THAT(tool.CommandLines(),
                ElementsAre("/qv/bin/patchkeeper --files", "/qv/bin/patchkeeper --errors 33"));
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(FILE_NAMES); }).number, 1);
}

TEST_F(FileNameProviderOddities, FN8_MethodsAreNotSupportedRatherThanNotFound) {
    CIMParamValueArray out;
    for (const char* const method : {"Remove", "Any", ""}) {
        EXPECT_EQ(CimErrorOf([&] {
                      provider.invokeMethod(env, "root/cimv2",
                                            PathOf(FILE_NAMES, "FileName", "one"), method,
                                            CIMParamValueArray(), out);
                  }),
                  NotSupported());
    }
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(FileNameProviderOddities, FN9_NoOperationLooksForTheFileOfAnInstance) {
    Prints("one\n");
    const CIMInstance instance = Get("one");
    tool.ForgetCalls();
    FileNameRecord record;
    provider.getFileNameWithCIMInstance(instance, record);
    EXPECT_EQ(tool.Calls().size(), 1U);
    tool.ForgetCalls();
    // Neither the file of an instance is looked for, nor is one without a key missed.
    for (const CIMInstance& given : {instance, CIMInstance(FILE_NAMES)}) {
        EXPECT_EQ(CimErrorOf([&] { calls.CreateInstance(given); }), NotSupported());
        EXPECT_EQ(CimErrorOf([&] { calls.ModifyInstance(given); }), NotSupported());
    }
    EXPECT_THAT(tool.Calls(), IsEmpty());
}
