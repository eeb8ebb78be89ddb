// CIMMethod and CIMObject say what the body calls.
#include "Support.hpp"

#include <gtest/gtest.h>

#include <tuple>

namespace {

using cimserver::cimxml::HeaderList;
using cimxml_test::Ask;
using cimxml_test::FakeExecutor;
using cimxml_test::Reply;

std::string Outcome(const std::string& body, const HeaderList& moreHeaders) {
    HeaderList headers = {{"CIMOperation", "MethodCall"}};
    headers.insert(headers.end(), moreHeaders.begin(), moreHeaders.end());
    FakeExecutor executor;
    const Reply reply = Ask(body, executor, headers);
    EXPECT_EQ(executor.last.has_value(), reply.status.httpStatus == 200);
    return reply.status.httpStatus == 200
               ? "taken"
               : std::to_string(reply.status.httpStatus) + " " + reply.Header("CIMError");
}

const std::string mismatch = "400 header-mismatch";

TEST(HeaderMismatch, BothHeadersMustBeThereOnce) {
    const std::string body = test_support::IntrinsicCall("EnumerateClassNames", "");
    const HeaderList::value_type method("CIMMethod", "EnumerateClassNames");
    const HeaderList::value_type object("CIMObject", "root%2Fcimv2");
    EXPECT_EQ(Outcome(body, {method, object}), "taken");
    EXPECT_EQ(Outcome(body, {object, method}), "taken");
    EXPECT_EQ(Outcome(body, {method}), mismatch);
    EXPECT_EQ(Outcome(body, {object}), mismatch);
    EXPECT_EQ(Outcome(body, {method, method, object}), mismatch);
    EXPECT_EQ(Outcome(body, {method, object, object}), mismatch);
}

struct Row {
    const char* header;
    bool fits;
};

void ExpectFit(const std::string& body, const char* method, const Row& row) {
    EXPECT_EQ(Outcome(body, {{"CIMMethod", method}, {"CIMObject", row.header}}),
              row.fits ? "taken" : mismatch)
        << row.header << '\n'
        << body;
}

TEST(HeaderMismatch, CimMethodIsTheNameInAnyCaseAndEncoding) {
    const std::string body = test_support::IntrinsicCall("EnumerateClassNames", "");
    for (const Row& row : {Row{"EnumerateClassNames", true}, Row{"enumerateclassnames", true},
                           Row{"%45numerateClassNames", true}, Row{"EnumerateClasses", false},
                           Row{"", false}, Row{"%4", false}, Row{"%zz", false}, Row{"%", false}}) {
        EXPECT_EQ(Outcome(body, {{"CIMMethod", row.header}, {"CIMObject", "root/cimv2"}}),
                  row.fits ? "taken" : mismatch)
            << row.header;
    }
}

TEST(HeaderMismatch, ANamespaceMayHoldPoints) {
    std::string body = test_support::ExtrinsicCall(
        "M",
        R"(<INSTANCENAME CLASSNAME="A"><KEYBINDING NAME="K"><KEYVALUE>x:y</KEYVALUE></KEYBINDING>)"
        R"(</INSTANCENAME>)",
        "");
    const std::string usual = "cimv2";
    body.replace(body.find(usual), usual.size(), "acme.v2");
    for (const Row& row : {Row{R"(root/acme.v2:A.K="x:y")", true},
                           Row{R"(root/acme.v3:A.K="x:y")", false}, Row{"root/acme.v2:A", false}}) {
        ExpectFit(body, "M", row);
    }
}

TEST(HeaderMismatch, CimObjectOfAnIntrinsicCallIsItsNamespace) {
    const std::string body = test_support::IntrinsicCall("EnumerateClassNames", "");
    for (const Row& row :
         {Row{"root%2Fcimv2", true}, Row{"root/cimv2", true}, Row{"Root%2fCIMV2", true},
          Row{"/root/cimv2", true}, Row{"root%2Fcimv", false}, Row{"root%2Fcimv2%3AA", false},
          Row{"root", false}, Row{"", false}, Row{"root%2", false}}) {
        ExpectFit(body, "EnumerateClassNames", row);
    }
}

TEST(HeaderMismatch, CimObjectOfAMethodOfAClassIsTheClassPath) {
    const std::string body = test_support::ExtrinsicCall("Run", R"(<CLASSNAME NAME="ZNX_A"/>)", "");
    for (const Row& row :
         {Row{"root%2Fcimv2%3AZNX_A", true}, Row{"root/cimv2:ZNX_A", true},
          Row{"/ROOT/cimv2:znx_a", true}, Row{"//host/root/cimv2:ZNX_A", true},
          Row{"http://host:5988/root/cimv2:ZNX_A", true}, Row{"ZNX_A", false},
          Row{"root/cimv2", false}, Row{"root/cimv2:ZNX_B", false}, Row{"root:ZNX_A", false},
          Row{"root/cimv2:ZNX_A.K=1", false}, Row{"", false}, Row{":", false}}) {
        ExpectFit(body, "Run", row);
    }
}

std::string OnInstance(const std::string& bindings) {
    return test_support::ExtrinsicCall(
        "Run", R"(<INSTANCENAME CLASSNAME="ZNX_A">)" + bindings + "</INSTANCENAME>", "");
}

std::string Binding(const std::string& name, const std::string& type, const std::string& value) {
    return "<KEYBINDING NAME=\"" + name + "\"><KEYVALUE VALUETYPE=\"" + type + "\">" + value +
           "</KEYVALUE></KEYBINDING>";
}

TEST(HeaderMismatch, CimObjectOfAMethodOfAnInstanceHasItsKeys) {
    const std::string body =
        OnInstance(Binding("Id", "string", "a,b=\"c\" &amp; \\") + Binding("N", "numeric", "5") +
                   Binding("B", "boolean", "TRUE"));
    const std::string start = "root/cimv2:ZNX_A.";
    const std::string id = R"(Id="a,b=\"c\" & \\")";
    for (const auto& [keys, fits] :
         {std::pair(id + ",N=5,B=TRUE", true), std::pair("B=true,n=5," + id, true),
          std::pair(id + ",N=\"5\",B=\"TRUE\"", true), std::pair(id + ", N = 5 , B=TRUE", true),
          std::pair(id + ",N=6,B=TRUE", false), std::pair(id + ",N=5,B=FALSE", false),
          std::pair(id + ",N=5", false), std::pair(id + ",N=5,B=TRUE,C=1", false),
          std::pair(id + ",M=5,B=TRUE", false),
          std::pair(std::string("Id=\"a\",N=5,B=TRUE"), false),
          std::pair(id + "x,N=5,B=TRUE", false),
          std::pair(std::string("N=5,B=TRUE,Id=\"open"), false)}) {
        ExpectFit(body, "Run", {(start + keys).c_str(), fits});
    }
    ExpectFit(body, "Run", {"root/cimv2:ZNX_A", false});
}

