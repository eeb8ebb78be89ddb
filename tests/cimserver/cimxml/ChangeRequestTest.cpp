// From the XML of the operations on properties and those that change instances to their calls.
#include "Support.hpp"

#include "OW_CIM.hpp"

#include <gtest/gtest.h>

namespace {

using cimxml_test::Parameter;
using cimxml_test::Read;
using cimxml_test::RefusalOf;
using cimxml_test::Shown;
using test_support::IntrinsicCall;

namespace operations = cimserver::operations;

const std::string name =
    R"(<INSTANCENAME CLASSNAME="A"><KEYBINDING NAME="K"><KEYVALUE>1</KEYVALUE></KEYBINDING></INSTANCENAME>)";
const char* const path = R"(/:A.K="1")";
const std::string instanceName = Parameter("InstanceName", name);
const std::string propertyName = Parameter("PropertyName", "<VALUE>Size</VALUE>");

std::string Instance(const std::string& inside) {
    return R"(<INSTANCE CLASSNAME="A">)" + inside + "</INSTANCE>";
}

std::string Refusal(const std::string& text) {
    return "4: invalid parameter passed to method (" + text + ")";
}

TEST(PropertyRequest, GetProperty) {
    const auto call =
        Read<operations::GetProperty>(IntrinsicCall("getproperty", propertyName + instanceName));
    EXPECT_EQ(call.instanceName.toString(), path);
    EXPECT_EQ(call.propertyName, "Size");
}

TEST(PropertyRequest, SetPropertyTakesValuesWithoutType) {
    const auto newValue = [](const std::string& value) {
        const auto call = Read<operations::SetProperty>(
            IntrinsicCall("SetProperty", instanceName + propertyName + value));
        EXPECT_EQ(call.instanceName.toString(), path);
        EXPECT_EQ(call.propertyName, "Size");
        return Shown(call.newValue);
    };
    EXPECT_EQ(newValue(Parameter("NewValue", "<VALUE> 5 </VALUE>")), "string  5 ");
    EXPECT_EQ(newValue(Parameter("newvalue", "<VALUE.ARRAY><VALUE>1</VALUE></VALUE.ARRAY>")),
              "string[] 1");
    EXPECT_EQ(newValue(Parameter("NewValue", "<VALUE.REFERENCE>" + name + "</VALUE.REFERENCE>")),
              "REF " + std::string(path));
    EXPECT_EQ(newValue(Parameter("NewValue", "")), "null");
    EXPECT_EQ(newValue(""), "null");
}

TEST(PropertyRequest, Refusals) {
    struct Row {
        const char* operation;
        std::string parameters;
        const char* reason;
    };
    const Row rows[] = {
        {"GetProperty", propertyName, "Parameter InstanceName was not specified."},
        {"GetProperty", instanceName, "Parameter PropertyName was not specified."},
        {"GetProperty", instanceName + Parameter("PropertyName", "<VALUE/>"),
         "Parameter PropertyName was not specified."},
        {"GetProperty", instanceName + Parameter("PropertyName", "<VALUE.ARRAY/>"),
         "Parameter PropertyName is no text"},
        {"GetProperty", instanceName + propertyName + Parameter("NewValue", "<VALUE/>"),
         "Unknown or duplicate parameter: NewValue"},
        {"SetProperty", propertyName, "Parameter InstanceName was not specified."},
        {"SetProperty", instanceName, "Parameter PropertyName was not specified."},
        {"SetProperty", instanceName + propertyName + propertyName,
         "Unknown or duplicate parameter: PropertyName"},
        {"SetProperty", instanceName + propertyName + Parameter("NewValue", Instance("")),
         "Parameter NewValue is neither a simple value nor a reference"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(RefusalOf(IntrinsicCall(row.operation, row.parameters)), Refusal(row.reason));
    }
}

TEST(InstanceRequest, DeleteInstance) {
    const auto call =
        Read<operations::DeleteInstance>(IntrinsicCall("DeleteInstance", instanceName));
    EXPECT_EQ(call.instanceName.toString(), path);
}

/// The instance that arrives when it holds this.
std::string Arrives(const std::string& inside) {
    return Shown(Read<operations::CreateInstance>(
                     IntrinsicCall("CreateInstance", Parameter("NewInstance", Instance(inside))))
                     .newInstance);
}

TEST(InstanceRequest, CreateInstanceBringsTheTypesThatItStates) {
    EXPECT_EQ(Arrives(""), "A:");
    EXPECT_EQ(
        Arrives(
            R"(<QUALIFIER NAME="Q" TYPE="string"><VALUE>x</VALUE></QUALIFIER>)"
            R"(<PROPERTY NAME="S" TYPE="string"><QUALIFIER NAME="Q" TYPE="boolean"/>)"
            R"(<QUALIFIER NAME="R" TYPE="boolean"/><VALUE> x </VALUE></PROPERTY>)"
            R"(<PROPERTY NAME="N" TYPE="uint8"><VALUE> 5 </VALUE></PROPERTY>)"
            R"(<PROPERTY NAME="E" TYPE="uint32"/><PROPERTY NAME="T" TYPE="string"><VALUE/></PROPERTY>)"
            R"(<PROPERTY.ARRAY NAME="L" TYPE="sint16"><VALUE.ARRAY><VALUE>-1</VALUE><VALUE>2</VALUE>)"
            R"(</VALUE.ARRAY></PROPERTY.ARRAY><PROPERTY.ARRAY NAME="M" TYPE="boolean"/>)"
            R"(<PROPERTY.REFERENCE NAME="R" REFERENCECLASS="B"><VALUE.REFERENCE>)" +
            name + R"(</VALUE.REFERENCE></PROPERTY.REFERENCE><PROPERTY.REFERENCE NAME="U"/>)"),
        "A:S=string  x ;N=uint8 5;E=uint32 null;T=string ;L=sint16[] -1,2;M=boolean[] null;"
        "R=REF /:A.K=\"1\";U=REF null;");
}

TEST(InstanceRequest, CreateInstanceRefusals) {
    const auto refused = [](const std::string& inside) {
        return RefusalOf(
            IntrinsicCall("CreateInstance", Parameter("NewInstance", Instance(inside))));
    };
    EXPECT_EQ(refused(R"(<PROPERTY NAME="N" TYPE="uint8"><VALUE>x</VALUE></PROPERTY>)"),
              Refusal("Property N: &quot;x&quot; is no uint8"));
    EXPECT_EQ(refused(R"(<PROPERTY NAME="N" TYPE="boolean"><VALUE/></PROPERTY>)"),
              Refusal("Property N: &quot;&quot; is no boolean"));
    EXPECT_EQ(refused(R"(<PROPERTY NAME="N" TYPE="uint8"/><PROPERTY NAME="n" TYPE="uint8"/>)"),
              Refusal("Property n is given twice"));
    EXPECT_EQ(RefusalOf(IntrinsicCall("CreateInstance", "")),
              Refusal("Parameter NewInstance was not specified."));
    EXPECT_EQ(RefusalOf(IntrinsicCall("CreateInstance", Parameter("NewInstance", name))),
              Refusal("Parameter NewInstance is no instance"));
}

TEST(InstanceRequest, InstancesThatDoNotFitTheDtdAreNoRequest) {
    for (
        const char* inside :
        {R"(<PROPERTY TYPE="uint8"/>)", R"(<PROPERTY NAME="N"/>)",
         R"(<PROPERTY NAME="N" TYPE="text"/>)", R"(<PROPERTY NAME="N" TYPE="reference"/>)",
         R"(<PROPERTY NAME="N" TYPE="uint8"><VALUE.ARRAY/></PROPERTY>)",
         R"(<PROPERTY NAME="N" TYPE="uint8"><VALUE>1</VALUE><VALUE>1</VALUE></PROPERTY>)",
         R"(<PROPERTY NAME="N" TYPE="uint8"><VALUE>1</VALUE><QUALIFIER NAME="Q" TYPE="string"/></PROPERTY>)",
         R"(<PROPERTY.ARRAY NAME="N" TYPE="uint8"><VALUE>1</VALUE></PROPERTY.ARRAY>)",
         R"(<PROPERTY.REFERENCE NAME="N"><VALUE>1</VALUE></PROPERTY.REFERENCE>)", "<METHOD/>"}) {
        EXPECT_EQ(
            RefusalOf(IntrinsicCall("CreateInstance", Parameter("NewInstance", Instance(inside)))),
            "400 request-not-loosely-valid")
            << inside;
    }
    EXPECT_EQ(RefusalOf(IntrinsicCall("CreateInstance", Parameter("NewInstance", "<INSTANCE/>"))),
              "400 request-not-loosely-valid");
}

std::string Named(const std::string& inside) {
    return Parameter("ModifiedInstance",
                     "<VALUE.NAMEDINSTANCE>" + inside + "</VALUE.NAMEDINSTANCE>");
}

TEST(InstanceRequest, ModifyInstance) {
    const std::string property = R"(<PROPERTY NAME="N" TYPE="uint8"><VALUE>5</VALUE></PROPERTY>)";
    auto call = Read<operations::ModifyInstance>(
        IntrinsicCall("ModifyInstance", Named(name + Instance(property))));
    EXPECT_EQ(call.instanceName.toString(), path);
    EXPECT_EQ(Shown(call.modifiedInstance), "A:N=uint8 5;");
    EXPECT_TRUE(call.includeQualifiers);
    EXPECT_FALSE(call.properties);
    call = Read<operations::ModifyInstance>(IntrinsicCall(
        "modifyinstance", Parameter("PropertyList", "<VALUE.ARRAY><VALUE>N</VALUE></VALUE.ARRAY>") +
                              Parameter("IncludeQualifiers", "<VALUE>false</VALUE>") +
                              Named(name + Instance(property))));
    EXPECT_FALSE(call.includeQualifiers);
    ASSERT_TRUE(call.properties);
    EXPECT_EQ(call.properties->size(), 1U);
    EXPECT_EQ(call.properties->front(), "N");
}

TEST(InstanceRequest, ModifyInstanceRefusals) {
    EXPECT_EQ(RefusalOf(IntrinsicCall("ModifyInstance", "")),
              Refusal("Parameter ModifiedInstance was not specified."));
    EXPECT_EQ(RefusalOf(IntrinsicCall("ModifyInstance", Parameter("ModifiedInstance", name))),
              Refusal("Parameter ModifiedInstance is no instance with its name"));
    EXPECT_EQ(RefusalOf(IntrinsicCall("ModifyInstance",
                                      Named(name + Instance("")) + Parameter("LocalOnly", ""))),
              Refusal("Unknown or duplicate parameter: LocalOnly"));
    for (const std::string& inside :
         {std::string(), name, Instance(""), Instance("") + name, name + Instance("") + name}) {
        EXPECT_EQ(RefusalOf(IntrinsicCall("ModifyInstance", Named(inside))),
                  "400 request-not-loosely-valid");
    }
}

} // namespace
