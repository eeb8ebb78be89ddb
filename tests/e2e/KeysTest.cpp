// Texts as keys reach every operation byte for byte, whatever they hold.

#include "e2e/ShelfTest.hpp"

#include "support/XmlNode.hpp"

namespace {

using test_support::ExtrinsicCall;
using test_support::IntrinsicCall;
using test_support::ReadXml;
using test_support::XmlNode;

struct Text {
    const char* name;
    std::string text;
};

void PrintTo(const Text& text, std::ostream* stream) {
    *stream << text.name;
}

std::string Repeated(const std::string& part, std::size_t length) {
    std::string text;
    while (text.size() < length) {
        text += part;
    }
    return text;
}

/// As it stands between tags.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '&':
            escaped += "&amp;";
            break;
        case '\r':
            escaped += "&#13;";
            break;
        default:
            escaped += letter;
        }
    }
    return escaped;
}

std::string Parameter(const std::string& name, const std::string& value) {
    return "<IPARAMVALUE NAME=\"" + name + "\">" + value + "</IPARAMVALUE>";
}

std::string Value(const std::string& text) {
    return "<VALUE>" + Escaped(text) + "</VALUE>";
}

std::string NameOf(const std::string& className, const std::string& id) {
    return "<INSTANCENAME CLASSNAME=\"" + className +
           "\"><KEYBINDING NAME=\"Id\"><KEYVALUE VALUETYPE=\"string\">" + Escaped(id) +
           "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

/// As the value of a parameter.
std::string ReferenceTo(const std::string& instanceName) {
    return R"(<VALUE.REFERENCE><LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME="root"/>)"
           R"(<NAMESPACE NAME="cimv2"/></LOCALNAMESPACEPATH>)" +
           instanceName + "</LOCALINSTANCEPATH></VALUE.REFERENCE>";
}

/// The texts of all elements of that name.
std::vector<std::string> TextsOf(const XmlNode& answer, const char* element) {
    std::vector<std::string> texts;
    for (const XmlNode* node : answer.FindAll(element)) {
        texts.push_back(node->text);
    }
    return texts;
}

bool Holds(const std::vector<std::string>& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// The tests' item is made beside those that are on the shelf already.
class Keys : public e2e::ShelfTest, public testing::WithParamInterface<Text> {
protected:
    void SetUp() override {
        e2e::ShelfTest::SetUp();
        Ask(IntrinsicCall("CreateInstance",
                          Parameter("NewInstance", "<INSTANCE CLASSNAME=\"ET_Item\">"
                                                   "<PROPERTY NAME=\"Id\" TYPE=\"string\">" +
                                                       Value(GetParam().text) +
                                                       "</PROPERTY></INSTANCE>")));
    }

    /// The answer as a client reads it that is strict about XML; it must be no error.
    XmlNode Ask(const std::string& body) {
        const test_support::HttpAnswer answer = Post(body);
        const auto document = ReadXml(answer.body);
        if (answer.status != 200 || !document || document->Find("ERROR") != nullptr) {
            ADD_FAILURE() << answer.status << answer.Header("CIMError")
                          << answer.body.substr(0, 1000);
            return {};
        }
        return *document;
    }

    /// What stands as the key of an item in the answer, of the tests' item.
    std::string IdIn(const XmlNode& answer) {
        std::vector<std::string> ids;
        for (const std::string& id : TextsOf(answer, "KEYVALUE")) {
            if (id != "1" && id != "two words" && id != "A") {
                ids.push_back(id);
            }
        }
        EXPECT_EQ(ids.size(), 1U);
        return ids.empty() ? "(none)" : ids.front();
    }

    void ExpectToBeTheItem(const std::string& id) {
        EXPECT_TRUE(id == GetParam().text) << id.size() << " bytes: " << id.substr(0, 200);
    }
};

TEST_P(Keys, SurviveFromTheEnumerationToGetMethodAndChange) {
    const std::string ofClass = Parameter("ClassName", R"(<CLASSNAME NAME="ET_Item"/>)");
    const std::string id = IdIn(Ask(IntrinsicCall("EnumerateInstanceNames", ofClass)));
    ExpectToBeTheItem(id);
    ExpectToBeTheItem(IdIn(Ask(IntrinsicCall("EnumerateInstances", ofClass))));
    const std::string name = Parameter("InstanceName", NameOf("ET_Item", id));
    EXPECT_TRUE(Holds(TextsOf(Ask(IntrinsicCall("GetInstance", name)), "VALUE"), id));
    const std::string itsName = Parameter("PropertyName", Value("Name"));
    Ask(IntrinsicCall("SetProperty", name + itsName + Parameter("NewValue", Value(id))));
    EXPECT_TRUE(Holds(TextsOf(Ask(IntrinsicCall("GetProperty", name + itsName)), "VALUE"), id));
    Ask(IntrinsicCall("DeleteInstance", name));
    EXPECT_FALSE(Holds(TextsOf(Ask(IntrinsicCall("EnumerateInstanceNames", ofClass)), "KEYVALUE"),
                       GetParam().text));
}

TEST_P(Keys, SurviveThroughAMethodAsObjectAsTextAndInAReference) {
    const std::string name = NameOf("ET_Item", GetParam().text);
    const XmlNode told = Ask(ExtrinsicCall(
        "Tell", name, R"(<PARAMVALUE NAME="Other">)" + ReferenceTo(name) + "</PARAMVALUE>"));
    EXPECT_TRUE(Holds(TextsOf(told, "VALUE"), GetParam().text));
    ExpectToBeTheItem(IdIn(told));
}

TEST_P(Keys, SurviveThroughAssociationsAndBack) {
    const std::string box = Parameter("ObjectName", NameOf("ET_Box", "A"));
    for (const char* operation : {"AssociatorNames", "Associators"}) {
        const std::string id = IdIn(Ask(IntrinsicCall(operation, box)));
        ExpectToBeTheItem(id);
        const std::string item = Parameter("ObjectName", NameOf("ET_Item", id));
        EXPECT_TRUE(Holds(TextsOf(Ask(IntrinsicCall("Associators", item)), "KEYVALUE"), "A"));
    }
    // There the key stands within a reference, which is a key itself.
    ExpectToBeTheItem(IdIn(Ask(IntrinsicCall("ReferenceNames", box))));
}

INSTANTIATE_TEST_SUITE_P(
    With, Keys,
    testing::Values(Text{"Quotes", R"(a "quoted" 'text')"}, Text{"Backslashes", R"(C:\new\\"\)"},
                    Text{"Markup", "<a href=\"b\">&amp;</a> ]]> <!-- -->"},
                    Text{"NonAscii", "\xC3\xA4\xE2\x82\xAC \xF0\x9F\x98\x80 \xE4\xB8\xAD"},
                    Text{"Blanks", "  two  blanks  "}, Text{"Lines", "one\ntwo\r\nthree\rfour\t"},
                    Text{"Separators", "a,b=c.d:e/f//g%2F%"}, Text{"OneBlank", " "},
                    Text{"TenThousandCharacters", Repeated("0123456789", 10'000)},
                    Text{"TenThousandUmlauts", Repeated("\xC3\xA4", 20'000)},
                    Text{"TenThousandOfManyKinds",
                         Repeated("\"\\\xC3\xA4<&>'\r\n\xF0\x9F\x98\x80", 10'000)}),
    [](const auto& text) { return text.param.name; });

} // namespace
