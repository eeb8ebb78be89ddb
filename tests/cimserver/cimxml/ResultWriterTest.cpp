// The answers of methods, of associations, and of the operations on properties and instances.
#include "Support.hpp"

#include "OW_CIM.hpp"

#include <gtest/gtest.h>

namespace {

using namespace OpenWBEM;
using cimxml_test::Ask;
using cimxml_test::Between;
using cimxml_test::ErrorIn;
using cimxml_test::FakeExecutor;
using cimxml_test::Parameter;
using cimxml_test::Request;
using cimxml_test::Results;
using cimxml_test::ResultSink;
using cimxml_test::ReturnValue;
using test_support::ExtrinsicCall;
using test_support::IntrinsicCall;

/// What stands within SIMPLERSP when the answer to this body is made by `action`.
std::string Response(const std::string& body, const std::function<void(ResultSink&)>& action) {
    FakeExecutor executor([&](const Request&, ResultSink& sink) { action(sink); });
    const std::string answer = Ask(body, executor).text;
    const std::string error = ErrorIn(answer);
    return error == answer ? Between(answer, "<SIMPLERSP>", "</SIMPLERSP>") : error;
}

std::string MethodResponse(const CIMValue& value, const CIMParamValueArray& out = {}) {
    const std::string response = Response(ExtrinsicCall("Run", R"(<CLASSNAME NAME="A"/>)", ""),
                                          [&](ResultSink& sink) { sink.MethodResult(value, out); });
    const bool isError = response.find("METHODRESPONSE") == std::string::npos;
    return isError ? response
                   : Between(response, "<METHODRESPONSE NAME=\"Run\">", "</METHODRESPONSE>");
}

const CIMValue null(CIMNULL);

CIMParamValueArray Out(const char* name, const CIMValue& value) {
    CIMParamValueArray out;
    out.push_back(CIMParamValue(CIMName(name), value));
    return out;
}

CIMObjectPath FullPath(const char* className) {
    CIMObjectPath path(CIMName(className), String("root/x"));
    path.setHost("srv & co");
    return path;
}

CIMObjectPath KeyedPath() {
    CIMObjectPath path = FullPath("ZNX_A");
    path.setKeyValue("K", CIMValue("a<b"));
    return path;
}

const std::string nameSpacePath =
    R"(<NAMESPACEPATH><HOST>srv &amp; co</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME="root">)"
    R"(</NAMESPACE><NAMESPACE NAME="x"></NAMESPACE></LOCALNAMESPACEPATH></NAMESPACEPATH>)";
const std::string keyedPath =
    "<INSTANCEPATH>" + nameSpacePath +
    R"(<INSTANCENAME CLASSNAME="ZNX_A"><KEYBINDING NAME="K"><KEYVALUE VALUETYPE="string">a&lt;b)"
    R"(</KEYVALUE></KEYBINDING></INSTANCENAME></INSTANCEPATH>)";
const std::string keylessPath = "<INSTANCEPATH>" + nameSpacePath +
                                R"(<INSTANCENAME CLASSNAME="ZNX_A"></INSTANCENAME></INSTANCEPATH>)";
const std::string classPath =
    "<CLASSPATH>" + nameSpacePath + R"(<CLASSNAME NAME="ZNX_A"></CLASSNAME></CLASSPATH>)";

TEST(MethodAnswer, ReturnValuesHaveTheirOwnType) {
    const std::pair<CIMValue, const char*> rows[] = {
        {CIMValue(String("a & b")),
         R"(<RETURNVALUE PARAMTYPE="string"><VALUE>a &amp; b</VALUE></RETURNVALUE>)"},
        {CIMValue(String("")), R"(<RETURNVALUE PARAMTYPE="string"><VALUE></VALUE></RETURNVALUE>)"},
        {CIMValue(Int8(-1)), R"(<RETURNVALUE PARAMTYPE="sint8"><VALUE>-1</VALUE></RETURNVALUE>)"},
        {CIMValue(true), R"(<RETURNVALUE PARAMTYPE="boolean"><VALUE>TRUE</VALUE></RETURNVALUE>)"},
    };
    for (const auto& [value, text] : rows) {
        EXPECT_EQ(MethodResponse(value), text);
    }
    EXPECT_EQ(MethodResponse(CIMValue(KeyedPath())),
              R"(<RETURNVALUE PARAMTYPE="reference"><VALUE.REFERENCE>)" + keyedPath +
                  "</VALUE.REFERENCE></RETURNVALUE>");
}

TEST(MethodAnswer, NullValuesAreLeftOut) {
    EXPECT_EQ(MethodResponse(null), "");
    CIMParamValueArray out = Out("One", null);
    out.push_back(CIMParamValue("Two", CIMValue(String("2"))));
    out.push_back(CIMParamValue(CIMName("Three")));
    EXPECT_EQ(MethodResponse(null, out),
              R"(<PARAMVALUE NAME="Two" PARAMTYPE="string"><VALUE>2</VALUE></PARAMVALUE>)");
}

TEST(MethodAnswer, OutParametersFollowInOrder) {
    CIMParamValueArray out = Out("One & \"only\"", CIMValue(UInt16(5)));
    StringArray texts;
    texts.push_back("a");
    texts.push_back("");
    out.push_back(CIMParamValue("Texts", CIMValue(texts)));
    out.push_back(CIMParamValue("Path", CIMValue(KeyedPath())));
    CIMObjectPathArray paths;
    paths.push_back(FullPath("ZNX_A"));
    paths.push_back(KeyedPath());
    out.push_back(CIMParamValue("Paths", CIMValue(paths)));
    out.push_back(CIMParamValue("Texts", CIMValue(StringArray())));
    EXPECT_EQ(
        MethodResponse(CIMValue(UInt32(0)), out),
        R"(<RETURNVALUE PARAMTYPE="uint32"><VALUE>0</VALUE></RETURNVALUE>)"
        R"(<PARAMVALUE NAME="One &amp; &quot;only&quot;" PARAMTYPE="uint16"><VALUE>5</VALUE></PARAMVALUE>)"
        R"(<PARAMVALUE NAME="Texts" PARAMTYPE="string"><VALUE.ARRAY><VALUE>a</VALUE><VALUE></VALUE>)"
        R"(</VALUE.ARRAY></PARAMVALUE><PARAMVALUE NAME="Path" PARAMTYPE="reference"><VALUE.REFERENCE>)" +
            keyedPath +
            R"(</VALUE.REFERENCE></PARAMVALUE><PARAMVALUE NAME="Paths" PARAMTYPE="reference">)"
            "<VALUE.REFARRAY><VALUE.REFERENCE>" +
            classPath + "</VALUE.REFERENCE><VALUE.REFERENCE>" + keyedPath +
            "</VALUE.REFERENCE></VALUE.REFARRAY></PARAMVALUE>"
            R"(<PARAMVALUE NAME="Texts" PARAMTYPE="string"><VALUE.ARRAY></VALUE.ARRAY></PARAMVALUE>)");
}

TEST(MethodAnswer, WhatHasNoFormFails) {
    EXPECT_EQ(MethodResponse(CIMValue(StringArray())),
              "1: general error (The return value is an array)");
    EXPECT_EQ(MethodResponse(null, Out("P", CIMValue(CIMObjectPath("A")))),
              "1: general error (Namespace not set)");
}

TEST(MethodAnswer, ErrorsStandInTheMethodResponse) {
    EXPECT_EQ(
        Between(
            [] {
                FakeExecutor executor(
                    [](const Request&, ResultSink&) { OW_THROWCIM(CIMException::NOT_FOUND); });
                return Ask(ExtrinsicCall("Run", R"(<CLASSNAME NAME="A"/>)", ""), executor).text;
            }(),
            "<SIMPLERSP>", "</SIMPLERSP>"),
        R"(<METHODRESPONSE NAME="Run"><ERROR CODE="6" DESCRIPTION="requested object could not be )"
        R"(found"></ERROR></METHODRESPONSE>)");
}

