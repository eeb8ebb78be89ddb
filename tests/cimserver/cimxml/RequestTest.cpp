// From the XML of a request to the operation that is carried out.
#include "Support.hpp"

#include "OW_CIM.hpp"

#include <gtest/gtest.h>

namespace {

using namespace OpenWBEM;
using cimxml_test::Ask;
using cimxml_test::ErrorIn;
using cimxml_test::FakeExecutor;
using cimxml_test::Request;
using test_support::IntrinsicCall;

namespace operations = cimserver::operations;

std::string Text(const String& text) {
    return text.c_str();
}

std::string Text(const operations::PropertyList& list) {
    if (!list) {
        return " all";
    }
    std::string text = " [";
    const StringArray& names = *list;
    for (const String& name : names) {
        text.append(Text(name)).append(";");
    }
    return text + "]";
}

std::string Flags(std::initializer_list<std::pair<const char*, bool>> flags) {
    std::string text;
    for (const auto& [name, isSet] : flags) {
        text.append(isSet ? " +" : " -").append(name);
    }
    return text;
}

struct Describe {
    std::string operator()(const operations::GetClass& call) const {
        return "GetClass " + Text(call.className) +
               Flags({{"local", call.localOnly},
                      {"qualifiers", call.includeQualifiers},
                      {"origin", call.includeClassOrigin}}) +
               Text(call.properties);
    }
    std::string operator()(const operations::EnumerateClasses& call) const {
        return "EnumerateClasses " + Text(call.className) +
               Flags({{"deep", call.deepInheritance},
                      {"local", call.localOnly},
                      {"qualifiers", call.includeQualifiers},
                      {"origin", call.includeClassOrigin}});
    }
    std::string operator()(const operations::EnumerateClassNames& call) const {
        return "EnumerateClassNames " + Text(call.className) +
               Flags({{"deep", call.deepInheritance}});
    }
    std::string operator()(const operations::GetInstance& call) const {
        return "GetInstance " + Text(call.instanceName.toString()) +
               Flags({{"local", call.localOnly},
                      {"qualifiers", call.includeQualifiers},
                      {"origin", call.includeClassOrigin}}) +
               Text(call.properties);
    }
    std::string operator()(const operations::EnumerateInstances& call) const {
        return "EnumerateInstances " + Text(call.className) +
               Flags({{"local", call.localOnly},
                      {"deep", call.deepInheritance},
                      {"qualifiers", call.includeQualifiers},
                      {"origin", call.includeClassOrigin}}) +
               Text(call.properties);
    }
    std::string operator()(const operations::EnumerateInstanceNames& call) const {
        return "EnumerateInstanceNames " + Text(call.className);
    }
    std::string operator()(const operations::GetQualifier& call) const {
        return "GetQualifier " + Text(call.qualifierName);
    }
    std::string operator()(const operations::EnumerateQualifiers& /*call*/) const {
        return "EnumerateQualifiers";
    }
    std::string operator()(const operations::OtherOperation& call) const {
        return "other " + Text(call.name);
    }
    template <class Call>
    std::string operator()(const Call& /*call*/) const {
        return "an operation of other tests";
    }
};

/// The operation that a call becomes, or the error that answers it instead.
std::string Meaning(const std::string& operation, const std::string& parameters) {
    FakeExecutor executor;
    const auto reply = Ask(IntrinsicCall(operation, parameters), executor);
    return executor.last ? std::visit(Describe(), executor.last->call) : ErrorIn(reply.text);
}

std::string Parameter(const std::string& name, const std::string& value) {
    return "<IPARAMVALUE NAME=\"" + name + "\">" + value + "</IPARAMVALUE>";
}

const std::string className = Parameter("ClassName", R"(<CLASSNAME NAME="ZNX_A"/>)");
const std::string yes = "<VALUE>TRUE</VALUE>";
const std::string no = "<VALUE>false</VALUE>";
const std::string names = "<VALUE.ARRAY><VALUE>One</VALUE><VALUE>two</VALUE></VALUE.ARRAY>";

struct Row {
    const char* operation;
    std::string parameters;
    const char* meaning;
};

TEST(RequestToOperation, DefaultsApplyToWhatIsLeftOut) {
    const std::string instanceName = Parameter("InstanceName", R"(<INSTANCENAME CLASSNAME="A"/>)");
    const Row rows[] = {
        {"GetClass", className, "GetClass ZNX_A +local +qualifiers -origin all"},
        {"EnumerateClasses", "", "EnumerateClasses  -deep +local +qualifiers -origin"},
        {"EnumerateClassNames", "", "EnumerateClassNames  -deep"},
        {"GetInstance", instanceName, "GetInstance /:A +local -qualifiers -origin all"},
        {"EnumerateInstances", className,
         "EnumerateInstances ZNX_A +local +deep -qualifiers -origin all"},
        {"EnumerateInstanceNames", className, "EnumerateInstanceNames ZNX_A"},
        {"GetQualifier", Parameter("QualifierName", "<VALUE>Key</VALUE>"), "GetQualifier Key"},
        {"EnumerateQualifiers", "", "EnumerateQualifiers"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Meaning(row.operation, row.parameters), row.meaning);
    }
}

TEST(RequestToOperation, AllParametersArrive) {
    const std::string flags = Parameter("LocalOnly", no) + Parameter("IncludeQualifiers", yes) +
                              Parameter("IncludeClassOrigin", yes);
    const std::string opposite = Parameter("LocalOnly", no) + Parameter("IncludeQualifiers", no) +
                                 Parameter("IncludeClassOrigin", yes);
    const std::string instanceName = Parameter("InstanceName", R"(<INSTANCENAME CLASSNAME="A"/>)");
    const std::string list = Parameter("PropertyList", names);
    const Row rows[] = {
        {"GetClass", list + opposite + className,
         "GetClass ZNX_A -local -qualifiers +origin [One;two;]"},
        {"EnumerateClasses", className + opposite + Parameter("DeepInheritance", yes),
         "EnumerateClasses ZNX_A +deep -local -qualifiers +origin"},
        {"EnumerateClassNames", className + Parameter("DeepInheritance", yes),
         "EnumerateClassNames ZNX_A +deep"},
        {"GetInstance", flags + instanceName + list,
         "GetInstance /:A -local +qualifiers +origin [One;two;]"},
        {"EnumerateInstances", className + flags + Parameter("DeepInheritance", no) + list,
         "EnumerateInstances ZNX_A -local -deep +qualifiers +origin [One;two;]"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Meaning(row.operation, row.parameters), row.meaning);
    }
}

TEST(RequestToOperation, NamesAreTakenInAnyCase) {
    EXPECT_EQ(Meaning("enumerateINSTANCES", Parameter("CLASSNAME", R"(<CLASSNAME NAME="a"/>)") +
                                                Parameter("deepinheritance", no)),
              "EnumerateInstances a +local -deep -qualifiers -origin all");
}

TEST(RequestToOperation, BooleansAreTakenInAnyCaseWithBlanksAround) {
    EXPECT_EQ(
        Meaning("EnumerateClassNames", Parameter("DeepInheritance", "<VALUE> \n tRuE </VALUE>")),
        "EnumerateClassNames  +deep");
}

TEST(RequestToOperation, AParameterWithoutValueCountsAsLeftOut) {
    EXPECT_EQ(Meaning("EnumerateClasses", Parameter("ClassName", "") + Parameter("LocalOnly", "")),
              "EnumerateClasses  -deep +local +qualifiers -origin");
    EXPECT_EQ(Meaning("GetClass", className + Parameter("PropertyList", "")),
              "GetClass ZNX_A +local +qualifiers -origin all");
}

TEST(RequestToOperation, AnEmptyPropertyListIsNotAnAbsentOne) {
    EXPECT_EQ(
        Meaning("GetClass", className + Parameter("PropertyList", "<VALUE.ARRAY></VALUE.ARRAY>")),
        "GetClass ZNX_A +local +qualifiers -origin []");
}

TEST(RequestToOperation, EveryOtherOperationIsHandedOnByName) {
    for (const char* name :
         {"CreateClass", "ModifyClass", "DeleteClass", "SetQualifier", "DeleteQualifier",
          "ExecQuery", "OpenEnumerateInstances", "Whatever"}) {
        EXPECT_EQ(Meaning(name, Parameter("Any", yes) + Parameter("Any", "")),
                  "other " + std::string(name));
    }
}

TEST(RequestToOperation, NamespaceUserAndRightArrive) {
    FakeExecutor executor;
    Ask(IntrinsicCall("EnumerateClassNames", ""), executor);
    EXPECT_EQ(executor.last->nameSpace, "root/cimv2");
    EXPECT_EQ(executor.last->user, "somebody");
    EXPECT_TRUE(executor.last->mayChange);
}

TEST(RequestToOperation, ALeadingSlashOfTheNamespaceIsDropped) {
    FakeExecutor executor;
    std::string body = IntrinsicCall("EnumerateClassNames", "");
    const std::string root = R"(NAME="root")";
    body.replace(body.find(root), root.size(), R"(NAME="/root")");
    Ask(body, executor);
    EXPECT_EQ(executor.last->nameSpace, "root/cimv2");
}

TEST(RequestToOperation, WhatXmlLeavesOpenDoesNotMatter) {
    FakeExecutor executor;
    Ask("\xEF\xBB\xBF<?xml version='1.0'?><!-- a --><CIM DTDVERSION='2.3' CIMVERSION='2.7.1'>\n"
        "<MESSAGE PROTOCOLVERSION='1.4' ID='&#49;'><!-- b --><SIMPLEREQ>\n"
        "<CORRELATOR NAME='c' TYPE='string'><VALUE>1</VALUE></CORRELATOR>"
        "<IMETHODCALL NAME=\"GetClass\" xmlns='x'><LOCALNAMESPACEPATH >\n\t<NAMESPACE NAME='root'\n"
        "/></LOCALNAMESPACEPATH> <IPARAMVALUE NAME='ClassName'><CLASSNAME NAME='&#x41;&amp;B'/>"
        "</IPARAMVALUE><IPARAMVALUE NAME='LocalOnly'><VALUE><![CDATA[fa]]>lse</VALUE></IPARAMVALUE>"
        "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM> <?end?>",
        executor);
    ASSERT_TRUE(executor.last);
    EXPECT_EQ(std::visit(Describe(), executor.last->call),
              "GetClass A&B -local +qualifiers -origin all");
}

// Keys of an instance name.

CIMObjectPath PathOf(const std::string& inside) {
    FakeExecutor executor;
    const auto reply =
        Ask(IntrinsicCall("GetInstance",
                          Parameter("InstanceName", R"(<INSTANCENAME CLASSNAME="ZNX_A">)" + inside +
                                                        "</INSTANCENAME>")),
            executor);
    if (!executor.last) {
        ADD_FAILURE() << reply.text;
        return CIMObjectPath();
    }
    return std::get<operations::GetInstance>(executor.last->call).instanceName;
}

struct KeyRow {
    const char* keyValue;
    CIMValue value;
};

TEST(InstanceNameKeys, HaveTheTypeOfTheirText) {
    const KeyRow rows[] = {
        {"<KEYVALUE>text</KEYVALUE>", CIMValue("text")},
        {R"(<KEYVALUE VALUETYPE="string"> 5 </KEYVALUE>)", CIMValue(" 5 ")},
        {R"(<KEYVALUE VALUETYPE="string">a&quot;b\c&#9;&#xE4;</KEYVALUE>)",
         CIMValue("a\"b\\c\t\xC3\xA4")},
        {R"(<KEYVALUE VALUETYPE="string"/>)", CIMValue("")},
        {R"(<KEYVALUE VALUETYPE="numeric"> 42
)"
         "</KEYVALUE>",
         CIMValue(Int64(42))},
        {R"(<KEYVALUE VALUETYPE="numeric">+42</KEYVALUE>)", CIMValue(Int64(42))},
        {R"(<KEYVALUE VALUETYPE="numeric">-42</KEYVALUE>)", CIMValue(Int64(-42))},
        {R"(<KEYVALUE VALUETYPE="numeric">18446744073709551615</KEYVALUE>)", CIMValue(~UInt64(0))},
        {R"(<KEYVALUE VALUETYPE="numeric">1.5e3</KEYVALUE>)", CIMValue(Real64(1500))},
        {R"(<KEYVALUE VALUETYPE="boolean">True</KEYVALUE>)", CIMValue(true)},
        {R"(<KEYVALUE VALUETYPE="boolean">FALSE</KEYVALUE>)", CIMValue(false)},
        {R"(<KEYVALUE VALUETYPE="numeric" TYPE="uint8">200</KEYVALUE>)", CIMValue(UInt8(200))},
        {R"(<KEYVALUE TYPE="string"> x </KEYVALUE>)", CIMValue(" x ")},
        {R"(<KEYVALUE VALUETYPE="string" TYPE="datetime">20250102030405.000000+000</KEYVALUE>)",
         CIMValue(CIMDateTime(String("20250102030405.000000+000")))},
    };
    for (const KeyRow& row : rows) {
        const CIMObjectPath path =
            PathOf("<KEYBINDING NAME=\"K\">" + std::string(row.keyValue) + "</KEYBINDING>");
        EXPECT_TRUE(path.getKeyValue("K") == row.value) << row.keyValue;
        EXPECT_EQ(path.getClassName(), "ZNX_A");
        EXPECT_EQ(path.getNameSpace(), "");
    }
}