TEST(HeaderMismatch, TextsAreComparedByteForByteWhateverTheyHold) {
    const Row rows[] = {
        {R"(root/cimv2:ZNX_A.Id="%C3%A4")", true},
        {"root/cimv2:ZNX_A.Id=\"\xC3\xA4\"", true},
        {R"(root/cimv2:ZNX_A.Id="a")", false},
        {R"(root/cimv2:ZNX_A.ID="%C3%84")", false},
    };
    for (const Row& row : rows) {
        ExpectFit(OnInstance(Binding("Id", "string", "\xC3\xA4")), "Run", row);
    }
    ExpectFit(OnInstance(Binding("Id", "string", "a&#10;b&#9;")), "Run",
              {R"(root/cimv2:ZNX_A.Id="a%0Ab%09")", true});
    ExpectFit(OnInstance(Binding("Id", "string", "a&#10;b&#9;")), "Run",
              {R"(root/cimv2:ZNX_A.Id="a\nb\t")", true});
    ExpectFit(OnInstance(Binding("Id", "string", " a ")), "Run",
              {R"(root/cimv2:ZNX_A.Id=" a ")", true});
    ExpectFit(OnInstance(Binding("Id", "string", " a ")), "Run",
              {R"(root/cimv2:ZNX_A.Id="a")", false});
}

