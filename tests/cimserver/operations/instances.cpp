#include "cimserver/operations/OperationsTest.hpp"

#include "OW_CIMDateTime.hpp"
#include "OW_CIMValue.hpp"

#include <new>
#include <stdexcept>

namespace operationstest {
namespace {

using namespace cimserver::operations; // the names of the calls
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMProperty;
using OpenWBEM::CIMValue;
using OpenWBEM::String;
using testing::ElementsAre;
using testing::IsEmpty;

CIMInstance Made(const char* className, const char* id) {
    CIMInstance instance(className);
    OpenWBEM::CIMPropertyArray keys;
    keys.push_back(CIMProperty("Id", CIMValue(String(id))));
    instance.setProperty("Id", CIMValue(String(id)));
    instance.setKeys(keys);
    return instance;
}

class Instances : public OperationsTest {};

TEST_F(Instances, EnumerationCallsTheProvidersOfAllSubclassesInDeclaredSpelling) {
    Run(EnumerateInstances{"ht_BASE"});
    EXPECT_THAT(base.calls, ElementsAre("enumInstances root/cimv2 HT_Base L--D no list HT_Base "
                                        "HT_Base",
                                        "enumInstances root/cimv2 HT_Middle L--D no list HT_Base "
                                        "HT_Middle"));
    EXPECT_THAT(leaf.calls, ElementsAre("enumInstances root/cimv2 HT_Leaf L--D no list HT_Base "
                                        "HT_Leaf"));
    EXPECT_THAT(source.asked,
                ElementsAre("EnumerateInstances by anna: root/cimv2:HT_Base c++::Base",
                            "EnumerateInstances by anna: root/cimv2:HT_Middle c++::Base",
                            "EnumerateInstances by anna: root/cimv2:HT_Leaf c++::Leaf"));
}

TEST_F(Instances, EnumerationPassesFlagsAndListThrough) {
    OpenWBEM::StringArray list;
    list.push_back("id");
    list.push_back("No such");
    Run(EnumerateInstances{"HT_Leaf", false, false, true, true, list});
    Run(EnumerateInstances{"HT_Leaf", true, true, false, false, OpenWBEM::StringArray()});
    EXPECT_THAT(leaf.calls,
                ElementsAre("enumInstances root/cimv2 HT_Leaf -QO- [id,No such,] HT_Leaf HT_Leaf",
                            "enumInstances root/cimv2 HT_Leaf L--D [] HT_Leaf HT_Leaf"));
}

TEST_F(Instances, ShallowEnumerationCallsSubclassesToo) {
    Run(EnumerateInstances{"HT_Middle", true, false});
    EXPECT_EQ(base.calls.size(), 1U);
    EXPECT_EQ(leaf.calls.size(), 1U);
}

TEST_F(Instances, EnumerationDeliversWhatTheProviderHandsOver) {
    auto strange = Made("Another_Class", "1");
    strange.setProperty("NotOfTheClass", CIMValue(OpenWBEM::UInt8(3)));
    leaf.instances = {strange};
    OpenWBEM::StringArray list;
    list.push_back("Last");
    Run(EnumerateInstances{"HT_Leaf", true, false, false, false, list});
    ASSERT_THAT(sink.lines, ElementsAre("named /root/cimv2:Another_Class.Id=\"1\" Another_Class"));
    EXPECT_EQ(sink.instances[0].toString(), strange.toString());
}

TEST_F(Instances, InstanceWithoutKeysHasANameWithoutKeys) {
    CIMInstance instance("HT_Leaf");
    instance.setProperty("Id", CIMValue(String("1")));
    leaf.instances = {instance};
    Run(EnumerateInstances{"HT_Leaf"});
    EXPECT_THAT(sink.lines, ElementsAre("named /root/cimv2:HT_Leaf HT_Leaf"));
}

TEST_F(Instances, NamesAreDeliveredAsGiven) {
    leaf.paths = {Path("Any_Class", "Any", "1"), CIMObjectPath("HT_Leaf", "root/other")};
    Run(EnumerateInstanceNames{"ht_middle"});
    EXPECT_THAT(base.calls, ElementsAre("enumInstanceNames root/cimv2 HT_Middle HT_Middle"));
    EXPECT_THAT(leaf.calls, ElementsAre("enumInstanceNames root/cimv2 HT_Leaf HT_Leaf"));
    EXPECT_THAT(sink.lines, ElementsAre("path /:Any_Class.Any=\"1\"", "path /root/other:HT_Leaf"));
    EXPECT_THAT(source.asked,
                ElementsAre("EnumerateInstanceNames by anna: root/cimv2:HT_Middle c++::Base",
                            "EnumerateInstanceNames by anna: root/cimv2:HT_Leaf c++::Leaf"));
}

TEST_F(Instances, ClassWithoutProviderHasNone) {
    Run(EnumerateInstances{"HT_Nobody"});
    Run(EnumerateInstanceNames{"HT_Nobody"});
    EXPECT_THAT(sink.lines, IsEmpty());
    EXPECT_EQ(Failure(GetInstance{Path("HT_nobody", "Id", "1")}),
              "6 requested object could not be found (/root/cimv2:HT_nobody.Id=\"1\")");
}

TEST_F(Instances, ProviderThatThrowsLaterEndsTheEnumerationAfterItsResults) {
    base.instances = {Made("HT_Base", "1")};
    base.atEnd = [] { OW_THROWCIMMSG(OpenWBEM::CIMException::FAILED, "the tool failed"); };
    EXPECT_EQ(Failure(EnumerateInstances{"HT_Base"}), "1 general error (the tool failed)");
    EXPECT_THAT(sink.lines, ElementsAre("named /root/cimv2:HT_Base.Id=\"1\" HT_Base"));
    EXPECT_EQ(base.calls.size(), 1U);
}

TEST_F(Instances, OnlyCimExceptionsLeave) {
    struct Row {
        std::function<void()> action;
        const char* answer;
    };
    const Row rows[] = {
        {[] { OW_THROWCIM(OpenWBEM::CIMException::ACCESS_DENIED); },
         "2 Access to CIM resource unavailable to client"},
        {[] { OpenWBEM::CIMDateTime(String("nonsense")); }, nullptr},
        {[] { throw std::runtime_error("some text"); }, "1 some text"},
        {[] { throw std::bad_alloc(); }, "1 std::bad_alloc"},
        {[] { throw "text"; }, "1 Unknown Exception"},
    };
    for (const auto& row : rows) {
        leaf.atEnd = row.action;
        for (const Call& call :
             {Call(EnumerateInstances{"HT_Leaf"}), Call(EnumerateInstanceNames{"HT_Leaf"}),
              Call(GetInstance{Path("HT_Leaf", "Id", "1")})}) {
            if (row.answer != nullptr) {
                EXPECT_EQ(Failure(call), row.answer);
            } else {
                EXPECT_THAT(Failure(call), testing::StartsWith("1 "));
            }
        }
    }
}

TEST_F(Instances, GetInstanceHandsOverTheClientsClassNameAndNoNamespace) {
    leaf.answer = Made("HT_Leaf", "1");
    OpenWBEM::StringArray list;
    list.push_back("Id");
    auto path = Path("ht_LEAF", "ID", "1");
    path.setNameSpace("root/cimv2");
    Run(GetInstance{path, false, true, true, list});
    Run(GetInstance{path});
    EXPECT_THAT(leaf.calls,
                ElementsAre("getInstance root/cimv2 /:ht_LEAF.Id=\"1\" -QO [Id,] HT_Leaf",
                            "getInstance root/cimv2 /:ht_LEAF.Id=\"1\" L-- no list HT_Leaf"));
    EXPECT_THAT(sink.lines, ElementsAre("instance HT_Leaf", "instance HT_Leaf"));
    EXPECT_THAT(source.asked[0], "GetInstance by anna: root/cimv2:HT_Leaf c++::Leaf");
}

TEST_F(Instances, GetInstanceReplacesKeysThatTheClassLacksByNullOnes) {
    leaf.answer = Made("HT_Leaf", "1");
    Run(GetInstance{Path("HT_Leaf", "Wrong", "1")});
    const auto keys = leaf.askedFor.getKeys();
    ASSERT_EQ(keys.size(), 1U);
    EXPECT_EQ(keys[0].getName(), String("Id"));
    EXPECT_FALSE(keys[0].getValue());
}

TEST_F(Instances, GetInstanceWithoutKeysStaysWithout) {
    leaf.answer = Made("HT_Leaf", "1");
    Run(GetInstance{CIMObjectPath("HT_Leaf")});
    EXPECT_TRUE(leaf.askedFor.isClassPath());
}

TEST_F(Instances, GetInstanceDeliversTheAnswerUnchanged) {
    leaf.answer = Made("Another_Class", "2");
    leaf.answer.setProperty("NotOfTheClass", CIMValue(true));
    Run(GetInstance{Path("HT_Leaf", "Id", "1"), true, false, false, OpenWBEM::StringArray()});
    ASSERT_EQ(sink.instances.size(), 1U);
    EXPECT_EQ(sink.instances[0].toString(), leaf.answer.toString());
}

TEST_F(Instances, GetInstanceRefusesNullAndNamelessAnswers) {
    leaf.answer = CIMInstance(OpenWBEM::CIMNULL);
    EXPECT_EQ(Failure(GetInstance{Path("HT_Leaf", "Id", "1")}),
              "1 general error (Provider erroneously returned a NULL CIMInstance)");
    leaf.answer = CIMInstance();
    EXPECT_EQ(Failure(GetInstance{Path("HT_Leaf", "Id", "1")}),
              "1 general error (instance has no class name)");
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(Instances, GetInstanceAsksOnlyTheClassItself) {
    base.answer = Made("HT_Base", "1");
    Run(GetInstance{Path("HT_Base", "Id", "1")});
    EXPECT_EQ(base.calls.size(), 1U);
    EXPECT_THAT(leaf.calls, IsEmpty());
}

TEST_F(Instances, GetPropertyAsksForAnInstanceWithThatPropertyOnly) {
    leaf.answer = Made("HT_Leaf", "1");
    leaf.answer.setProperty("Number", CIMValue(OpenWBEM::UInt16(5)));
    Run(GetProperty{Path("ht_LEAF", "ID", "1"), "number"});
    EXPECT_THAT(leaf.calls,
                ElementsAre("getInstance root/cimv2 /:ht_LEAF.Id=\"1\" --- [number,] HT_Leaf"));
    EXPECT_THAT(sink.lines, ElementsAre("value uint16 5"));
    EXPECT_THAT(source.asked[0], "GetProperty by anna: root/cimv2:HT_Leaf c++::Leaf");
}

TEST_F(Instances, GetPropertyOfWhatTheInstanceLacksIsNull) {
    leaf.answer = Made("HT_Leaf", "1");
    Run(GetProperty{Path("HT_Leaf", "Id", "1"), "Last"});
    EXPECT_THAT(sink.lines, ElementsAre("value null"));
}

TEST_F(Instances, GetPropertyRefusals) {
    EXPECT_EQ(Failure(GetProperty{Path("HT_None", "Id", "1"), "Id"}),
              "5 class does not exist (/root/cimv2:HT_None)");
    EXPECT_EQ(Failure(GetProperty{Path("HT_Leaf", "Id", "1"), "Id"}, "root/none"),
              "3 namespace does not exist (root/none)");
    EXPECT_EQ(Failure(GetProperty{Path("HT_Nobody", "Id", "1"), "Id"}),
              "6 requested object could not be found (/root/cimv2:HT_Nobody.Id=\"1\")");
    leaf.answer = Made("HT_Leaf", "1");
    EXPECT_EQ(Failure(GetProperty{Path("HT_Leaf", "Id", "1"), "Extras"}),
              "12 specified property does not exist (Extras)");
    leaf.answer = CIMInstance();
    EXPECT_EQ(Failure(GetProperty{Path("HT_Leaf", "Id", "1"), "Id"}),
              "1 general error (instance has no class name)");
    leaf.answer = CIMInstance(OpenWBEM::CIMNULL);
    EXPECT_EQ(Failure(GetProperty{Path("HT_Leaf", "Id", "1"), "Id"}),
              "1 general error (Provider erroneously returned a NULL CIMInstance)");
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(Instances, GetPropertyOfAnUnknownInstanceIsNotFoundEvenWhenThePropertyIsUnknownToo) {
    leaf.atEnd = [] { OW_THROWCIM(OpenWBEM::CIMException::NOT_FOUND); };
    EXPECT_EQ(Failure(GetProperty{Path("HT_Leaf", "Id", "9"), "Extras"}),
              "6 requested object could not be found");
}

TEST_F(Instances, AClassWithOneKeyNeedsNoNameForIt) {
    leaf.answer = Made("HT_Leaf", "1");
    Run(GetInstance{Path("HT_Leaf", "", "1")});
    EXPECT_EQ(std::string(leaf.askedFor.toString().c_str()), "/:HT_Leaf.Id=\"1\"");
}

TEST_F(Instances, AKeyThatCannotHaveItsTypeIsNamed) {
    schema.AddText("[Provider(\"c++::Leaf\")] class HT_Numbered { [Key] uint8 Number; };", "more");
    EXPECT_EQ(Failure(GetInstance{Path("HT_Numbered", "number", "one")}),
              "1 general error (Key Number: Unable to convert \"one\" into UInt8)");
    EXPECT_THAT(leaf.calls, IsEmpty());
}

} // namespace
} // namespace operationstest
