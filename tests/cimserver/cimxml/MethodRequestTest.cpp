// From a METHODCALL to the call of a method.
#include "Support.hpp"

#include "OW_CIM.hpp"

#include <gtest/gtest.h>

namespace {

using cimserver::operations::InvokeMethod;
using cimxml_test::Read;
using cimxml_test::RefusalOf;
using cimxml_test::Shown;
using test_support::ExtrinsicCall;

const std::string classA = R"(<CLASSNAME NAME="A"/>)";
const std::string instanceA =
    R"(<INSTANCENAME CLASSNAME="A"><KEYBINDING NAME="K"><KEYVALUE>1</KEYVALUE></KEYBINDING></INSTANCENAME>)";

std::string PathOf(const std::string& object) {
    return Read<InvokeMethod>(ExtrinsicCall("Run", object, "")).objectName.toString().c_str();
}

std::string Sent(const std::string& attributes, const std::string& value) {
    return "<PARAMVALUE " + attributes + ">" + value + "</PARAMVALUE>";
}

/// The parameters that arrive as `NAME=TYPE VALUE;`.
std::string Parameters(const std::string& parameters) {
    const auto call = Read<InvokeMethod>(ExtrinsicCall("Run", classA, parameters));
    std::string text;
    for (const OpenWBEM::CIMParamValue& parameter : call.parameters) {
        text.append(parameter.getName().c_str()).append("=");
        text.append(Shown(parameter.getValue())).append(";");
    }
    return text;
}

std::string Refused(const std::string& parameters) {
    return RefusalOf(ExtrinsicCall("Run", classA, parameters));
}

TEST(MethodRequest, NamesItsMethodAndObject) {
    EXPECT_EQ(Read<InvokeMethod>(ExtrinsicCall("run It", classA, "")).methodName, "run It");
    EXPECT_EQ(PathOf(classA), "/root/cimv2:A");
    EXPECT_EQ(PathOf(instanceA), R"(/root/cimv2:A.K="1")");
    EXPECT_EQ(PathOf(R"(<INSTANCENAME CLASSNAME="A"/>)"), "/root/cimv2:A");
}

TEST(MethodRequest, NamespaceAndUserArrive) {
    cimxml_test::FakeExecutor executor;
    cimxml_test::Ask(ExtrinsicCall("Run", instanceA, ""), executor);
    EXPECT_EQ(executor.last->nameSpace, "root/cimv2");
    EXPECT_EQ(executor.last->user, "somebody");
}

TEST(MethodRequest, ValuesWithoutTypeAreStrings) {
    EXPECT_EQ(
        Parameters(Sent(R"(NAME="B")", "<VALUE> 5 </VALUE>") + Sent(R"(NAME="A")", "<VALUE/>") +
                   Sent(R"(NAME="C")", "<VALUE.ARRAY><VALUE>x</VALUE><VALUE/></VALUE.ARRAY>") +
                   Sent(R"(NAME="D")", "<VALUE.ARRAY/>")),
        "B=string  5 ;A=string ;C=string[] x,;D=string[] ;");
}

TEST(MethodRequest, ValuesWithTypeHaveIt) {
    const auto typed = [](const char* type, const char* text) {
        return Parameters(Sent(R"(NAME="P" PARAMTYPE=")" + std::string(type) + '"',
                               "<VALUE>" + std::string(text) + "</VALUE>"));
    };
    EXPECT_EQ(typed("string", " x "), "P=string  x ;");
    EXPECT_EQ(typed("uint8", " 200\n"), "P=uint8 200;");
    EXPECT_EQ(typed("sint64", "-5"), "P=sint64 -5;");
    EXPECT_EQ(typed("boolean", "True"), "P=boolean true;");
    EXPECT_EQ(typed("char16", " "), "P=char16  ;");
    EXPECT_EQ(typed("real64", "1.5"), "P=real64 1.5;");
    EXPECT_EQ(typed("datetime", "20250102030405.000000+000"),
              "P=datetime 20250102030405.000000+000;");
    EXPECT_EQ(Parameters(Sent(R"(NAME="P" PARAMTYPE="uint16")",
                              "<VALUE.ARRAY><VALUE>1</VALUE><VALUE> 2</VALUE></VALUE.ARRAY>")),
              "P=uint16[] 1,2;");
}