TEST(InstanceNameKeys, SeveralKeepTheirOrder) {
    EXPECT_EQ(Text(PathOf(R"(<KEYBINDING NAME="B"><KEYVALUE>1</KEYVALUE></KEYBINDING>)"
                          R"(<KEYBINDING NAME="A"><KEYVALUE>2</KEYVALUE></KEYBINDING>)")
                       .toString()),
              R"(/:ZNX_A.B="1",A="2")");
}

TEST(InstanceNameKeys, NoneMakesAClassPath) {
    EXPECT_TRUE(PathOf("").isClassPath());
}

TEST(InstanceNameKeys, OneWithoutBindingHasAnEmptyName) {
    const CIMPropertyArray keys = PathOf("<KEYVALUE>only</KEYVALUE>").getKeys();
    ASSERT_EQ(keys.size(), 1U);
    EXPECT_EQ(keys[0].getName(), "");
    EXPECT_TRUE(keys[0].getValue() == CIMValue("only"));
}

struct ReferenceRow {
    const char* reference;
    const char* path;
};

TEST(InstanceNameKeys, ReferencesOfEveryForm) {
    const std::string keyed =
        R"(<INSTANCENAME CLASSNAME="B"><KEYBINDING NAME="K"><KEYVALUE>1</KEYVALUE></KEYBINDING></INSTANCENAME>)";
    const std::string local =
        R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="x"/></LOCALNAMESPACEPATH>)";
    const std::string full = "<NAMESPACEPATH><HOST>srv</HOST>" + local + "</NAMESPACEPATH>";
    const std::string plainClass = R"(<CLASSNAME NAME="C"/>)";
    const std::pair<std::string, const char*> rows[] = {
        {keyed, R"(/:B.K="1")"},
        {plainClass, "/:C"},
        {"<LOCALINSTANCEPATH>" + local + keyed + "</LOCALINSTANCEPATH>", R"(/root/x:B.K="1")"},
        {"<LOCALCLASSPATH>" + local + plainClass + "</LOCALCLASSPATH>", "/root/x:C"},
        {"<INSTANCEPATH>" + full + keyed + "</INSTANCEPATH>", R"(http://srv/root/x:B.K="1")"},
        {"<CLASSPATH>" + full + plainClass + "</CLASSPATH>", "http://srv/root/x:C"},
    };
    for (const auto& [reference, text] : rows) {
        const CIMObjectPath path = PathOf("<KEYBINDING NAME=\"R\"><VALUE.REFERENCE>" + reference +
                                          "</VALUE.REFERENCE></KEYBINDING>");
        EXPECT_EQ(Text(path.getKeyValue("R").toCIMObjectPath().toString()), text);
    }
}

