#include "cimserver/operations/OperationsTest.hpp"

#include "OW_CIMDateTime.hpp"
#include "OW_CIMValue.hpp"

namespace operationstest {
namespace {

using namespace cimserver::operations; // the names of the calls
using OpenWBEM::CIMException;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMParamValue;
using OpenWBEM::CIMParamValueArray;
using OpenWBEM::CIMValue;
using OpenWBEM::String;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* mof = R"(
Qualifier Out : boolean = false, Scope(parameter), Flavor(DisableOverride);
Qualifier Required : boolean = false, Scope(parameter), Flavor(DisableOverride);

[Provider("c++::Leaf")]
class HT_Worker {
    [Key] string Id;
    uint32 Rest();
    string Typed([In] string Text, [In] uint8 Number, [In] boolean Flag, [In] datetime When,
                 [In] string Texts[], [In] uint16 Numbers[], [In] HT_Worker REF Other);
    uint8 Needs([Required, In] string Must, [In] string May, [In, Required(false)] string Can);
    uint8 Outs([In(false), Out] uint16 Number, [In(false), Out] string Texts[],
               [In, Out] string Both, [Out] sint8 Bare);
    [Provider("c++::Base")] uint8 Elsewhere();
    [Provider("c++::Missing")] uint8 Nowhere();
};
[Provider("c++::Leaf")] class HT_Crew { uint32 Rest(); };
class HT_Jobless { [Key] string Id; uint32 Rest(); };
class HT_Freelance { [Provider("c++::Base")] uint32 Rest(); };
)";

CIMParamValueArray Sent(std::initializer_list<CIMParamValue> parameters) {
    CIMParamValueArray sent;
    for (const CIMParamValue& parameter : parameters) {
        sent.push_back(parameter);
    }
    return sent;
}

CIMParamValue Of(const char* name, const char* text) {
    return CIMParamValue(name, CIMValue(String(text)));
}

OpenWBEM::StringArray Texts(std::initializer_list<const char*> texts) {
    OpenWBEM::StringArray array;
    for (const char* text : texts) {
        array.push_back(text);
    }
    return array;
}

const CIMObjectPath worker("HT_Worker");

class Methods : public OperationsTest {
protected:
    Methods() {
        schema.AddText(mof, "methods.mof");
        leaf.answer = CIMInstance("HT_Worker");
    }