TEST(MethodRequest, ReferencesOfEveryForm) {
    const std::string nameSpace =
        R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="x"/></LOCALNAMESPACEPATH>)";
    const std::string full = "<VALUE.REFERENCE><INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST>" +
                             nameSpace + "</NAMESPACEPATH>" + instanceA +
                             "</INSTANCEPATH></VALUE.REFERENCE>";
    const std::string plain = "<VALUE.REFERENCE>" + classA + "</VALUE.REFERENCE>";
    EXPECT_EQ(Parameters(Sent(R"(NAME="P" PARAMTYPE="reference")", full)),
              R"(P=REF http://h/x:A.K="1";)");
    EXPECT_EQ(Parameters(Sent(R"(NAME="P")", plain)), "P=REF /:A;");
    EXPECT_EQ(
        Parameters(Sent(R"(NAME="P")", "<VALUE.REFARRAY>" + plain + full + "</VALUE.REFARRAY>")),
        R"(P=REF[] /:A,http://h/x:A.K="1";)");
}

TEST(MethodRequest, AParameterWithoutValueIsNullAndNoneIsDropped) {
    EXPECT_EQ(Parameters(Sent(R"(NAME="P" PARAMTYPE="uint8")", "") +
                         Sent(R"(NAME="p")", "<VALUE>2</VALUE>") +
                         Sent(R"(NAME="P")", "<VALUE>3</VALUE>")),
              "P=null;p=string 2;P=string 3;");
}

TEST(MethodRequest, ValuesThatCannotBeReadAreRefusedByName) {
    const std::string start = "4: invalid parameter passed to method (Parameter P";
    EXPECT_EQ(Refused(Sent(R"(NAME="P" PARAMTYPE="uint8")", "<VALUE>300</VALUE>")),
              start + ": &quot;300&quot; is no uint8)");
    EXPECT_EQ(Refused(Sent(R"(NAME="P" PARAMTYPE="uint8")", "<VALUE> </VALUE>")),
              start + ": &quot; &quot; is no uint8)");
    EXPECT_EQ(Refused(Sent(R"(NAME="P" PARAMTYPE="datetime")", "<VALUE>soon</VALUE>")),
              start + ": &quot;soon&quot; is no datetime)");
    EXPECT_EQ(Refused(Sent(R"(NAME="P" PARAMTYPE="uint8")",
                           "<VALUE.ARRAY><VALUE>1</VALUE><VALUE>x</VALUE></VALUE.ARRAY>")),
              start + ": &quot;1,x&quot; is no uint8)");
    EXPECT_EQ(Refused(Sent(R"(NAME="P")", "<VALUE.ARRAY><VALUE.NULL/></VALUE.ARRAY>")),
              start + " holds an element without value)");
    EXPECT_EQ(Refused(Sent(R"(NAME="P")", "<VALUE.REFARRAY><VALUE.NULL/></VALUE.REFARRAY>")),
              start + " holds an element without value)");
    EXPECT_EQ(Refused(Sent(R"(NAME="P")", R"(<INSTANCE CLASSNAME="A"/>)")),
              start + " is neither a simple value nor a reference)");
}

TEST(MethodRequest, WhatDoesNotFitTheDtdIsNoRequest) {
    const std::string refused = "400 request-not-loosely-valid";
    EXPECT_EQ(Refused(Sent(R"(PARAMTYPE="uint8")", "<VALUE>1</VALUE>")), refused);
    EXPECT_EQ(Refused(Sent(R"(NAME="P" PARAMTYPE="text")", "<VALUE>1</VALUE>")), refused);
    EXPECT_EQ(Refused(Sent(R"(NAME="P")", "<VALUE>1</VALUE><VALUE>2</VALUE>")), refused);
    EXPECT_EQ(Refused(Sent(R"(NAME="P")", "<VALUE.ARRAY><VALUE.ARRAY/></VALUE.ARRAY>")), refused);
    EXPECT_EQ(Refused(Sent(R"(NAME="P")", "<VALUE.REFARRAY><VALUE/></VALUE.REFARRAY>")), refused);
    EXPECT_EQ(Refused(Sent(R"(NAME="P")", "<VALUE.REFERENCE><VALUE/></VALUE.REFERENCE>")), refused);
    EXPECT_EQ(Refused(R"(<IPARAMVALUE NAME="P"><VALUE>1</VALUE></IPARAMVALUE>)"), refused);
    EXPECT_EQ(RefusalOf(ExtrinsicCall("Run", "<VALUE/>", "")), refused);
    std::string body = ExtrinsicCall("Run", classA, "");
    const std::string object = "LOCALCLASSPATH>";
    body.replace(body.find(object), object.size(), "CLASSPATH>");
    body.replace(body.rfind(object), object.size(), "CLASSPATH>");
    EXPECT_EQ(RefusalOf(body), refused);
}

} // namespace
