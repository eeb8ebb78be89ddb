// From the XML of the association operations to their calls.
#include "Support.hpp"

#include <gtest/gtest.h>

namespace {

using cimxml_test::Parameter;
using cimxml_test::Read;
using cimxml_test::RefusalOf;
using test_support::IntrinsicCall;

namespace operations = cimserver::operations;

const std::string object = Parameter(
    "ObjectName",
    R"(<INSTANCENAME CLASSNAME="A"><KEYBINDING NAME="K"><KEYVALUE>1</KEYVALUE></KEYBINDING></INSTANCENAME>)");
const char* const path = R"(/:A.K="1")";
const std::string assocClass = Parameter("AssocClass", R"(<CLASSNAME NAME="Assoc"/>)");
const std::string resultClass = Parameter("ResultClass", R"(<CLASSNAME NAME="Result"/>)");
const std::string role = Parameter("Role", "<VALUE>one</VALUE>");
const std::string resultRole = Parameter("ResultRole", "<VALUE>other</VALUE>");
const std::string show = Parameter("IncludeQualifiers", "<VALUE>TRUE</VALUE>") +
                         Parameter("IncludeClassOrigin", "<VALUE>TRUE</VALUE>") +
                         Parameter("PropertyList", "<VALUE.ARRAY/>");

template <class Call>
void ExpectShownAsAsked(const Call& call, bool asked) {
    EXPECT_EQ(call.includeQualifiers, asked);
    EXPECT_EQ(call.includeClassOrigin, asked);
    EXPECT_EQ(call.properties.has_value(), asked);
}

TEST(AssociationRequest, Associators) {
    auto call = Read<operations::Associators>(
        IntrinsicCall("associators", show + resultRole + role + resultClass + assocClass + object));
    EXPECT_EQ(call.objectName.toString(), path);
    EXPECT_EQ(call.assocClass, "Assoc");
    EXPECT_EQ(call.resultClass, "Result");
    EXPECT_EQ(call.role, "one");
    EXPECT_EQ(call.resultRole, "other");
    ExpectShownAsAsked(call, true);
    call = Read<operations::Associators>(IntrinsicCall("Associators", object));
    EXPECT_EQ(call.assocClass + call.resultClass + call.role + call.resultRole, "");
    ExpectShownAsAsked(call, false);
}

TEST(AssociationRequest, AssociatorNames) {
    auto call = Read<operations::AssociatorNames>(
        IntrinsicCall("AssociatorNames", object + assocClass + resultClass + role + resultRole));
    EXPECT_EQ(call.objectName.toString(), path);
    EXPECT_EQ(call.assocClass, "Assoc");
    EXPECT_EQ(call.resultClass, "Result");
    EXPECT_EQ(call.role, "one");
    EXPECT_EQ(call.resultRole, "other");
    call = Read<operations::AssociatorNames>(IntrinsicCall("AssociatorNames", object));
    EXPECT_EQ(call.assocClass + call.resultClass + call.role + call.resultRole, "");
}

TEST(AssociationRequest, References) {
    auto call = Read<operations::References>(
        IntrinsicCall("References", object + resultClass + role + show));
    EXPECT_EQ(call.objectName.toString(), path);
    EXPECT_EQ(call.resultClass, "Result");
    EXPECT_EQ(call.role, "one");
    ExpectShownAsAsked(call, true);
    call = Read<operations::References>(IntrinsicCall("References", object));
    EXPECT_EQ(call.resultClass + call.role, "");
    ExpectShownAsAsked(call, false);
}

TEST(AssociationRequest, ReferenceNames) {
    auto call = Read<operations::ReferenceNames>(
        IntrinsicCall("ReferenceNames", object + resultClass + role));
    EXPECT_EQ(call.objectName.toString(), path);
    EXPECT_EQ(call.resultClass, "Result");
    EXPECT_EQ(call.role, "one");
    call = Read<operations::ReferenceNames>(IntrinsicCall("ReferenceNames", object));
    EXPECT_EQ(call.resultClass + call.role, "");
}

TEST(AssociationRequest, TheObjectMayBeAClass) {
    const auto call = Read<operations::ReferenceNames>(
        IntrinsicCall("ReferenceNames", Parameter("ObjectName", R"(<CLASSNAME NAME="A"/>)")));
    EXPECT_EQ(call.objectName.toString(), "/:A");
}

TEST(AssociationRequest, Refusals) {
    const auto refused = [](const char* operation, const std::string& parameters) {
        return RefusalOf(IntrinsicCall(operation, parameters));
    };
    const std::string start = "4: invalid parameter passed to method (";
    for (const char* operation :
         {"Associators", "AssociatorNames", "References", "ReferenceNames"}) {
        EXPECT_EQ(refused(operation, role), start + "Parameter ObjectName was not specified.)");
        EXPECT_EQ(refused(operation, Parameter("ObjectName", "<VALUE/>")),
                  start + "Parameter ObjectName is no object name)");
        EXPECT_EQ(refused(operation, object + Parameter("Role", "<VALUE.ARRAY/>")),
                  start + "Parameter Role is no text)");
        EXPECT_EQ(refused(operation, object + Parameter("ResultClass", "<VALUE>A</VALUE>")),
                  start + "Parameter ResultClass is no class name)");
        EXPECT_EQ(refused(operation, object + object),
                  start + "Unknown or duplicate parameter: ObjectName)");
    }
    EXPECT_EQ(refused("References", object + assocClass),
              start + "Unknown or duplicate parameter: AssocClass)");
    EXPECT_EQ(refused("AssociatorNames", object + show),
              start + "Unknown or duplicate parameter: IncludeQualifiers)");
}

} // namespace
