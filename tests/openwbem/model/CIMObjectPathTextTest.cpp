#include "OW_CIM.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <gtest/gtest.h>
#include <string>

namespace {

using namespace OpenWBEM;
using tests::Text;
using tests::Thrown;

CIMObjectPath WithKey(const char* className, const char* nameSpace, const char* key,
                      const CIMValue& value) {
    CIMObjectPath path(className, nameSpace);
    path.setKeyValue(key, value);
    return path;
}

TEST(CIMObjectPathText, EveryForm) {
    EXPECT_EQ(CIMObjectPath("ZNX_A", "root/cimv2").toString(), "/root/cimv2:ZNX_A");
    EXPECT_EQ(WithKey("ZNX_A", "root/cimv2", "K", CIMValue("a\"b\\c\nd")).toString(),
              "/root/cimv2:ZNX_A.K=\"a\\\"b\\\\c\\nd\"");
    CIMObjectPath several = WithKey("ZNX_A", "root/cimv2", "K", CIMValue("x"));
    several.setKeyValue("N", CIMValue(UInt32(5))).setKeyValue("B", CIMValue(true));
    EXPECT_EQ(several.toString(), "/root/cimv2:ZNX_A.K=\"x\",N=\"5\",B=\"true\"");
    EXPECT_EQ(several.modelPath(), "ZNX_A.K=\"x\",N=\"5\",B=\"true\"");
    const CIMObjectPath inner = WithKey("ZNX_A", "root/cimv2", "K", CIMValue("x"));
    EXPECT_EQ(WithKey("ZNX_R", "root", "Ref", CIMValue(inner)).toString(),
              "/root:ZNX_R.Ref=\"/root/cimv2:ZNX_A.K=\\\"x\\\"\"");
    CIMObjectPath null("ZNX_K", "root");
    null.addKey(CIMProperty("InstanceID", CIMDataType(CIMDataType::STRING)));
    EXPECT_EQ(null.toString(), "/root:ZNX_K.InstanceID=\"null\"");
    EXPECT_EQ(WithKey("ZNX_A", "", "InstanceID", CIMValue("1")).toString(),
              "/:ZNX_A.InstanceID=\"1\"");
    EXPECT_EQ(CIMObjectPath().toString(), "/:");
    EXPECT_EQ(inner.toMOF(), "/root/cimv2:ZNX_A.K=\\\"x\\\"");
}

TEST(CIMObjectPathText, TheHostComesFirstAndThePortWhenItIsUnusual) {
    CIMObjectPath path("ZNX_A", "root");
    EXPECT_EQ(path.setHost("srv").toString(), "http://srv/root:ZNX_A");
    EXPECT_EQ(path.getHost(), "srv");
    EXPECT_EQ(CIMObjectPath::parse("https://srv:5990/root:A.k=1").toString(),
              "https://srv:5990/root:A.k=\"1\"");
    EXPECT_EQ(CIMObjectPath::parse("http://srv:5988/root:A.k=1").toString(),
              "http://srv/root:A.k=\"1\"");
}

struct ParseRow {
    const char* text;
    const char* path; // as toString prints it
};

TEST(CIMObjectPathText, ParseReadsEveryPart) {
    const ParseRow rows[] = {
        {"root/cimv2:ZNX_A.K=\"v\",N=5", "/root/cimv2:ZNX_A.K=\"v\",N=\"5\""},
        {"/root/cimv2:ZNX_A.K=\"v\"", "/root/cimv2:ZNX_A.K=\"v\""},
        {"ZNX_A.K=\"v\"", "/root:ZNX_A.K=\"v\""},
        {"http://srv/root:ZNX_A.K=\"v\"", "http://srv/root:ZNX_A.K=\"v\""},
        {"http://srv.example.com:80/root:A.K=1", "http://srv.example.com:80/root:A.K=\"1\""},
        {"http://[::1]:5990/root:A.K=1", "http://[::1]:5990/root:A.K=\"1\""},
        {"http://srv/A.K=1", "http://srv/root:A.K=\"1\""},
        {"A.K=\"a\\\"b\\\\c\"", "/root:A.K=\"a\\\"b\\\\c\""},
        {"A.K=\"x\\ny\"", "/root:A.K=\"xny\""},
        {"A.K=\"\"", "/root:A.K=\"\""},
        {"A.K=\"a:b.c=d,e://f\",L=TRUE", "/root:A.K=\"a:b.c=d,e://f\",L=\"TRUE\""},
        {"root:R.Ref=\"/root:A.K=\\\"x\\\"\"", "/root:R.Ref=\"/root:A.K=\\\"x\\\"\""},
    };
    for (const ParseRow& row : rows) {
        EXPECT_EQ(CIMObjectPath::parse(row.text).toString(), row.path) << row.text;
    }
}

TEST(CIMObjectPathText, EveryParsedKeyIsAString) {
    const CIMObjectPath path = CIMObjectPath::parse("root:A.N=5,B=true,S=\"x\"");
    for (const CIMProperty& key : path.getKeys()) {
        EXPECT_EQ(key.getDataType().getType(), CIMDataType::STRING) << key.getName();
    }
    EXPECT_EQ(path.getKeyValue("N").toString(), "5");
}

TEST(CIMObjectPathText, ParseOfNothingIsNull) {
    EXPECT_TRUE(!CIMObjectPath::parse(""));
    EXPECT_TRUE(!CIMObjectPath::parse(String()));
}

TEST(CIMObjectPathText, ParseRefusesWhatIsNoInstancePath) {
    const char* const texts[] = {"A",
                                 "root:A",
                                 "A.",
                                 "A.K",
                                 ".K=1",
                                 "A.K=",
                                 "A.=1",
                                 "A.K=\"x",
                                 "A.K=\"x\\\"",
                                 "A.K=\"x\"y",
                                 "A.K=1,",
                                 "A.K=1,L",
                                 "http://srv",
                                 "http:///root:A.K=1",
                                 "http://srv:x/root:A.K=1",
                                 "K=1",
                                 "http://srv:70000/root:A.K=1"};
    for (const char* const text : texts) {
        EXPECT_EQ(Thrown([text] { CIMObjectPath::parse(text); }),
                  "CIMException: invalid parameter passed to method (Invalid object path: " +
                      std::string(text) + ")");
    }
}

TEST(CIMObjectPathText, EscapeAndUnEscape) {
    EXPECT_EQ(CIMObjectPath::escape("plain"), "plain");
    EXPECT_EQ(CIMObjectPath::escape(""), "");
    EXPECT_EQ(CIMObjectPath::escape("\"\\"), "\\\"\\\\");
    EXPECT_EQ(CIMObjectPath::escape("\b\t\n\f\r"), "\\b\\t\\n\\f\\r");
    EXPECT_EQ(CIMObjectPath::escape("\x01\x1f"), "\\x0001\\x001F");
    EXPECT_EQ(CIMObjectPath::escape("\xc3\xa4"), "\xc3\xa4");
    EXPECT_EQ(CIMObjectPath::unEscape("a\\\"b\\\\c"), "a\"b\\c");
    EXPECT_EQ(CIMObjectPath::unEscape("x\\ny"), "xny");
    EXPECT_EQ(CIMObjectPath::unEscape("end\\"), "end");
}

TEST(CIMNameSpace, HasHostProtocolAndPort) {
    CIMNameSpace nameSpace("/root/cimv2");
    EXPECT_EQ(nameSpace.getNameSpace(), "root/cimv2");
    EXPECT_EQ(nameSpace.getHost(), "");
    EXPECT_TRUE(nameSpace.isLocal());
    EXPECT_EQ(nameSpace.getProtocol(), "http");
    EXPECT_EQ(nameSpace.getPort(), 5988);
    EXPECT_EQ(nameSpace.toString(), "/root/cimv2");
    nameSpace.setHost("srv").setPort(80).setProtocol("https");
    EXPECT_FALSE(nameSpace.isLocal());
    EXPECT_EQ(nameSpace.toString(), "https://srv:80/root/cimv2");
    EXPECT_TRUE(nameSpace.sameNameSpace(CIMNameSpace("ROOT/cimv2")));
    EXPECT_FALSE(nameSpace.sameNameSpace(CIMNameSpace("root")));
}

} // namespace