TEST(InstanceNameKeys, AnUnnamedReferenceIsAKeyWithoutName) {
    const CIMPropertyArray keys =
        PathOf(R"(<VALUE.REFERENCE><CLASSNAME NAME="C"/></VALUE.REFERENCE>)").getKeys();
    ASSERT_EQ(keys.size(), 1U);
    EXPECT_EQ(keys[0].getName(), "");
}

// Parameters that are refused.

std::string Refusal(const std::string& text) {
    return "4: invalid parameter passed to method (" + text + ")";
}

struct RefusalRow {
    const char* operation;
    std::string parameters;
    const char* reason;
};

TEST(RefusedParameters, AreNamed) {
    const std::string value = "<VALUE>x</VALUE>";
    const RefusalRow rows[] = {
        {"GetClass", "", "Parameter ClassName was not specified."},
        {"GetClass", Parameter("ClassName", ""), "Parameter ClassName was not specified."},
        {"GetClass", Parameter("ClassName", R"(<CLASSNAME NAME=""/>)"),
         "Parameter ClassName was not specified."},
        {"GetInstance", "", "Parameter InstanceName was not specified."},
        {"EnumerateInstances", "", "Parameter ClassName was not specified."},
        {"EnumerateInstanceNames", "", "Parameter ClassName was not specified."},
        {"GetClass", className + Parameter("Extra", value),
         "Unknown or duplicate parameter: Extra"},
        {"GetClass", className + className, "Unknown or duplicate parameter: ClassName"},
        {"EnumerateInstanceNames", className + Parameter("LocalOnly", yes),
         "Unknown or duplicate parameter: LocalOnly"},
        {"EnumerateClasses", Parameter("DeepInheritance", yes) + Parameter("deepinheritance", yes),
         "Unknown or duplicate parameter: deepinheritance"},
        {"GetClass", Parameter("ClassName", value), "Parameter ClassName is no class name"},
        {"GetInstance", Parameter("InstanceName", R"(<CLASSNAME NAME="A"/>)"),
         "Parameter InstanceName is no instance name"},
        {"GetClass", className + Parameter("LocalOnly", value),
         "Parameter LocalOnly is no boolean"},
        {"GetClass", className + Parameter("LocalOnly", "<VALUE/>"),
         "Parameter LocalOnly is no boolean"},
        {"GetClass", className + Parameter("LocalOnly", "<VALUE.ARRAY/>"),
         "Parameter LocalOnly is no boolean"},
        {"EnumerateInstances", className + Parameter("PropertyList", value),
         "Parameter PropertyList is no list of names"},
        {"EnumerateInstances",
         className + Parameter("PropertyList", "<VALUE.ARRAY><VALUE.NULL/></VALUE.ARRAY>"),
         "Parameter PropertyList is no list of names"},
    };
    for (const RefusalRow& row : rows) {
        EXPECT_EQ(Meaning(row.operation, row.parameters), Refusal(row.reason)) << row.parameters;
    }
}