TEST(PropertyAnswer, IsTheValueWithoutType) {
    const auto answer = [](const CIMValue& value) {
        return ReturnValue([&](ResultSink& sink) { sink.PropertyValue(value); });
    };
    UInt16Array numbers;
    numbers.push_back(1);
    numbers.push_back(2);
    EXPECT_EQ(answer(CIMValue(String("x & y"))), "<VALUE>x &amp; y</VALUE>");
    EXPECT_EQ(answer(CIMValue(numbers)),
              "<VALUE.ARRAY><VALUE>1</VALUE><VALUE>2</VALUE></VALUE.ARRAY>");
    EXPECT_EQ(answer(CIMValue(KeyedPath())),
              "<VALUE.REFERENCE>" + keyedPath + "</VALUE.REFERENCE>");
    EXPECT_EQ(answer(null), "");
}

TEST(AssociationAnswer, InstancesStandWithTheirPaths) {
    EXPECT_EQ(ReturnValue([](ResultSink& sink) {
                  sink.InstanceWithPath(KeyedPath(), CIMInstance("ZNX_A"));
                  sink.InstanceWithPath(FullPath("ZNX_A"), CIMInstance("ZNX_B"));
              }),
              "<VALUE.OBJECTWITHPATH>" + keyedPath +
                  R"(<INSTANCE CLASSNAME="ZNX_A"></INSTANCE></VALUE.OBJECTWITHPATH>)"
                  "<VALUE.OBJECTWITHPATH>" +
                  keylessPath +
                  R"(<INSTANCE CLASSNAME="ZNX_B"></INSTANCE></VALUE.OBJECTWITHPATH>)");
}

