// Requests that are answered by an HTTP status.
#include "Support.hpp"

#include <gtest/gtest.h>

namespace {

using cimserver::cimxml::HeaderList;
using cimxml_test::Ask;
using cimxml_test::FakeExecutor;
using cimxml_test::Reply;

const std::string good = test_support::IntrinsicCall("EnumerateClassNames", "");

/// Status and CIMError; an operation must not have been called.
std::string Outcome(const std::string& body,
                    const HeaderList& headers = {{"CIMOperation", "MethodCall"}},
                    const std::string& method = "POST") {
    FakeExecutor executor;
    const Reply reply = Ask(body, executor, headers, method);
    const bool isAnswered = reply.status.httpStatus == 200;
    EXPECT_EQ(executor.last.has_value(), isAnswered);
    return std::to_string(reply.status.httpStatus) + " " + reply.Header("CIMError");
}

std::string Replaced(const std::string& from, const std::string& to) {
    std::string text = good;
    const std::size_t at = text.find(from);
    if (at == text.npos) {
        ADD_FAILURE() << from << " is not in the request";
        return text;
    }
    return text.replace(at, from.size(), to);
}

TEST(ProtocolErrors, TheRequestOfTheseTestsIsGood) {
    EXPECT_EQ(Outcome(good), "200 (absent)");
}

TEST(ProtocolErrors, OtherMethodsAreNotAllowed) {
    for (const char* method : {"GET", "PUT", "OPTIONS", "post", ""}) {
        FakeExecutor executor;
        const Reply reply = Ask(good, executor, {{"CIMOperation", "MethodCall"}}, method);
        EXPECT_EQ(reply.status.httpStatus, 405) << method;
        EXPECT_EQ(reply.Header("Allow"), "POST, M-POST");
    }
}

struct HeaderRow {
    HeaderList headers;
    const char* outcome;
};

TEST(ProtocolErrors, HeadersOfPost) {
    const HeaderRow rows[] = {
        {{{"CIMOperation", "MethodCall"}}, "200 (absent)"},
        {{{"cimoperation", "methodcall"}}, "200 (absent)"},
        {{{"Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=23"},
          {"CIMOperation", "MethodCall"}},
         "200 (absent)"},
        {{}, "400 unsupported-operation"},
        {{{"CIMOperation", ""}}, "400 unsupported-operation"},
        {{{"CIMOperation", "MethodResponse"}}, "400 unsupported-operation"},
        {{{"23-CIMOperation", "MethodCall"}}, "400 unsupported-operation"},
        {{{"CIMOperation", "MethodCall"}, {"CIMProtocolVersion", "1.0"}}, "200 (absent)"},
        {{{"CIMOperation", "MethodCall"}, {"CIMProtocolVersion", "1.4"}}, "200 (absent)"},
        {{{"CIMOperation", "MethodCall"}, {"CIMProtocolVersion", "2.0"}},
         "501 unsupported-protocol-version"},
    };
    for (const HeaderRow& row : rows) {
        EXPECT_EQ(Outcome(good, row.headers), row.outcome);
    }
}

TEST(ProtocolErrors, HeadersOfMPostHaveThePrefixThatTheyName) {
    const char* const man = "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=23";
    const HeaderRow rows[] = {
        {{{"Man", man}, {"23-CIMOperation", "MethodCall"}}, "200 (absent)"},
        {{{"Man", man}, {"24-CIMOperation", "MethodCall"}}, "400 unsupported-operation"},
        {{{"Man", man}, {"CIMOperation", "MethodCall"}}, "400 unsupported-operation"},
        {{{"CIMOperation", "MethodCall"}}, "200 (absent)"},
        {{{"Man", man}, {"23-CIMOperation", "MethodCall"}, {"23-CIMProtocolVersion", "3.0"}},
         "501 unsupported-protocol-version"},
    };
    for (const HeaderRow& row : rows) {
        EXPECT_EQ(Outcome(good, row.headers, "M-POST"), row.outcome);
    }
}

TEST(ProtocolErrors, BodiesThatAreNoXml) {
    const std::string wellFormed = "400 request-not-well-formed";
    for (const std::string& body :
         {std::string(), std::string("hello"), std::string("<CIM>"), std::string("<CIM></CIN>"),
          good + "x", good.substr(0, good.size() - 1), Replaced("utf-8", "no-such-charset"),
          Replaced("EnumerateClassNames", "\xFF\xFE"), Replaced("EnumerateClassNames", "&unknown;"),
          Replaced("ID=\"4711\"", "ID=\"1\" ID=\"2\""), std::string(good).append(1, '\0')}) {
        EXPECT_EQ(Outcome(body), wellFormed) << body;
    }
}

struct BodyRow {
    std::string body;
    const char* outcome;
};

TEST(ProtocolErrors, VersionsOfOtherMajorNumbers) {
    const BodyRow rows[] = {
        {Replaced(R"(CIMVERSION="2.0")", R"(CIMVERSION="2.40.1")"), "200 (absent)"},
        {Replaced(R"(CIMVERSION="2.0")", R"(CIMVERSION="3.0")"), "501 unsupported-cim-version"},
        {Replaced(R"(CIMVERSION="2.0")", R"(CIMVERSION="20")"), "501 unsupported-cim-version"},
        {Replaced(R"(CIMVERSION="2.0")", R"(CIMVERSION="2.")"), "501 unsupported-cim-version"},
        {Replaced(R"(CIMVERSION="2.0")", R"(CIMVERSION="2..1")"), "501 unsupported-cim-version"},
        {Replaced(R"(CIMVERSION="2.0")", R"(CIMVERSION="2.x")"), "501 unsupported-cim-version"},
        {Replaced(R"(CIMVERSION="2.0")", R"(CIMVERSION="")"), "501 unsupported-cim-version"},
        {Replaced(R"(DTDVERSION="2.0")", R"(DTDVERSION="2.4")"), "200 (absent)"},
        {Replaced(R"(DTDVERSION="2.0")", R"(DTDVERSION="1.0")"), "501 unsupported-dtd-version"},
        {Replaced(R"(PROTOCOLVERSION="1.0")", R"(PROTOCOLVERSION="1.3")"), "200 (absent)"},
        {Replaced(R"(PROTOCOLVERSION="1.0")", R"(PROTOCOLVERSION="2.0")"),
         "501 unsupported-protocol-version"},
    };
    for (const BodyRow& row : rows) {
        EXPECT_EQ(Outcome(row.body), row.outcome) << row.body;
    }
}

const std::string envelope =
    R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1" PROTOCOLVERSION="1.0">)";
const std::string envelopeEnd = "</MESSAGE></CIM>";
const std::string nameSpace =
    R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/></LOCALNAMESPACEPATH>)";

