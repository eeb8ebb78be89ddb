// Methods are called by a real client, which sends its parameters without types.

#include "e2e/ShelfTest.hpp"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Methods : public e2e::ShelfTest {};

TEST_F(Methods, ParametersArriveInDeclaredTypesAndOrder) {
    EXPECT_THAT(
        Printed("cm", "ET_Item",
                R"('Describe.Flag=true,Texts="x","y",Text="a b",When=20250102030405.000000+000,)"
                R"(Number=5')"),
        ElementsAre("ET_Item Describe: Text=string a b; Number=uint8 5; Flag=boolean true; "
                    "When=datetime 20250102030405.000000+000; Texts=string[] x,y; Other=null; , "
                    "Seen (string): /root/cimv2:ET_Item, Numbers (uint16): 1,2"));
}

TEST_F(Methods, ReferencesArrive) {
    EXPECT_THAT(Wbemcli("cm", "ET_Item", R"('Describe.Other=ET_Item.Id="1"')").text,
                HasSubstr(R"(Other=REF http://127.0.0.1/root/cimv2:ET_Item.Id=\"1\";)"));
}

TEST_F(Methods, MissingParametersAreNullAndNullResultsAreLeftOut) {
    EXPECT_THAT(
        Printed("cm", R"(ET_Item.Id="1")", "Describe"),
        ElementsAre(R"(ET_Item.Id="1" Describe: Text=null; Number=null; Flag=null; )"
                    R"(When=null; Texts=null; Other=null; , )"
                    R"(Seen (string): /root/cimv2:ET_Item.Id=\"1\", Numbers (uint16): 1,2)"));
    EXPECT_THAT(Printed("cm", "ET_Item", "Silent"), IsEmpty());
}

TEST_F(Methods, TheAnswerIsThatOfTheStandard) {
    EXPECT_THAT(
        Wbemcli("cmx", "ET_Item", "Describe").text,
        HasSubstr(
            R"(<METHODRESPONSE NAME="Describe"><RETURNVALUE PARAMTYPE="string"><VALUE>Text=null; )"
            R"(Number=null; Flag=null; When=null; Texts=null; Other=null; </VALUE></RETURNVALUE>)"
            R"(<PARAMVALUE NAME="Seen" PARAMTYPE="string"><VALUE>/root/cimv2:ET_Item</VALUE>)"
            R"(</PARAMVALUE><PARAMVALUE NAME="Numbers" PARAMTYPE="uint16"><VALUE.ARRAY>)"
            R"(<VALUE>1</VALUE><VALUE>2</VALUE></VALUE.ARRAY></PARAMVALUE></METHODRESPONSE>)"));
}

TEST_F(Methods, Refusals) {
    const std::string notFound = "CIM_ERR_NOT_FOUND: requested object could not be found (";
    const std::string invalid = "CIM_ERR_INVALID_PARAMETER: invalid parameter passed to method (";
    EXPECT_EQ(Failure("cm", R"(ET_Item.Id="9")", "Silent"),
              notFound + "Instance not found: /root/cimv2:ET_Item.Id=\"9\")");
    EXPECT_EQ(Failure("cm", "ET_Item", "Vanish"),
              "CIM_ERR_METHOD_NOT_FOUND: extrinsic method does not exist (Vanish)");
    EXPECT_THAT(Failure("cm", "ET_Item", "Gone"),
                testing::StartsWith(notFound +
                                    "No provider for method Gone: Invalid provider: "
                                    "Gone: there is no provider library libGone.so in "));
    EXPECT_EQ(Failure("cm", "ET_Sealed", "Open"), notFound + "No provider for method Open)");
    EXPECT_EQ(Failure("cm", "ET_Unserved", "Open"), notFound + "No provider for method Open)");
    EXPECT_EQ(Failure("cm", R"(ET_Unserved.Id="1")", "Open"),
              notFound + "Instance not found: /root/cimv2:ET_Unserved.Id=\"1\")");
    EXPECT_EQ(Failure("cm", "ET_Item", "Needs"), invalid + "Parameter Must was not specified.)");
    EXPECT_EQ(Failure("cm", "ET_Item", "Describe.Number=500"),
              invalid + "Parameter Number: Unable to convert \"500\" into UInt8)");
    EXPECT_EQ(Failure("cm", "ET_Item", "Describe.When=soon"),
              "CIM_ERR_FAILED: general error (Parameter When: Invalid format for date time)");
}

