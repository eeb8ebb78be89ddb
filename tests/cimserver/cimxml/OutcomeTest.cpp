// What is told of a request besides its answer, and the limits of its XML that can be set.
#include "Support.hpp"

#include "OW_CIMException.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using cimserver::cimxml::ErrorName;
using cimserver::cimxml::Outcome;
using cimserver::cimxml::XmlLimit;
using cimserver::cimxml::XmlLimits;
using cimxml_test::FakeExecutor;
using cimxml_test::Parameter;
using OpenWBEM::CIMException;
using test_support::ExtrinsicCall;
using test_support::IntrinsicCall;

Outcome OutcomeOf(std::string_view body, FakeExecutor executor = FakeExecutor(),
                  const XmlLimits& limits = {}) {
    cimxml_test::TextOutput output;
    return cimserver::cimxml::Answer({"POST", cimxml_test::OperationHeaders(body), body, ""},
                                     executor, output, limits);
}

/// `OPERATION CLASS METHOD STATUS ERROR`
std::string Shown(const Outcome& outcome) {
    return outcome.operation + " " + outcome.className + " " + outcome.method + " " +
           std::to_string(outcome.httpStatus) + " " + std::to_string(outcome.cimError);
}

const std::string instanceName = R"(<INSTANCENAME CLASSNAME="X_A"><KEYBINDING NAME="Secret">)"
                                 R"(<KEYVALUE>key</KEYVALUE></KEYBINDING></INSTANCENAME>)";

TEST(Outcome, NamesOperationAndClassWhereverTheClassStands) {
    EXPECT_EQ(Shown(OutcomeOf(IntrinsicCall("EnumerateInstances",
                                            Parameter("ClassName", R"(<CLASSNAME NAME="X_A"/>)")))),
              "EnumerateInstances X_A  200 0");
    EXPECT_EQ(
        Shown(OutcomeOf(IntrinsicCall("GetInstance", Parameter("InstanceName", instanceName)))),
        "GetInstance X_A  200 0");
    EXPECT_EQ(Shown(OutcomeOf(IntrinsicCall(
                  "CreateInstance", Parameter("NewInstance", R"(<INSTANCE CLASSNAME="X_A"/>)")))),
              "CreateInstance X_A  200 0");
    EXPECT_EQ(
        Shown(OutcomeOf(IntrinsicCall("AssociatorNames", Parameter("ObjectName", instanceName)))),
        "AssociatorNames X_A  200 0");
    EXPECT_EQ(Shown(OutcomeOf(IntrinsicCall("EnumerateClasses", ""))), "EnumerateClasses   200 0");
    EXPECT_EQ(Shown(OutcomeOf(IntrinsicCall("No Such", ""))), "No Such   200 0");
}

TEST(Outcome, NamesTheMethodOfAClass) {
    EXPECT_EQ(Shown(OutcomeOf(ExtrinsicCall("Apply", R"(<CLASSNAME NAME="X_A"/>)", ""))),
              "InvokeMethod X_A Apply 200 0");
    EXPECT_EQ(Shown(OutcomeOf(ExtrinsicCall("Apply", instanceName, ""))),
              "InvokeMethod X_A Apply 200 0");
}

TEST(Outcome, NamesTheErrorOfTheAnswer) {
    const std::string body = IntrinsicCall("GetInstance", Parameter("InstanceName", instanceName));
    EXPECT_EQ(Shown(OutcomeOf(body, FakeExecutor([](const auto&, auto&) {
                                  OW_THROWCIMMSG(CIMException::NOT_FOUND,
                                                 "a text that may hold anything");
                              }))),
              "GetInstance X_A  200 6");
    EXPECT_EQ(Shown(OutcomeOf(IntrinsicCall("GetInstance", ""))), "GetInstance   200 4");
}

TEST(Outcome, NamesTheStatusOfWhatIsNoRequest) {
    EXPECT_EQ(Shown(OutcomeOf("<CIM")), "   400 0");
    FakeExecutor executor;
    cimxml_test::TextOutput output;
    EXPECT_EQ(Shown(cimserver::cimxml::Answer({"GET", {}, "", ""}, executor, output)), "   405 0");
}

TEST(Outcome, NamesOfErrorsAreTheStandards) {
    EXPECT_EQ(ErrorName(CIMException::FAILED), "CIM_ERR_FAILED");
    EXPECT_EQ(ErrorName(CIMException::ACCESS_DENIED), "CIM_ERR_ACCESS_DENIED");
    EXPECT_EQ(ErrorName(CIMException::NOT_FOUND), "CIM_ERR_NOT_FOUND");
    EXPECT_EQ(ErrorName(CIMException::NOT_SUPPORTED), "CIM_ERR_NOT_SUPPORTED");
    EXPECT_EQ(ErrorName(CIMException::ALREADY_EXISTS), "CIM_ERR_ALREADY_EXISTS");
    EXPECT_EQ(ErrorName(CIMException::METHOD_NOT_FOUND), "CIM_ERR_METHOD_NOT_FOUND");
    EXPECT_EQ(ErrorName(18), "CIM_ERR_18");
    EXPECT_EQ(ErrorName(-1), "CIM_ERR_-1");
}

std::string WithKeys(int count) {
    std::string keys;
    for (int i = 0; i < count; ++i) {
        keys +=
            "<KEYBINDING NAME=\"K" + std::to_string(i) + "\"><KEYVALUE>x</KEYVALUE></KEYBINDING>";
    }
    return IntrinsicCall(
        "GetInstance",
        Parameter("InstanceName", "<INSTANCENAME CLASSNAME=\"X_A\">" + keys + "</INSTANCENAME>"));
}

TEST(XmlLimit, KeyBindingsOfAnInstanceNameAreBounded) {
    EXPECT_EQ(Shown(OutcomeOf(WithKeys(32))), "GetInstance X_A  200 0");
    const Outcome above = OutcomeOf(WithKeys(33));
    EXPECT_EQ(Shown(above), "   400 0");
    EXPECT_EQ(above.reached, XmlLimit::keyBindings);
    XmlLimits limits;
    limits.keyBindings = 2;
    EXPECT_EQ(OutcomeOf(WithKeys(2), FakeExecutor(), limits).reached, std::nullopt);
    EXPECT_EQ(OutcomeOf(WithKeys(3), FakeExecutor(), limits).reached, XmlLimit::keyBindings);
}

TEST(XmlLimit, EachIsToldAndCanBeSet) {
    const std::string body = WithKeys(1); // 11 elements, 8 of them within each other
    EXPECT_EQ(OutcomeOf(body, FakeExecutor(), {8, 2, 11, 1}).reached, std::nullopt);
    EXPECT_EQ(OutcomeOf(body, FakeExecutor(), {7, 2, 11, 1}).reached, XmlLimit::depth);
    EXPECT_EQ(OutcomeOf(body, FakeExecutor(), {8, 1, 11, 1}).reached, XmlLimit::attributes);
    EXPECT_EQ(OutcomeOf(body, FakeExecutor(), {8, 2, 10, 1}).reached, XmlLimit::elements);
    EXPECT_EQ(OutcomeOf("<!DOCTYPE a><a/>").reached, std::nullopt);
}

} // namespace