std::string InMessage(const std::string& inside) {
    return envelope + inside + envelopeEnd;
}

std::string InCall(const std::string& inside) {
    return InMessage(R"(<SIMPLEREQ><IMETHODCALL NAME="GetInstance">)" + inside +
                     "</IMETHODCALL></SIMPLEREQ>");
}

std::string InInstanceName(const std::string& inside) {
    return InCall(nameSpace + R"(<IPARAMVALUE NAME="InstanceName"><INSTANCENAME CLASSNAME="A">)" +
                  inside + "</INSTANCENAME></IPARAMVALUE>");
}

TEST(ProtocolErrors, MessagesThatAreNoSingleOperation) {
    EXPECT_EQ(Outcome(InMessage("<MULTIREQ/>")), "501 multiple-requests-unsupported");
    EXPECT_EQ(Outcome(InMessage("<SIMPLEEXPREQ/>")), "400 unsupported-operation");
    EXPECT_EQ(Outcome(InMessage("<MULTIEXPREQ/>")), "400 unsupported-operation");
}

TEST(ProtocolErrors, EnvelopesThatAreNotThoseOfARequest) {
    const std::string call = R"(<IMETHODCALL NAME="X">)" + nameSpace + "</IMETHODCALL>";
    const std::string bodies[] = {
        "<html/>",
        "<cim/>",
        "<CIM/>",
        R"(<CIM CIMVERSION="2.0"/>)",
        R"(<CIM DTDVERSION="2.0"/>)",
        R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"/>)",
        R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"><DECLARATION/></CIM>)",
        R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE/></CIM>)",
        R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1"/></CIM>)",
        InMessage(""),
        InMessage("<SIMPLERSP/>"),
        InMessage("<SIMPLEREQ/>"),
        InMessage("<SIMPLEREQ/><SIMPLEREQ/>"),
        InMessage("<SIMPLEREQ><CORRELATOR/></SIMPLEREQ>"),
        InMessage("<SIMPLEREQ>" + call + call + "</SIMPLEREQ>"),
        InMessage("<SIMPLEREQ><EXPMETHODCALL/></SIMPLEREQ>"),
        InMessage("<SIMPLEREQ><IMETHODCALL>" + nameSpace + "</IMETHODCALL></SIMPLEREQ>"),
        InMessage(R"(<SIMPLEREQ><METHODCALL NAME="X"></METHODCALL></SIMPLEREQ>)"),
        InMessage(
            R"(<SIMPLEREQ><METHODCALL NAME="X"><CLASSNAME NAME="A"/></METHODCALL></SIMPLEREQ>)"),
        InMessage(R"(<SIMPLEREQ><METHODCALL NAME="X"><LOCALCLASSPATH><CLASSNAME NAME="A"/>)"
                  R"(</LOCALCLASSPATH></METHODCALL></SIMPLEREQ>)"),
    };
    for (const std::string& body : bodies) {
        EXPECT_EQ(Outcome(body), "400 request-not-loosely-valid") << body;
    }
}

