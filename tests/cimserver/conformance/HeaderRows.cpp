// What the headers of CIM-XML must say (DMTF DSP0200, clause 6).
#include "cimserver/conformance/Table.hpp"

namespace conformance {

namespace {

const std::string item = R"(<CLASSNAME NAME="ET_Item"/>)";
const std::string itemOne = R"(<INSTANCENAME CLASSNAME="ET_Item"><KEYBINDING NAME="Id">)"
                            R"(<KEYVALUE>1</KEYVALUE></KEYBINDING></INSTANCENAME>)";
const std::string man = "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=23";

Request MPost(const std::string& declaration = man, const std::string& prefix = "23-") {
    return Request().Method("M-POST").Adding("Man", declaration).Prefixed(prefix);
}

Expected WithPrefix(Expected expected) {
    expected.prefix = "23-";
    return expected;
}

} // namespace

Section HeaderRows() {
    const Request good;
    const Request onClass = MethodCall("Silent", item);
    const Request onInstance = MethodCall("Silent", itemOne);
    const Expected mismatch = Refused(400, "header-mismatch");
    const Expected noOperation = Refused(400, "unsupported-operation");
    return {
        "The CIM headers",
        {
            {"no `CIMOperation`", good.Without("CIMOperation"), noOperation},
            {"`CIMOperation` empty", good.With("CIMOperation", ""), noOperation},
            {"`CIMOperation: MethodResponse`", good.With("CIMOperation", "MethodResponse"),
             noOperation},
            {"`CIMOperation` on two lines", good.With("CIMOperation", "\r\n MethodCall"),
             noOperation},
            {"`CIMOperation` twice", good.Adding("CIMOperation", "MethodCall"), noOperation},
            {"`CIMExport` instead of `CIMOperation`",
             good.Without("CIMOperation").Adding("CIMExport", "MethodRequest"), noOperation},
            {"`CIMOperation` with a prefix in a POST", good.Prefixed("23-"), noOperation},
            {"`CIMProtocolVersion: 2.0`", good.With("CIMProtocolVersion", "2.0"),
             Refused(501, "unsupported-protocol-version")},
            {"`CIMProtocolVersion: one`", good.With("CIMProtocolVersion", "one"),
             Refused(501, "unsupported-protocol-version")},
            {"`CIMBatch`", good.Without("CIMMethod").Without("CIMObject").Adding("CIMBatch", ""),
             Refused(501, "multiple-requests-unsupported")},
            {"no `CIMMethod`", good.Without("CIMMethod"), mismatch},
            {"`CIMMethod` twice", good.Adding("CIMMethod", "EnumerateClassNames"), mismatch},
            {"`CIMMethod` of another operation", good.With("CIMMethod", "GetClass"), mismatch},
            {"`CIMMethod` with a percent sign and no digits", good.With("CIMMethod", "%zz"),
             mismatch},
            {"no `CIMObject`", good.Without("CIMObject"), mismatch},
            {"`CIMObject` twice", good.Adding("CIMObject", "root%2Fcimv2"), mismatch},
            {"`CIMObject` of another namespace", good.With("CIMObject", "root%2Fother"), mismatch},
            {"`CIMObject` with a percent sign and one digit", good.With("CIMObject", "root%2"),
             mismatch},
            {"`CIMObject` with a class where the call has a namespace",
             good.With("CIMObject", "root%2Fcimv2%3AET_Item"), mismatch},
            {"`CIMObject` with a namespace where the method has a class",
             onClass.With("CIMObject", "root%2Fcimv2"), mismatch},
            {"`CIMObject` of another class", onClass.With("CIMObject", "root%2Fcimv2%3AET_Box"),
             mismatch},
            {"`CIMObject` of a class without namespace", onClass.With("CIMObject", "ET_Item"),
             mismatch},
            {"`CIMObject` of the class where the method has an instance",
             onInstance.With("CIMObject", "root%2Fcimv2%3AET_Item"), mismatch},
            {"`CIMObject` with another key value",
             onInstance.With("CIMObject", "root/cimv2:ET_Item.Id=%222%22"), mismatch},
            {"`CIMObject` with another key name",
             onInstance.With("CIMObject", "root/cimv2:ET_Item.Name=%221%22"), mismatch},
            {"`CIMObject` with a key too many",
             onInstance.With("CIMObject", "root/cimv2:ET_Item.Id=%221%22,Name=%222%22"), mismatch},
            {"`CIMObject` with a text that does not end",
             onInstance.With("CIMObject", "root/cimv2:ET_Item.Id=%221"), mismatch},
        }};
}

Section ExtensionRows() {
    return {"M-POST",
            {
                {"the good request", MPost(), WithPrefix(Answered())},
                {"the extension in quotes",
                 MPost(R"("http://www.dmtf.org/cim/mapping/http/v1.0"; ns=23)"),
                 WithPrefix(Answered())},
                {"no prefix declared and none used",
                 MPost("http://www.dmtf.org/cim/mapping/http/v1.0", ""), Answered()},
                {"an operation that fails",
                 MPost().Replacing("cimv2", "none").With("23-CIMObject", "root%2Fnone"),
                 WithPrefix(Error(3, "root/none"))},
                {"no `Man`", MPost().Without("Man"), Status(510)},
                {"`Man` of another extension", MPost("http://localhost/; ns=23"), Status(510)},
                {"`Man` with a second extension", MPost(man + ", http://localhost/; ns=24"),
                 Status(510)},
                {"a prefix that is no number",
                 MPost("http://www.dmtf.org/cim/mapping/http/v1.0; ns=x"), Status(510)},
                {"headers without the prefix", MPost(man, ""),
                 WithPrefix(Refused(400, "unsupported-operation"))},
                {"headers with another prefix", MPost(man, "24-"),
                 WithPrefix(Refused(400, "unsupported-operation"))},
                {"`23-CIMProtocolVersion: 2.0`", MPost().With("23-CIMProtocolVersion", "2.0"),
                 WithPrefix(Refused(501, "unsupported-protocol-version"))},
                {"no `23-CIMMethod`", MPost().Without("23-CIMMethod"),
                 WithPrefix(Refused(400, "header-mismatch"))},
                {"a body that is no XML", MPost().Body("hello"),
                 WithPrefix(Refused(400, "request-not-well-formed"))},
            }};
}

Section OddHeaderRows() {
    const Request good;
    const Request onClass = MethodCall("Silent", item);
    const Request onInstance = MethodCall("Silent", itemOne);
    const std::string body = test_support::IntrinsicCall("EnumerateClassNames", "");
    const Expected silent = Answered(R"(<METHODRESPONSE NAME="Silent">)");
    return {
        "Headers that are allowed",
        {
            {"the good request", good, Answered()},
            {"HTTP/1.0 without `Host`", good.Line("/cimom HTTP/1.0").Without("Host"), Answered()},
            {"another target", good.Line("/wbem?x=1 HTTP/1.1"), Answered()},
            {"the body in two chunks",
             good.Without("Content-Length")
                 .Adding("Transfer-Encoding", "chunked")
                 .Raw(good.Without("Content-Length")
                          .Adding("Transfer-Encoding", "chunked")
                          .Body("")
                          .Without("Content-Length")
                          .Text() +
                      "5\r\n" + body.substr(0, 5) + "\r\n" +
                      [&] {
                          char size[16];
                          std::snprintf(size, sizeof size, "%zx", body.size() - 5);
                          return std::string(size);
                      }() +
                      "\r\n" + body.substr(5) + "\r\n0\r\n\r\n"),
             Answered()},
            {"`cimoperation: METHODCALL`",
             good.Without("CIMOperation").Adding("cimoperation", "METHODCALL"), Answered()},
            {"no `CIMProtocolVersion`", good.Without("CIMProtocolVersion"), Answered()},
            {"`CIMProtocolVersion: 1.4`", good.With("CIMProtocolVersion", "1.4"), Answered()},
            {"no `Content-Type`", good.Without("Content-Type"), Answered()},
            {"`Content-Type: text/xml`", good.With("Content-Type", "text/xml"), Answered()},
            {"`Content-Type` with charset `UTF-8` without quotes",
             good.With("Content-Type", "Application/XML;charset=UTF-8"), Answered()},
            {"`Content-Encoding: identity`", good.Adding("Content-Encoding", "identity"),
             Answered()},
            {"a header that nobody knows", good.Adding("X-Anything", "1"), Answered()},
            {"`CIMMethod` in other case", good.With("CIMMethod", "enumerateclassnames"),
             Answered()},
            {"`CIMMethod` with a letter as percent sign and digits",
             good.With("CIMMethod", "%45numerateClassNames"), Answered()},
            {"`CIMObject` without percent signs", good.With("CIMObject", "root/cimv2"), Answered()},
            {"`CIMObject` with a slash before it", good.With("CIMObject", "%2FRoot%2Fcimv2"),
             Answered()},
            {"`CIMObject` of a class", onClass, silent},
            {"`CIMObject` of a class with a host",
             onClass.With("CIMObject", "//localhost/root/cimv2:ET_Item"), silent},
            {"`CIMObject` of an instance", onInstance, silent},
            {"`CIMObject` of an instance without percent signs",
             onInstance.With("CIMObject", R"(root/cimv2:ET_Item.Id="1")"), silent},
        }};
}

} // namespace conformance
