// What the XML must be (DMTF DSP0200, DSP0201, DSP0203).
#include "cimserver/conformance/Table.hpp"

namespace conformance {

namespace {

const std::string nameSpacePath = R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/>)"
                                  R"(<NAMESPACE NAME="cimv2"/></LOCALNAMESPACEPATH>)";

Request Inside(const std::string& message) {
    return Request().Body(R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0">)"
                          R"(<MESSAGE ID="1" PROTOCOLVERSION="1.0">)" +
                          message + "</MESSAGE></CIM>");
}

Request Call(const std::string& content) {
    return Inside(R"(<SIMPLEREQ><IMETHODCALL NAME="EnumerateClassNames">)" + content +
                  "</IMETHODCALL></SIMPLEREQ>");
}

Request GetInstance(const std::string& instanceName) {
    return Operation("GetInstance", Parameter("InstanceName", instanceName));
}

std::string Many(const std::string& part, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

std::string Attributes(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += " A" + std::to_string(i) + "='1'";
    }
    return text;
}

std::string Utf16(const std::string& ascii) {
    std::string text = "\xFF\xFE";
    for (const char letter : ascii) {
        text += letter;
        text += '\0';
    }
    return text;
}

const std::string goodBody = test_support::IntrinsicCall("EnumerateClassNames", "");
const std::string declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

} // namespace

Section NotWellFormedRows() {
    const Request good;
    const Expected refused = Refused(400, "request-not-well-formed");
    const std::string name = "NAME=\"EnumerateClassNames\"";
    return {
        "XML that is not well-formed",
        {
            {"an empty body", good.Body(""), refused},
            {"text", good.Body("hello"), refused},
            {"a start tag without end tag", good.Replacing("</CIM>", ""), refused},
            {"another end tag", good.Replacing("</CIM>", "</CIN>"), refused},
            {"two roots", good.Replacing("</CIM>", "</CIM><CIM/>"), refused},
            {"text behind the root", good.Replacing("</CIM>", "</CIM>x"), refused},
            {"a blank before the XML declaration", good.Replacing("<?xml", " <?xml"), refused},
            {"an entity that is not declared", good.Replacing(name, "NAME='&unknown;'"), refused},
            {"an ampersand alone", good.Replacing(name, "NAME='&'"), refused},
            {"`<` in an attribute", good.Replacing(name, "NAME='<'"), refused},
            {"an attribute without quotes", good.Replacing(name, "NAME=x"), refused},
            {"an attribute twice", good.Replacing(name, name + " " + name), refused},
            {"`]]>` in text", good.Replacing("<SIMPLEREQ>", "]]><SIMPLEREQ>"), refused},
            {"a comment with `--`", good.Replacing("<SIMPLEREQ>", "<!-- -- --><SIMPLEREQ>"),
             refused},
            {"bytes that are no UTF-8", good.Replacing(name, "NAME='\xC3('"), refused},
            {"a control character", good.Replacing(name, "NAME='\x01'"), refused},
            {"a reference to a control character", good.Replacing(name, "NAME='&#1;'"), refused},
            {"an encoding that nobody knows", good.Replacing("utf-8", "utf-99"), refused},
            {"an end tag without name", good.Replacing("</MESSAGE>", "</"), refused},
        }};
}