TEST(HeaderMismatch, TextsInQuotesNeedNoPercentSigns) {
    for (const auto& [text, header, fits] :
         {std::tuple("5%", R"("5%")", true), std::tuple("5%", R"("5%25")", true),
          std::tuple("5%", R"(%225%25%22)", true), std::tuple("5%41", R"("5%41")", true),
          std::tuple("5A", R"("5%41")", true), std::tuple("5a", R"("5%41")", false),
          std::tuple(R"(C:\new)", R"("C:\new")", false),
          std::tuple(R"(C:\new)", R"("C:\\new")", true),
          std::tuple(R"(C:\new)", R"("C:new")", false), std::tuple("5%", R"("6%")", false)}) {
        ExpectFit(OnInstance(Binding("Id", "string", text)), "Run",
                  {(std::string("root%2Fcimv2%3AZNX_A.Id=") + header).c_str(), fits});
    }
}

TEST(HeaderMismatch, ASingleCharacterMayStandInSingleQuotes) {
    const std::string body =
        OnInstance(R"(<KEYBINDING NAME="C"><KEYVALUE TYPE="char16">"</KEYVALUE></KEYBINDING>)"
                   R"(<KEYBINDING NAME="D"><KEYVALUE TYPE="char16">'</KEYVALUE></KEYBINDING>)");
    ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.C='"',D='\'')", true});
    ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.C="\"",D="'")", true});
    ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.C='"',D=''')", false});
    ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.C='x',D='\'')", false});
}

TEST(HeaderMismatch, AKeyWithoutNameIsComparedByItsValue) {
    const std::string body = OnInstance("<KEYVALUE>x</KEYVALUE>");
    ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.Id="x")", true});
    ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A="x")", false});
    ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.Id="y")", false});
}

TEST(HeaderMismatch, ReferencesAsKeysArePathsThemselves) {
    const std::string inner =
        R"(<INSTANCENAME CLASSNAME="B">)" + Binding("K", "string", "x") + "</INSTANCENAME>";
    const std::string local = "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"n\"/>"
                              "</LOCALNAMESPACEPATH>" +
                              inner + "</LOCALINSTANCEPATH>";
    const std::string full = "<INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST><LOCALNAMESPACEPATH>"
                             "<NAMESPACE NAME=\"n\"/></LOCALNAMESPACEPATH></NAMESPACEPATH>" +
                             inner + "</INSTANCEPATH>";
    for (const std::string& path : {inner, local, full}) {
        const std::string body = OnInstance("<KEYBINDING NAME=\"R\"><VALUE.REFERENCE>" + path +
                                            "</VALUE.REFERENCE></KEYBINDING>");
        ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.R="n:B.K=\"x\"")", true});
        ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.R="//h/n:B.K=\"x\"")", true});
        ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.R="B.K=\"x\"")", true});
        ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.R="n:B.K=\"y\"")", false});
        ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.R="n:C.K=\"x\"")", false});
        ExpectFit(body, "Run", {R"(root/cimv2:ZNX_A.R="m:B.K=\"x\"")", path == inner});
    }
}

TEST(HeaderMismatch, FaultsOfTheBodyComeFirst) {
    const HeaderList nothing;
    EXPECT_EQ(Outcome("no XML", nothing), "400 request-not-well-formed");
    EXPECT_EQ(Outcome("<CIM/>", nothing), "400 request-not-loosely-valid");
    EXPECT_EQ(Outcome(R"(<CIM CIMVERSION="3.0" DTDVERSION="2.0"/>)", nothing),
              "501 unsupported-cim-version");
}

} // namespace