TEST(ProtocolErrors, CallsThatTheDtdDoesNotKnow) {
    const std::string bodies[] = {
        InCall(""),
        InCall(R"(<IPARAMVALUE NAME="A"/>)"),
        InCall("<LOCALNAMESPACEPATH/>"),
        InCall("<LOCALNAMESPACEPATH><NAMESPACE/></LOCALNAMESPACEPATH>"),
        InCall(R"(<LOCALNAMESPACEPATH><HOST NAME="h"/></LOCALNAMESPACEPATH>)"),
        InCall(nameSpace + "<IPARAMVALUE/>"),
        InCall(nameSpace + R"(<PARAMVALUE NAME="InstanceName"/>)"),
        InCall(nameSpace + R"(<IPARAMVALUE NAME="InstanceName"><VALUE/><VALUE/></IPARAMVALUE>)"),
        InCall(nameSpace + R"(<IPARAMVALUE NAME="InstanceName"><INSTANCENAME/></IPARAMVALUE>)"),
        InInstanceName("<VALUE/>"),
        InInstanceName("<KEYBINDING><KEYVALUE/></KEYBINDING>"),
        InInstanceName(R"(<KEYBINDING NAME="K"/>)"),
        InInstanceName(R"(<KEYBINDING NAME="K"><VALUE/></KEYBINDING>)"),
        InInstanceName("<KEYVALUE/><KEYVALUE/>"),
        InInstanceName(R"(<KEYBINDING NAME="K"><KEYVALUE/></KEYBINDING><KEYVALUE/>)"),
        InInstanceName(R"(<KEYVALUE VALUETYPE="float">1</KEYVALUE>)"),
        InInstanceName(R"(<KEYVALUE TYPE="reference">1</KEYVALUE>)"),
        InInstanceName(R"(<KEYVALUE TYPE="any">1</KEYVALUE>)"),
        InInstanceName("<VALUE.REFERENCE/>"),
        InInstanceName("<VALUE.REFERENCE><VALUE/></VALUE.REFERENCE>"),
        InInstanceName("<VALUE.REFERENCE><CLASSNAME/></VALUE.REFERENCE>"),
        InInstanceName("<VALUE.REFERENCE><LOCALCLASSPATH/></VALUE.REFERENCE>"),
        InInstanceName(R"(<VALUE.REFERENCE><LOCALCLASSPATH><HOST/><CLASSNAME NAME="A"/>)"
                       R"(</LOCALCLASSPATH></VALUE.REFERENCE>)"),
        InInstanceName(R"(<VALUE.REFERENCE><CLASSPATH><NAMESPACEPATH/><CLASSNAME NAME="A"/>)"
                       R"(</CLASSPATH></VALUE.REFERENCE>)"),
    };
    for (const std::string& body : bodies) {
        EXPECT_EQ(Outcome(body), "400 request-not-loosely-valid") << body;
    }
}

} // namespace
