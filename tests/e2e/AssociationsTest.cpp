// Associations are followed by a real client.

#include "e2e/ShelfTest.hpp"

#include <climits>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string box = R"(ET_Box.Id="A")";

class Associations : public e2e::ShelfTest {
protected:
    /// What wbemcli prints, without this machine's name and the namespace before each path.
    std::vector<std::string> Found(const std::string& operation, const std::string& object,
                                   const std::string& moreWords = "") {
        char name[HOST_NAME_MAX + 1] = {};
        EXPECT_EQ(gethostname(name, sizeof name), 0);
        const e2e::ClientRun run = Wbemcli(operation, object, moreWords);
        EXPECT_EQ(run.exitCode, 0) << run.text;
        std::vector<std::string> lines = run.Lines();
        const std::string prefix = std::string(name) + "/root/cimv2:";
        for (std::string& line : lines) {
            EXPECT_EQ(line.rfind(prefix, 0), 0U) << line;
            line.erase(0, prefix.size());
        }
        return lines;
    }
    static std::string Link(const std::string& item) {
        return R"(Box=root/cimv2:ET_Box.Id="A",Item=root/cimv2:ET_Item.Id=")" + item + '"';
    }
};

TEST_F(Associations, Associators) {
    EXPECT_THAT(
        Found("ai", box),
        ElementsAre(R"(ET_Item.Id="1" Id="1",Name="item 1",Count=1)",
                    R"(ET_Item.Id="two words" Id="two words",Name="item two words",Count=1)"));
    EXPECT_THAT(Found("ai", R"(ET_Item.Id="1")"), ElementsAre(R"(ET_Box.Id="A" Id="A")"));
}

TEST_F(Associations, AssociatorNames) {
    EXPECT_THAT(Found("ain", box), ElementsAre(R"(ET_Item.Id="1")", R"(ET_Item.Id="two words")"));
}

TEST_F(Associations, References) {
    EXPECT_THAT(Found("ri", box),
                ElementsAre("ET_Holds." + Link("1") + " " + Link("1"),
                            "ET_Holds." + Link("two words") + " " + Link("two words")));
}

TEST_F(Associations, ReferenceNames) {
    EXPECT_THAT(Found("rin", box),
                ElementsAre("ET_Holds." + Link("1"), "ET_Holds." + Link("two words")));
    EXPECT_THAT(Printed("ein", "ET_Holds"),
                ElementsAre("ET_Holds." + Link("1"), "ET_Holds." + Link("two words")));
}

TEST_F(Associations, AllParametersArrive) {
    const std::string all = "-ac ET_Holds -arc ET_Item -ar Box -arr ";
    EXPECT_EQ(Found("ain", box, all + "Item").size(), 2U);
    EXPECT_EQ(Failure("ain", box, all + "fail"),
              "CIM_ERR_NOT_SUPPORTED: requested operation is not supported (as told)");
    EXPECT_THAT(Found("ain", box, "-ar Nothing -arr fail"), IsEmpty());
    EXPECT_THAT(Found("rin", box, "-ar Nothing"), IsEmpty());
    EXPECT_EQ(Found("ri", box, "-arc ET_Holds -ar Nothing").size(), 2U);
}

TEST_F(Associations, WithoutProviderForThemThereAreNone) {
    EXPECT_THAT(Found("rin", R"(ET_Sealed.Id="1")"), IsEmpty());
    EXPECT_THAT(Found("ai", R"(ET_Sealed.Id="1")"), IsEmpty());
    EXPECT_THAT(Found("ain", R"(ET_Unserved.Id="1")"), IsEmpty());
}

TEST_F(Associations, Refusals) {
    const std::string notFound =
        "CIM_ERR_NOT_FOUND: requested object could not be found (/root/cimv2:ET_None)";
    const std::string noAssociation =
        "CIM_ERR_INVALID_PARAMETER: invalid parameter passed to method (class ET_Item is not an "
        "association)";
    for (const char* operation : {"ai", "ain", "ri", "rin"}) {
        EXPECT_EQ(Failure(operation, R"(ET_None.Id="1")"), notFound);
        const std::string option = operation[0] == 'a' ? "-ac " : "-arc ";
        EXPECT_EQ(Failure(operation, box, option + "ET_None"), notFound);
        EXPECT_EQ(Failure(operation, box, option + "ET_Item"), noAssociation);
        EXPECT_EQ(Failure(operation, box, "", "root/none"),
                  "CIM_ERR_INVALID_NAMESPACE: namespace does not exist (root/none)");
    }
    for (const char* operation : {"ai", "ain"}) {
        EXPECT_EQ(Failure(operation, box, "-arc ET_None"),
                  "CIM_ERR_INVALID_CLASS: class does not exist (/root/cimv2:ET_None)");
    }
}

/// wbemcli understands no class in an answer.
TEST_F(Associations, OfAClassAreAnsweredFromTheSchema) {
    const std::string object =
        R"(<IPARAMVALUE NAME="ObjectName"><CLASSNAME NAME="ET_Box"/></IPARAMVALUE>)";
    for (const auto& [operation, className] :
         {std::pair("AssociatorNames", "ET_Item"), std::pair("ReferenceNames", "ET_Holds")}) {
        const std::string body = Post(test_support::IntrinsicCall(operation, object)).body;
        EXPECT_THAT(body, HasSubstr("<OBJECTPATH><CLASSPATH>"));
        EXPECT_THAT(body, HasSubstr(std::string("<CLASSNAME NAME=\"") + className + "\">"));
    }
    for (const auto& [operation, className] :
         {std::pair("Associators", "ET_Item"), std::pair("References", "ET_Holds")}) {
        const std::string body = Post(test_support::IntrinsicCall(operation, object)).body;
        EXPECT_THAT(body, HasSubstr("<VALUE.OBJECTWITHPATH><CLASSPATH>"));
        EXPECT_THAT(body, HasSubstr(std::string("<CLASS NAME=\"") + className + "\">"));
    }
}

} // namespace