TEST_F(Methods, WhatAMethodThrowsArrives) {
    EXPECT_EQ(Failure("cm", "ET_Item", "Fail.How=cim"),
              "CIM_ERR_ACCESS_DENIED: Access to CIM resource unavailable to client (line one"
              "&#10;line two)");
    EXPECT_EQ(Failure("cm", "ET_Item", "Fail.How=other"), "CIM_ERR_FAILED: no CIM exception");
    EXPECT_EQ(Failure("cm", "ET_Item", "Fail.How=x"), "CIM_ERR_FAILED: Unknown Exception");
    EXPECT_THAT(Printed("cm", "ET_Item", "Needs.Must=x"), ElementsAre("ET_Item Needs: 0"));
}

/// wbemcli asks for the class first and sends only what that declares.
class MethodsByHand : public e2e::ShelfTest {
protected:
    /// `CODE: DESCRIPTION` of the answer, which must be an error.
    std::string ErrorOf(const std::string& object, const std::string& parameters) {
        const std::string body =
            Post(test_support::ExtrinsicCall("Needs", object, parameters)).body;
        const std::string start = "<ERROR CODE=\"";
        const std::string between = "\" DESCRIPTION=\"";
        const std::size_t code = body.find(start) + start.size();
        const std::size_t text = body.find(between, code);
        if (text == std::string::npos) {
            ADD_FAILURE() << body;
            return body;
        }
        const std::size_t end = body.find("\"></ERROR>", text);
        return body.substr(code, text - code) + ": " +
               body.substr(text + between.size(), end - text - between.size());
    }
};

const std::string itemClass = R"(<CLASSNAME NAME="ET_Item"/>)";

TEST_F(MethodsByHand, UnknownClassesAndKeysAreNotFound) {
    EXPECT_EQ(ErrorOf(R"(<CLASSNAME NAME="ET_None"/>)", ""),
              "6: requested object could not be found (/root/cimv2:ET_None)");
    EXPECT_EQ(ErrorOf(R"(<INSTANCENAME CLASSNAME="ET_Item"><KEYBINDING NAME="Wrong"><KEYVALUE>1)"
                      R"(</KEYVALUE></KEYBINDING></INSTANCENAME>)",
                      ""),
              "6: requested object could not be found (Instance not found: "
              "/root/cimv2:ET_Item.Id=&quot;null&quot;)");
}

TEST_F(MethodsByHand, ParametersThatDoNotFitAreRefused) {
    const std::string must = R"(<PARAMVALUE NAME="Must"><VALUE>x</VALUE></PARAMVALUE>)";
    const std::string start = "4: invalid parameter passed to method (";
    EXPECT_EQ(ErrorOf(itemClass, must + must), start + "Unknown or duplicate parameter: Must)");
    EXPECT_EQ(ErrorOf(itemClass, must + R"(<PARAMVALUE NAME="May"/>)"),
              start + "Unknown or duplicate parameter: May)");
    EXPECT_EQ(ErrorOf(itemClass, R"(<PARAMVALUE NAME="Must" PARAMTYPE="uint8"><VALUE>x</VALUE>)"
                                 R"(</PARAMVALUE>)"),
              start + "Parameter Must: &quot;x&quot; is no uint8)");
}

TEST_F(MethodsByHand, AnotherNamespaceIsRefused) {
    std::string body = test_support::ExtrinsicCall("Needs", itemClass, "");
    body.replace(body.find("cimv2"), 5, "other");
    EXPECT_THAT(Post(body).body,
                HasSubstr("<METHODRESPONSE NAME=\"Needs\"><ERROR CODE=\"3\" DESCRIPTION=\""
                          "namespace does not exist (root/other)\"></ERROR></METHODRESPONSE>"));
}

} // namespace