TEST(RefusedParameters, KeysThatAreNoValueOfTheirType) {
    const std::pair<const char*, const char*> rows[] = {
        {R"(<KEYVALUE VALUETYPE="numeric">x1</KEYVALUE>)", R"(Key K: "x1" is no number)"},
        {R"(<KEYVALUE VALUETYPE="numeric"></KEYVALUE>)", R"(Key K: "" is no number)"},
        {R"(<KEYVALUE VALUETYPE="numeric">1 2</KEYVALUE>)", R"(Key K: "1 2" is no number)"},
        {R"(<KEYVALUE VALUETYPE="boolean">yes</KEYVALUE>)", R"(Key K: "yes" is no boolean)"},
        {R"(<KEYVALUE VALUETYPE="numeric" TYPE="uint8">300</KEYVALUE>)",
         R"(Key K: "300" is no uint8)"},
        {R"(<KEYVALUE TYPE="uint8"> </KEYVALUE>)", R"(Key K: " " is no uint8)"},
        {R"(<KEYVALUE TYPE="datetime">today</KEYVALUE>)", R"(Key K: "today" is no datetime)"},
    };
    for (const auto& [keyValue, reason] : rows) {
        std::string expected = Refusal(reason);
        for (std::size_t at = 0; (at = expected.find('"', at)) != expected.npos; at += 6) {
            expected.replace(at, 1, "&quot;");
        }
        EXPECT_EQ(Meaning("GetInstance",
                          Parameter("InstanceName",
                                    R"(<INSTANCENAME CLASSNAME="A"><KEYBINDING NAME="K">)" +
                                        std::string(keyValue) + "</KEYBINDING></INSTANCENAME>")),
                  expected);
    }
}

TEST(RefusedParameters, AKeyGivenTwice) {
    EXPECT_EQ(
        Meaning(
            "GetInstance",
            Parameter("InstanceName",
                      R"(<INSTANCENAME CLASSNAME="A"><KEYBINDING NAME="K"><KEYVALUE>1</KEYVALUE>)"
                      R"(</KEYBINDING><KEYBINDING NAME="k"><KEYVALUE>1</KEYVALUE></KEYBINDING>)"
                      R"(</INSTANCENAME>)")),
        Refusal("Key k is given twice"));
}

} // namespace
