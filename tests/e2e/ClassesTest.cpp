// Classes and qualifiers, with all that a client can ask to leave out of them.

#include "e2e/ShelfTest.hpp"

#include "support/XmlNode.hpp"

namespace {

using test_support::IntrinsicCall;
using test_support::XmlNode;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string Parameter(const std::string& name, const std::string& value) {
    return "<IPARAMVALUE NAME=\"" + name + "\">" + value + "</IPARAMVALUE>";
}

std::string Yes(const std::string& flag) {
    return Parameter(flag, "<VALUE>TRUE</VALUE>");
}

std::string No(const std::string& flag) {
    return Parameter(flag, "<VALUE>FALSE</VALUE>");
}

const std::string crate = Parameter("ClassName", R"(<CLASSNAME NAME="ET_Crate"/>)");
const std::string box = Parameter("ClassName", R"(<CLASSNAME NAME="ET_Box"/>)");
const std::string bare = No("LocalOnly") + No("IncludeQualifiers");

std::string Qualifiers(const XmlNode& element) {
    std::string text;
    for (const XmlNode& child : element.children) {
        if (child.name == "QUALIFIER") {
            text += (text.empty() ? "[" : ",") + child.Attribute("NAME");
        }
    }
    return text.empty() ? text : text + "]";
}

/// `[Key]Id@ET_Box`, then the same of what it holds.
std::string Shown(const XmlNode& element) {
    const std::string origin = element.Attribute("CLASSORIGIN");
    std::string text = Qualifiers(element) + element.Attribute("NAME");
    text += origin.empty() ? "" : "@" + origin;
    for (const XmlNode& child : element.children) {
        if (child.name != "QUALIFIER") {
            text += " " + Shown(child);
        }
    }
    return text;
}

class Classes : public e2e::ShelfTest {
protected:
    std::vector<std::string> Found(const char* operation, const std::string& parameters,
                                   const char* element) {
        const std::string body = Post(IntrinsicCall(operation, parameters)).body;
        const auto answer = test_support::ReadXml(body);
        std::vector<std::string> found;
        if (!answer || answer->Find("ERROR") != nullptr) {
            ADD_FAILURE() << body;
            return found;
        }
        for (const XmlNode* node : answer->FindAll(element)) {
            found.push_back(Shown(*node));
        }
        return found;
    }
    std::vector<std::string> GetCrate(const std::string& parameters) {
        return Found("GetClass", crate + parameters, "CLASS");
    }
};

TEST_F(Classes, GetClassLeavesOutWhatIsInheritedUnlessAsked) {
    EXPECT_THAT(
        GetCrate(""),
        ElementsAre("[Description]ET_Crate [Description]Label Close [Description,In]Force"));
    EXPECT_THAT(GetCrate(No("LocalOnly")),
                ElementsAre("[Description,Provider]ET_Crate [Key]Id [Description]Label Close "
                            "[Description,In]Force"));
}

TEST_F(Classes, GetClassWithoutQualifiersAndWithOrigins) {
    EXPECT_THAT(GetCrate(bare), ElementsAre("ET_Crate Id Label Close Force"));
    EXPECT_THAT(GetCrate(bare + Yes("IncludeClassOrigin")),
                ElementsAre("ET_Crate Id@ET_Box Label@ET_Crate Close@ET_Crate Force"));
}

TEST_F(Classes, GetClassWithAPropertyList) {
    EXPECT_THAT(GetCrate(bare + Parameter("PropertyList", "<VALUE.ARRAY><VALUE>id</VALUE>"
                                                          "<VALUE>Color</VALUE></VALUE.ARRAY>")),
                ElementsAre("ET_Crate Id Close Force"));
    EXPECT_THAT(GetCrate(bare + Parameter("PropertyList", "<VALUE.ARRAY></VALUE.ARRAY>")),
                ElementsAre("ET_Crate Close Force"));
}

TEST_F(Classes, EnumerateClassesWithAllItsFilters) {
    EXPECT_THAT(
        Found("EnumerateClasses", box, "CLASS"),
        ElementsAre("[Description]ET_Crate [Description]Label Close [Description,In]Force"));
    EXPECT_THAT(Found("EnumerateClasses", box + bare + Yes("IncludeClassOrigin"), "CLASS"),
                ElementsAre("ET_Crate Id@ET_Box Label@ET_Crate Close@ET_Crate Force"));
    EXPECT_THAT(Found("EnumerateClasses", bare, "CLASS"),
                AllOf(Contains("ET_Box Id"), Not(Contains(HasSubstr("ET_Crate")))));
    EXPECT_THAT(Found("EnumerateClasses", bare + Yes("DeepInheritance"), "CLASS"),
                AllOf(Contains("ET_Box Id"), Contains("ET_Crate Id Label Close Force")));
}

TEST_F(Classes, EnumerateClassNamesBelowAClassAndDeep) {
    EXPECT_THAT(Found("EnumerateClassNames", box, "CLASSNAME"), ElementsAre("ET_Crate"));
    EXPECT_THAT(Found("EnumerateClassNames", "", "CLASSNAME"),
                AllOf(Contains("ET_Box"), Not(Contains("ET_Crate"))));
    EXPECT_THAT(Found("EnumerateClassNames", Yes("DeepInheritance"), "CLASSNAME"),
                AllOf(Contains("ET_Box"), Contains("ET_Crate")));
}

TEST_F(Classes, WbemcliShowsAClassWithItsMethods) {
    EXPECT_THAT(Wbemcli("gcd", "ET_Crate").text,
                AllOf(HasSubstr(R"(<CLASS NAME="ET_Crate" SUPERCLASS="ET_Box">)"),
                      HasSubstr(R"(<PROPERTY NAME="Label" TYPE="string">)"),
                      HasSubstr(R"(<METHOD NAME="Close" TYPE="uint32">)"
                                R"(<PARAMETER NAME="Force" TYPE="uint8">)")));
    EXPECT_THAT(Printed("ecn", "ET_Box"), ElementsAre("ET_Crate"));
    EXPECT_EQ(Failure("dc", "ET_Crate"),
              "CIM_ERR_NOT_SUPPORTED: requested operation is not supported (DeleteClass)");
}

TEST_F(Classes, QualifierTypes) {
    const std::string key = Parameter("QualifierName", "<VALUE>key</VALUE>");
    EXPECT_THAT(Post(IntrinsicCall("GetQualifier", key)).body,
                HasSubstr(R"(<IRETURNVALUE><QUALIFIER.DECLARATION NAME="Key" TYPE="boolean")"
                          R"( ISARRAY="false" OVERRIDABLE="false" TOSUBCLASS="true">)"
                          R"(<SCOPE REFERENCE="true" PROPERTY="true"></SCOPE><VALUE>FALSE</VALUE>)"
                          R"(</QUALIFIER.DECLARATION></IRETURNVALUE>)"));
    const auto all = Found("EnumerateQualifiers", "", "QUALIFIER.DECLARATION");
    EXPECT_THAT(all, AllOf(Contains(HasSubstr("Key")), Contains(HasSubstr("ValueMap")),
                           Contains(HasSubstr("Abstract"))));
}

} // namespace