TEST(AssociationAnswer, ClassesStandWithTheirPaths) {
    EXPECT_EQ(ReturnValue([](ResultSink& sink) {
                  sink.ClassWithPath(FullPath("ZNX_A"), CIMClass("ZNX_A"));
              }),
              "<VALUE.OBJECTWITHPATH>" + classPath +
                  R"(<CLASS NAME="ZNX_A"></CLASS></VALUE.OBJECTWITHPATH>)");
}

TEST(AssociationAnswer, Paths) {
    EXPECT_EQ(ReturnValue([](ResultSink& sink) {
                  sink.InstancePath(KeyedPath());
                  sink.InstancePath(FullPath("ZNX_A"));
                  sink.ClassPath(FullPath("ZNX_A"));
              }),
              "<OBJECTPATH>" + keyedPath + "</OBJECTPATH><OBJECTPATH>" + keylessPath +
                  "</OBJECTPATH><OBJECTPATH>" + classPath + "</OBJECTPATH>");
}

TEST(AssociationAnswer, APathWithoutNamespaceFails) {
    EXPECT_EQ(ErrorIn(Results([](ResultSink& sink) {
                  CIMObjectPath path = KeyedPath();
                  path.setNameSpace("");
                  sink.InstancePath(path);
              })),
              "1: general error (Namespace not set)");
}

TEST(ChangeAnswer, IsEmptyWhereNothingIsReturned) {
    const std::string name = R"(<INSTANCENAME CLASSNAME="A"/>)";
    const std::pair<const char*, std::string> rows[] = {
        {"DeleteInstance", Parameter("InstanceName", name)},
        {"SetProperty",
         Parameter("InstanceName", name) + Parameter("PropertyName", "<VALUE>P</VALUE>")},
        {"ModifyInstance",
         Parameter("ModifiedInstance", "<VALUE.NAMEDINSTANCE>" + name +
                                           R"(<INSTANCE CLASSNAME="A"/></VALUE.NAMEDINSTANCE>)")},
    };
    for (const auto& [operation, parameters] : rows) {
        EXPECT_EQ(Response(IntrinsicCall(operation, parameters), [](ResultSink&) {}),
                  std::string("<IMETHODRESPONSE NAME=\"") + operation + "\"></IMETHODRESPONSE>");
    }
}

TEST(ChangeAnswer, OfCreateInstanceIsTheName) {
    const std::string body =
        IntrinsicCall("CreateInstance", Parameter("NewInstance", R"(<INSTANCE CLASSNAME="A"/>)"));
    EXPECT_EQ(Response(body, [](ResultSink& sink) { sink.InstanceName(CIMObjectPath("A")); }),
              R"(<IMETHODRESPONSE NAME="CreateInstance"><IRETURNVALUE><INSTANCENAME CLASSNAME="A">)"
              R"(</INSTANCENAME></IRETURNVALUE></IMETHODRESPONSE>)");
}

} // namespace