    /// The parameters with which the provider was called, or the refusal.
    std::string InOf(const char* method, const CIMParamValueArray& sent) {
        leaf.calls.clear();
        const std::string failure = Failure(InvokeMethod{worker, method, sent});
        if (failure != "no failure") {
            EXPECT_THAT(leaf.calls, IsEmpty());
            return failure;
        }
        const std::string& call = leaf.calls.back();
        const auto start = call.find('(') + 1;
        return call.substr(start, call.rfind(") out(") - start);
    }
};

TEST_F(Methods, ClassPathCallsTheMethodOnly) {
    leaf.method = [](CIMParamValueArray&) { return CIMValue(OpenWBEM::UInt32(7)); };
    Run(InvokeMethod{CIMObjectPath("ht_WORKER", "root/elsewhere"), "REST", {}});
    EXPECT_THAT(leaf.calls,
                ElementsAre("invokeMethod root/cimv2 /root/cimv2:ht_WORKER REST() out()"));
    EXPECT_THAT(sink.lines, ElementsAre("returned uint32 7()"));
    EXPECT_THAT(source.asked, ElementsAre("InvokeMethod REST by anna: root/cimv2:HT_Worker "
                                          "c++::Leaf Rest"));
}

TEST_F(Methods, InstancePathIsLookedForFirst) {
    Run(InvokeMethod{Path("ht_WORKER", "ID", "1"), "Rest", {}});
    EXPECT_THAT(
        leaf.calls,
        ElementsAre("getInstance root/cimv2 /root/cimv2:ht_WORKER.Id=\"1\" -QO no list HT_Worker",
                    "invokeMethod root/cimv2 /root/cimv2:ht_WORKER.Id=\"1\" Rest() out()"));
    EXPECT_THAT(sink.lines, ElementsAre("returned null()"));
}

TEST_F(Methods, InstanceThatIsNotThereIsNotFoundWhateverTheReason) {
    const std::string text = "6 requested object could not be found (Instance not found: "
                             "/root/cimv2:HT_Worker.Id=\"9\")";
    const auto path = Path("HT_Worker", "Id", "9");
    leaf.atEndOfGet = [] { OW_THROWCIMMSG(CIMException::ACCESS_DENIED, "not you"); };
    EXPECT_EQ(Failure(InvokeMethod{path, "Rest", {}}), text);
    EXPECT_EQ(Failure(InvokeMethod{path, "NoSuchMethod", {}}), text);
    leaf.atEndOfGet = [] {};
    leaf.answer = CIMInstance(OpenWBEM::CIMNULL);
    EXPECT_EQ(Failure(InvokeMethod{path, "Rest", {}}), text);
    EXPECT_EQ(leaf.calls.size(), 3U);
}

TEST_F(Methods, OtherExceptionsOfGetInstancePass) {
    leaf.atEndOfGet = [] { OpenWBEM::CIMDateTime(String("nonsense")); };
    EXPECT_EQ(Failure(InvokeMethod{Path("HT_Worker", "Id", "9"), "Rest", {}}),
              "1 Invalid format for date time");
    leaf.atEndOfGet = [] { throw 7; };
    EXPECT_EQ(Failure(InvokeMethod{Path("HT_Worker", "Id", "9"), "Rest", {}}),
              "1 Unknown Exception");
}

TEST_F(Methods, InstanceWithoutClassNameIsThere) {
    leaf.answer = CIMInstance();
    Run(InvokeMethod{Path("HT_Worker", "Id", "1"), "Rest", {}});
    EXPECT_EQ(leaf.calls.size(), 2U);
}

TEST_F(Methods, WrongKeysAreNullOnesAndKeysOfAKeylessClassAreDropped) {
    Run(InvokeMethod{Path("HT_Worker", "Wrong", "1"), "Rest", {}});
    EXPECT_EQ(leaf.calls.back(),
              "invokeMethod root/cimv2 /root/cimv2:HT_Worker.Id=\"null\" Rest() out()");
    leaf.calls.clear();
    Run(InvokeMethod{Path("HT_Crew", "Wrong", "1"), "Rest", {}});
    EXPECT_THAT(leaf.calls,
                ElementsAre("invokeMethod root/cimv2 /root/cimv2:HT_Crew Rest() out()"));
}

TEST_F(Methods, Refusals) {
    EXPECT_EQ(Failure(InvokeMethod{CIMObjectPath("HT_None"), "Rest", {}}),
              "6 requested object could not be found (/root/cimv2:HT_None)");
    EXPECT_EQ(Failure(InvokeMethod{worker, "Rest", {}}, "root/none"),
              "3 namespace does not exist (root/none)");
    EXPECT_EQ(Failure(InvokeMethod{worker, "Work", {}}),
              "17 extrinsic method does not exist (Work)");
    EXPECT_EQ(Failure(InvokeMethod{Path("HT_Jobless", "Id", "1"), "Rest", {}}),
              "6 requested object could not be found (Instance not found: "
              "/root/cimv2:HT_Jobless.Id=\"1\")");
    EXPECT_THAT(leaf.calls, IsEmpty());
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(Methods, WithoutProviderNothingElseIsChecked) {
    const std::string text = "6 requested object could not be found (No provider for method ";
    const auto wrong = Sent({Of("Unknown", "x")});
    EXPECT_EQ(Failure(InvokeMethod{CIMObjectPath("HT_Jobless"), "rest", wrong}), text + "rest)");
    EXPECT_EQ(Failure(InvokeMethod{worker, "Nowhere", wrong}), text + "Nowhere)");
    leaf.servesMethods = false;
    EXPECT_EQ(Failure(InvokeMethod{worker, "Rest", wrong}), text + "Rest)");
}

TEST_F(Methods, OwnQualifierOfAMethodCountsBeforeThatOfItsClass) {
    base.method = [](CIMParamValueArray&) { return CIMValue(OpenWBEM::UInt8(1)); };
    Run(InvokeMethod{Path("HT_Worker", "Id", "1"), "elsewhere", {}});
    EXPECT_THAT(leaf.calls, ElementsAre(testing::StartsWith("getInstance ")));
    EXPECT_THAT(base.calls, ElementsAre(testing::StartsWith("invokeMethod ")));
    EXPECT_EQ(source.asked.back(),
              "InvokeMethod elsewhere by anna: root/cimv2:HT_Worker c++::Base Elsewhere");
    Run(InvokeMethod{CIMObjectPath("HT_Freelance"), "Rest", {}});
    EXPECT_EQ(base.calls.size(), 2U);
}

TEST_F(Methods, ParametersArriveInDeclaredOrderAndTypeWithTheClientsSpelling) {
    EXPECT_EQ(InOf("Typed", Sent({Of("FLAG", "true"), Of("number", "5"),
                                  CIMParamValue("Other", CIMValue(Path("HT_Worker", "Id", "2"))),
                                  Of("When", "20250102030405.000000+000"), Of("Text", " a ")})),
              "Text=string  a ,number=uint8 5,FLAG=boolean true,When=datetime "
              "20250102030405.000000+000,Texts=null,Numbers=null,Other=REF /:HT_Worker.Id=\"2\"");
}

TEST_F(Methods, ParametersThatAreMissingAreNull) {
    EXPECT_EQ(InOf("Typed", {}),
              "Text=null,Number=null,Flag=null,When=null,Texts=null,Numbers=null,Other=null");
    EXPECT_EQ(InOf("Typed", Sent({CIMParamValue(OpenWBEM::CIMName("text"))})),
              "text=null,Number=null,Flag=null,When=null,Texts=null,Numbers=null,Other=null");
}

TEST_F(Methods, ArraysAreConvertedAndScalarsOfTheRightTypeStayScalars) {
    EXPECT_EQ(InOf("Typed", Sent({CIMParamValue("Texts", CIMValue(Texts({"a", "b"}))),
                                  CIMParamValue("Numbers", CIMValue(Texts({"1", "2"})))})),
              "Text=null,Number=null,Flag=null,When=null,Texts=string[] a,b,Numbers=uint16[] 1,2,"
              "Other=null");
    EXPECT_EQ(InOf("Typed", Sent({Of("Texts", "a"), Of("Numbers", "1")})),
              "Text=null,Number=null,Flag=null,When=null,Texts=string a,Numbers=uint16[] 1,"
              "Other=null");
}

TEST_F(Methods, TypedValuesAreConvertedToo) {
    EXPECT_EQ(InOf("Typed", Sent({CIMParamValue("Text", CIMValue(OpenWBEM::UInt8(5))),
                                  CIMParamValue("Number", CIMValue(OpenWBEM::Int64(200)))})),
              "Text=string 5,Number=uint8 200,Flag=null,When=null,Texts=null,Numbers=null,"
              "Other=null");
}

TEST_F(Methods, ValuesThatDoNotFitAreRefused) {
    const std::string refused = "4 invalid parameter passed to method (Parameter Number: ";
    EXPECT_EQ(InOf("Typed", Sent({Of("Number", "300")})),
              refused + "Unable to convert \"300\" into UInt8)");
    EXPECT_EQ(InOf("Typed", Sent({Of("Number", "five")})),
              refused + "Unable to convert \"five\" into UInt8)");
    EXPECT_EQ(
        InOf("Typed", Sent({CIMParamValue("Flag", CIMValue(OpenWBEM::UInt8(1)))})).substr(0, 2),
        "4 ");
    EXPECT_EQ(InOf("Typed", Sent({CIMParamValue("Other", CIMValue(true))})).substr(0, 2), "4 ");
    // A text that is no date is no CIMException.
    EXPECT_EQ(InOf("Typed", Sent({Of("When", "tomorrow")})),
              "1 general error (Parameter When: Invalid format for date time)");
}

TEST_F(Methods, RequiredParametersMustBeSentButMayBeNull) {
    const std::string missing =
        "4 invalid parameter passed to method (Parameter Must was not specified.)";
    EXPECT_EQ(InOf("Needs", {}), missing);
    EXPECT_EQ(InOf("Needs", Sent({Of("May", "x")})), missing);
    EXPECT_EQ(InOf("Needs", Sent({Of("MUST", "x")})), "MUST=string x,May=null,Can=null");
    EXPECT_EQ(InOf("Needs", Sent({CIMParamValue(OpenWBEM::CIMName("Must"))})),
              "Must=null,May=null,Can=null");
}

TEST_F(Methods, UnknownAndRepeatedParametersAreRefused) {
    const std::string refused =
        "4 invalid parameter passed to method (Unknown or duplicate parameter: ";
    EXPECT_EQ(InOf("Rest", Sent({Of("extra", "x")})), refused + "extra)");
    EXPECT_EQ(InOf("Needs", Sent({Of("Must", "x"), Of("Musts", "x")})), refused + "Musts)");
    EXPECT_EQ(InOf("Needs", Sent({Of("Must", "x"), Of("must", "y")})), refused + "must)");
    EXPECT_EQ(InOf("Outs", Sent({Of("Number", "1")})), refused + "Number)");
}

TEST_F(Methods, OutParametersArePrepared) {
    Run(InvokeMethod{worker, "Outs", Sent({Of("BOTH", "in")})});
    EXPECT_EQ(leaf.calls.back(),
              "invokeMethod root/cimv2 /root/cimv2:HT_Worker Outs(BOTH=string in,Bare=null) "
              "out(Number=null,Texts=null,Both=string in,Bare=null)");
    EXPECT_THAT(sink.lines,
                ElementsAre("returned null(Number=null,Texts=null,Both=string in,Bare=null)"));
}

TEST_F(Methods, OutParametersGetTheirDeclaredTypes) {
    leaf.method = [](CIMParamValueArray& out) {
        out[0].setValue(CIMValue(String("5")));
        out[1].setValue(CIMValue(String("one")));
        out[2].setValue(CIMValue(OpenWBEM::UInt64(7)));
        return CIMValue(String("any type"));
    };
    Run(InvokeMethod{worker, "Outs", {}});
    EXPECT_THAT(sink.lines, ElementsAre("returned string any type(Number=uint16 5,Texts=string[] "
                                        "one,Both=string 7,Bare=null)"));
}

TEST_F(Methods, OutParametersThatWereAppendedStayAsTheyAre) {
    leaf.method = [](CIMParamValueArray& out) {
        out.push_back(CIMParamValue("Number", CIMValue(String("again"))));
        return CIMValue(OpenWBEM::CIMNULL);
    };
    Run(InvokeMethod{worker, "Outs", {}});
    EXPECT_THAT(sink.lines, ElementsAre("returned null(Number=null,Texts=null,Both=null,Bare=null,"
                                        "Number=string again)"));
}

TEST_F(Methods, OutParametersThatFailTheirTypeOrWereTakenAwayFailTheCall) {
    leaf.method = [](CIMParamValueArray& out) {
        out[0].setValue(CIMValue(String("many")));
        return CIMValue(OpenWBEM::CIMNULL);
    };
    EXPECT_EQ(Failure(InvokeMethod{worker, "Outs", {}}),
              "1 general error (Unable to convert \"many\" into UInt16)");
    leaf.method = [](CIMParamValueArray& out) {
        out.pop_back();
        return CIMValue(OpenWBEM::CIMNULL);
    };
    EXPECT_EQ(Failure(InvokeMethod{worker, "Outs", {}}),
              "1 Array Index out of bounds. size = 3, index = 3");
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(Methods, OnlyCimExceptionsLeave) {
    struct Row {
        std::function<void()> action;
        const char* answer;
    };
    const Row rows[] = {
        {[] { OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, "Path"); },
         "4 invalid parameter passed to method (Path)"},
        {[] { CIMInstance().getPropertyT("Id"); }, "1 Id"},
        {[] { throw std::runtime_error("some text"); }, "1 some text"},
        {[] { throw 7; }, "1 Unknown Exception"},
    };
    for (const auto& row : rows) {
        leaf.method = [&row](CIMParamValueArray&) {
            row.action();
            return CIMValue(OpenWBEM::CIMNULL);
        };
        EXPECT_EQ(Failure(InvokeMethod{worker, "Rest", {}}), row.answer);
    }
}

} // namespace
} // namespace operationstest