Section NotValidRows() {
    const Request good;
    const Expected refused = Refused(400, "request-not-valid");
    const auto withDoctype = [&](const std::string& doctype) {
        return good.Replacing(declaration, declaration + doctype);
    };
    return {
        "XML that is not taken although it is well-formed",
        {
            {"a document type declaration", withDoctype("<!DOCTYPE CIM>"), refused},
            {"one with a system identifier",
             withDoctype("<!DOCTYPE CIM SYSTEM \"http://localhost/cim.dtd\">"), refused},
            {"one with an entity", withDoctype("<!DOCTYPE CIM [<!ENTITY a \"b\">]>"), refused},
            {"one with an external entity",
             withDoctype("<!DOCTYPE CIM [<!ENTITY a SYSTEM \"file:///etc/passwd\">]>"), refused},
            {"elements 65 deep",
             good.Replacing("<SIMPLEREQ>", Many("<X>", 63) + Many("</X>", 63) + "<SIMPLEREQ>"),
             refused},
            {"more than 20,000 elements",
             good.Replacing("<SIMPLEREQ>", Many("<X/>", 20'000) + "<SIMPLEREQ>"), refused},
            {"an element with 33 attributes",
             good.Replacing("<SIMPLEREQ>", "<X" + Attributes(33) + "/><SIMPLEREQ>"), refused},
        }};
}

Section VersionRows() {
    const Request good;
    const Expected cim = Refused(501, "unsupported-cim-version");
    const Expected dtd = Refused(501, "unsupported-dtd-version");
    const Expected protocol = Refused(501, "unsupported-protocol-version");
    const std::string cimVersion = R"(CIMVERSION="2.0")";
    const std::string dtdVersion = R"(DTDVERSION="2.0")";
    const std::string protocolVersion = R"(PROTOCOLVERSION="1.0")";
    return {
        "Versions and kinds of messages",
        {
            {"`CIMVERSION=\"3.0\"`", good.Replacing(cimVersion, R"(CIMVERSION="3.0")"), cim},
            {"`CIMVERSION=\"1.0\"`", good.Replacing(cimVersion, R"(CIMVERSION="1.0")"), cim},
            {"`CIMVERSION=\"2\"`", good.Replacing(cimVersion, R"(CIMVERSION="2")"), cim},
            {"`CIMVERSION=\"\"`", good.Replacing(cimVersion, R"(CIMVERSION="")"), cim},
            {"`DTDVERSION=\"3.0\"`", good.Replacing(dtdVersion, R"(DTDVERSION="3.0")"), dtd},
            {"`DTDVERSION=\"1.1\"`", good.Replacing(dtdVersion, R"(DTDVERSION="1.1")"), dtd},
            {"`PROTOCOLVERSION=\"2.0\"`",
             good.Replacing(protocolVersion, R"(PROTOCOLVERSION="2.0")"), protocol},
            {"`PROTOCOLVERSION=\"1.x\"`",
             good.Replacing(protocolVersion, R"(PROTOCOLVERSION="1.x")"), protocol},
            {"another version of everything, with content that nobody knows",
             good.Body(R"(<CIM CIMVERSION="3.0" DTDVERSION="3.0"><NEW/></CIM>)"), cim},
            {"a `MULTIREQ`", Inside("<MULTIREQ><SIMPLEREQ/><SIMPLEREQ/></MULTIREQ>"),
             Refused(501, "multiple-requests-unsupported")},
            {"a `SIMPLEEXPREQ`", Inside("<SIMPLEEXPREQ/>"), Refused(400, "unsupported-operation")},
            {"a `MULTIEXPREQ`", Inside("<MULTIEXPREQ/>"), Refused(400, "unsupported-operation")},
        }};
}

Section NotLooselyValidRows() {
    const Request good;
    const Expected refused = Refused(400, "request-not-loosely-valid");
    const std::string call =
        R"(<IMETHODCALL NAME="EnumerateClassNames">)" + nameSpacePath + "</IMETHODCALL>";
    return {
        "XML that does not fit the DTD",
        {
            {"another root", good.Body("<html/>"), refused},
            {"`cim` in small letters", good.Body("<cim/>"), refused},
            {"no `CIMVERSION`", good.Replacing(R"(CIMVERSION="2.0")", ""), refused},
            {"no `DTDVERSION`", good.Replacing(R"(DTDVERSION="2.0")", ""), refused},
            {"no `MESSAGE`", good.Body(R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"/>)"), refused},
            {"a `DECLARATION`",
             good.Body(R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"><DECLARATION/></CIM>)"), refused},
            {"no `ID`", good.Replacing(R"(ID="4711")", ""), refused},
            {"no `PROTOCOLVERSION`", good.Replacing(R"(PROTOCOLVERSION="1.0")", ""), refused},
            {"an empty `MESSAGE`", Inside(""), refused},
            {"a response", Inside("<SIMPLERSP/>"), refused},
            {"two `SIMPLEREQ`", Inside("<SIMPLEREQ/><SIMPLEREQ/>"), refused},
            {"an empty `SIMPLEREQ`", Inside("<SIMPLEREQ/>"), refused},
            {"two calls", Inside("<SIMPLEREQ>" + call + call + "</SIMPLEREQ>"), refused},
            {"an `EXPMETHODCALL`", Inside("<SIMPLEREQ><EXPMETHODCALL NAME='x'/></SIMPLEREQ>"),
             refused},
            {"a call without `NAME`", good.Replacing(R"(NAME="EnumerateClassNames")", ""), refused},
            {"a call without namespace", Call(""), refused},
            {"an empty namespace path", Call("<LOCALNAMESPACEPATH/>"), refused},
            {"a `NAMESPACE` without `NAME`",
             Call("<LOCALNAMESPACEPATH><NAMESPACE/></LOCALNAMESPACEPATH>"), refused},
            {"text where the DTD has none", good.Replacing("<SIMPLEREQ>", "<SIMPLEREQ>text"),
             refused},
            {"a `PARAMVALUE` in an intrinsic call",
             Operation("EnumerateClassNames", "<PARAMVALUE NAME='x'/>"), refused},
            {"an `IPARAMVALUE` without `NAME`", Operation("EnumerateClassNames", "<IPARAMVALUE/>"),
             refused},
            {"an `IPARAMVALUE` with two values",
             Operation("EnumerateClassNames",
                       Parameter("DeepInheritance", "<VALUE>TRUE</VALUE><VALUE>TRUE</VALUE>")),
             refused},
            {"an element in a `VALUE`",
             Operation("EnumerateClassNames",
                       Parameter("DeepInheritance", "<VALUE><VALUE>TRUE</VALUE></VALUE>")),
             refused},
            {"a `CLASSNAME` without `NAME`",
             Operation("GetClass", Parameter("ClassName", "<CLASSNAME/>")), refused},
            {"an `INSTANCENAME` without `CLASSNAME`", GetInstance("<INSTANCENAME/>"), refused},
            {"a `KEYBINDING` without `NAME`",
             GetInstance("<INSTANCENAME CLASSNAME='ET_Item'><KEYBINDING><KEYVALUE>1</KEYVALUE>"
                         "</KEYBINDING></INSTANCENAME>"),
             refused},
            {"a `KEYBINDING` without value",
             GetInstance(
                 "<INSTANCENAME CLASSNAME='ET_Item'><KEYBINDING NAME='Id'/></INSTANCENAME>"),
             refused},
            {"a `VALUETYPE` that the DTD does not have",
             GetInstance("<INSTANCENAME CLASSNAME='ET_Item'><KEYBINDING NAME='Id'>"
                         "<KEYVALUE VALUETYPE='float'>1</KEYVALUE></KEYBINDING></INSTANCENAME>"),
             refused},
            {"a method without path", Inside("<SIMPLEREQ><METHODCALL NAME='x'/></SIMPLEREQ>"),
             refused},
            {"a method with a name instead of a path",
             Inside("<SIMPLEREQ><METHODCALL NAME='x'><CLASSNAME NAME='ET_Item'/></METHODCALL>"
                    "</SIMPLEREQ>"),
             refused},
            {"an `IPARAMVALUE` in a method call",
             MethodCall("Silent", "<CLASSNAME NAME=\"ET_Item\"/>", "<IPARAMVALUE NAME='x'/>"),
             refused},
            {"a `PARAMTYPE` that the DTD does not have",
             MethodCall("Needs", "<CLASSNAME NAME=\"ET_Item\"/>",
                        "<PARAMVALUE NAME='Must' PARAMTYPE='text'><VALUE/></PARAMVALUE>"),
             refused},
            {"an instance whose property has no `TYPE`",
             Operation("CreateInstance",
                       Parameter("NewInstance", "<INSTANCE CLASSNAME='ET_Item'><PROPERTY NAME='Id'>"
                                                "<VALUE>x</VALUE></PROPERTY></INSTANCE>")),
             refused},
        }};
}

Section OddXmlRows() {
    const Request good;
    const Request named =
        Operation("GetClass", Parameter("ClassName", R"(<CLASSNAME NAME="ET_Item"/>)"));
    const std::string itemStart = "<CLASS NAME=\"ET_Item\">";
    const std::string key = "<KEYVALUE VALUETYPE=\"string\">two words</KEYVALUE>";
    const Request get = GetInstance("<INSTANCENAME CLASSNAME=\"ET_Item\"><KEYBINDING NAME=\"Id\">" +
                                    key + "</KEYBINDING></INSTANCENAME>");
    const Expected two = Answered("<VALUE>item two words</VALUE>");
    return {
        "XML that is allowed",
        {
            {"no XML declaration", good.Replacing(declaration, ""), Answered()},
            {"an XML declaration without encoding", good.Replacing(" encoding=\"utf-8\"", ""),
             Answered()},
            {"an XML declaration with encoding `iso-8859-1`", good.Replacing("utf-8", "iso-8859-1"),
             Answered()},
            {"a byte order mark", good.Body("\xEF\xBB\xBF" + goodBody), Answered()},
            {"UTF-16 with a byte order mark and no charset",
             good.Without("Content-Type").Body(Utf16(goodBody.substr(declaration.size()))),
             Answered()},
            {"comments", good.Replacing("<SIMPLEREQ>", "<!-- a > b --><SIMPLEREQ>"), Answered()},
            {"processing instructions", good.Replacing("<SIMPLEREQ>", "<?x y?><SIMPLEREQ>"),
             Answered()},
            {"blanks and line ends between all elements",
             good.Replacing("<SIMPLEREQ>", "\r\n\t <SIMPLEREQ>\n"), Answered()},
            {"blanks within tags", named.Replacing("<CLASSNAME NAME=", "<CLASSNAME\n\tNAME = "),
             Answered(itemStart)},
            {"single quotes", named.Replacing("\"ET_Item\"", "'ET_Item'"), Answered(itemStart)},
            {"attributes in another order",
             good.Replacing(R"(CIMVERSION="2.0" DTDVERSION="2.0")",
                            R"(DTDVERSION="2.0" CIMVERSION="2.0")"),
             Answered()},
            {"an end tag instead of `/>`",
             named.Replacing("\"ET_Item\"/>", "\"ET_Item\"></CLASSNAME>"), Answered(itemStart)},
            {"predefined entities and character references in an attribute",
             named.Replacing("ET_Item", "ET&#x5f;It&#101;m"), Answered(itemStart)},
            {"character references in a value", get.Replacing("two words", "two&#32;wor&#x64;s"),
             two},
            {"CDATA", get.Replacing("two words", "<![CDATA[two words]]>"), two},
            {"CDATA beside text, and a comment in it",
             get.Replacing("two words", "two<![CDATA[ ]]>wor<!-- -->ds"), two},
            {"a key without `VALUETYPE`", get.Replacing(" VALUETYPE=\"string\"", ""), two},
            {"a key with `TYPE`", get.Replacing("VALUETYPE=\"string\"", "TYPE=\"string\""), two},
            {"the single key without its name",
             GetInstance("<INSTANCENAME CLASSNAME=\"ET_Item\">" + key + "</INSTANCENAME>"), two},
            {"`CIMVERSION=\"2.35\"`", good.Replacing(R"(CIMVERSION="2.0")", R"(CIMVERSION="2.35")"),
             Answered()},
            {"`DTDVERSION=\"2.4\"`", good.Replacing(R"(DTDVERSION="2.0")", R"(DTDVERSION="2.4")"),
             Answered()},
            {"`PROTOCOLVERSION=\"1.4\"`",
             good.Replacing(R"(PROTOCOLVERSION="1.0")", R"(PROTOCOLVERSION="1.4")"), Answered()},
            {"an attribute that the DTD does not have",
             good.Replacing("<IMETHODCALL ", "<IMETHODCALL new='1' "), Answered()},
            {"an element that the DTD does not have, with content",
             good.Replacing("<SIMPLEREQ>", "<NEW><VALUE>x</VALUE></NEW><SIMPLEREQ>"), Answered()},
            {"a `CORRELATOR` before the call",
             good.Replacing("<SIMPLEREQ>", "<SIMPLEREQ><CORRELATOR NAME='x' TYPE='string'>"
                                           "<VALUE>y</VALUE></CORRELATOR>"),
             Answered()},
            {"the namespace in one `NAMESPACE`",
             good.Replacing(R"(<NAMESPACE NAME="root"/><NAMESPACE NAME="cimv2"/>)",
                            R"(<NAMESPACE NAME="root/cimv2"/>)"),
             Answered()},
            {"the namespace in other case", good.Replacing("cimv2", "CIMv2"), Answered()},
            {"the operation in other case",
             good.Replacing("EnumerateClassNames", "ENUMERATEclassnames"), Answered()},
            {"parameter and class in other case",
             named.Replacing("ClassName", "CLASSname").Replacing("ET_Item", "et_item"),
             Answered(itemStart)},
            {"a boolean with blanks in small letters",
             Operation("EnumerateClassNames",
                       Parameter("DeepInheritance", "<VALUE> true\n</VALUE>")),
             Answered()},
            {"a parameter without value",
             Operation("EnumerateClassNames", "<IPARAMVALUE NAME=\"ClassName\"/>"), Answered()},
            {"a message identifier with markup",
             good.Replacing("4711", "&lt;&quot;&amp;&#10;\xC3\xA4"),
             Answered("<MESSAGE ID=\"&lt;&quot;&amp;&#10;\xC3\xA4\"")},
        }};
}

} // namespace conformance
