// Requests that are answered by an HTTP status.
#include "Support.hpp"

#include <gtest/gtest.h>

namespace {

using cimserver::cimxml::HeaderList;
using cimxml_test::Ask;
using cimxml_test::FakeExecutor;
using cimxml_test::OperationHeaders;
using cimxml_test::Reply;

const std::string good = test_support::IntrinsicCall("EnumerateClassNames", "");

/// Status and CIMError; an operation must not have been called.
std::string Outcome(const std::string& body, const HeaderList& headers,
                    const std::string& method = "POST") {
    FakeExecutor executor;
    const Reply reply = Ask(body, executor, headers, method);
    const bool isAnswered = reply.status.httpStatus == 200;
    EXPECT_EQ(executor.last.has_value(), isAnswered);
    return std::to_string(reply.status.httpStatus) + " " + reply.Header("CIMError");
}

std::string Outcome(const std::string& body) {
    return Outcome(body, OperationHeaders(body));
}

/// The headers of the good request, with these in the place of those of the same name.
HeaderList With(const HeaderList& changed) {
    HeaderList headers = OperationHeaders(good);
    for (const auto& header : changed) {
        std::erase_if(headers, [&](const auto& other) { return other.first == header.first; });
    }
    headers.insert(headers.end(), changed.begin(), changed.end());
    return headers;
}

HeaderList Without(const std::string& name) {
    HeaderList headers = OperationHeaders(good);
    std::erase_if(headers, [&](const auto& header) { return header.first == name; });
    return headers;
}

HeaderList And(HeaderList headers, const HeaderList& more) {
    headers.insert(headers.end(), more.begin(), more.end());
    return headers;
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
    for (const char* method : {"GET", "PUT", "OPTIONS", "post", "M-GET", ""}) {
        FakeExecutor executor;
        const Reply reply = Ask(good, executor, OperationHeaders(good), method);
        EXPECT_EQ(reply.status.httpStatus, 405) << method;
        EXPECT_EQ(reply.Header("Allow"), "POST, M-POST");
    }
}

struct HeaderRow {
    HeaderList headers;
    const char* outcome;
};

TEST(ProtocolErrors, CimOperationAndVersion) {
    const HeaderRow rows[] = {
        {With({{"CIMOperation", "methodcall"}}), "200 (absent)"},
        {With({{"Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=23"}}), "200 (absent)"},
        {Without("CIMOperation"), "400 unsupported-operation"},
        {With({{"CIMOperation", ""}}), "400 unsupported-operation"},
        {With({{"CIMOperation", "MethodResponse"}}), "400 unsupported-operation"},
        {And(With({}), {{"CIMOperation", "MethodCall"}}), "400 unsupported-operation"},
        {And(Without("CIMOperation"), {{"23-CIMOperation", "MethodCall"}}),
         "400 unsupported-operation"},
        {And(Without("CIMOperation"), {{"CIMExport", "MethodRequest"}}),
         "400 unsupported-operation"},
        {With({{"CIMProtocolVersion", "1.0"}}), "200 (absent)"},
        {With({{"CIMProtocolVersion", "1.4"}}), "200 (absent)"},
        {With({{"CIMProtocolVersion", "2.0"}}), "501 unsupported-protocol-version"},
        {With({{"CIMProtocolVersion", ""}}), "501 unsupported-protocol-version"},
        {With({{"CIMBatch", ""}}), "501 multiple-requests-unsupported"},
    };
    for (const HeaderRow& row : rows) {
        EXPECT_EQ(Outcome(good, row.headers), row.outcome) << testing::PrintToString(row.headers);
    }
}

TEST(ProtocolErrors, BodiesOfOtherMediaTypesAndCodings) {
    const std::string refused = "415 (absent)";
    const std::string taken = "200 (absent)";
    const std::pair<const char*, std::string> types[] = {
        {"application/xml", taken},
        {"text/xml", taken},
        {"Application/XML; Charset=\"UTF-8\"", taken},
        {"text/xml;charset=utf-8", taken},
        {"application/xml ; version=1 ; charset = utf-8", taken},
        {"application/xml; charset=iso-8859-1", refused},
        {"application/xml; charset=\"\"", refused},
        {"application/xml; charset", refused},
        {"application/json", refused},
        {"text/plain; charset=utf-8", refused},
        {"application/xml2", refused},
        {"", refused},
    };
    for (const auto& [type, outcome] : types) {
        EXPECT_EQ(Outcome(good, With({{"Content-Type", type}})), outcome) << type;
    }
    EXPECT_EQ(Outcome(good, With({{"Content-Encoding", "identity"}})), taken);
    EXPECT_EQ(Outcome(good, With({{"Content-Encoding", "gzip"}})), refused);
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

TEST(ProtocolErrors, ElementsAndAttributesThatTheDtdDoesNotKnowArePassedOver) {
    const std::string bodies[] = {
        Replaced("<SIMPLEREQ>",
                 R"(<NEW x="1">text<IMETHODCALL NAME="GetClass"/></NEW><SIMPLEREQ>)"),
        Replaced("</IMETHODCALL>", "<EXTRA/></IMETHODCALL>"),
        Replaced("<IMETHODCALL ", "<IMETHODCALL extra='1' "),
        Replaced("<CIM ", "<CIM xmlns:x='urn:x' "),
    };
    for (const std::string& body : bodies) {
        EXPECT_EQ(Outcome(body, OperationHeaders(good)), "200 (absent)") << body;
    }
    EXPECT_EQ(Outcome(Replaced("<SIMPLEREQ>", "<NEW><SIMPLEREQ>")
                          .replace(good.find("</MESSAGE>") + 5, 0, "</NEW>")),
              "400 request-not-loosely-valid");
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
        InCall(nameSpace + "stray text"),
        InCall(
            nameSpace +
            R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="A"><VALUE/></CLASSNAME></IPARAMVALUE>)"),
        InCall(nameSpace +
               R"(<IPARAMVALUE NAME="ClassName"><VALUE><VALUE/></VALUE></IPARAMVALUE>)"),
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
