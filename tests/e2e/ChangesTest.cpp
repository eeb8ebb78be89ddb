// Properties and instances are read and changed by a real client.

#include "e2e/ShelfTest.hpp"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string one = R"(ET_Item.Id="1")";

class Changes : public e2e::ShelfTest {};

TEST_F(Changes, AnInstanceIsCreatedModifiedAndDeleted) {
    const std::string three = R"(ET_Item.Id="3")";
    EXPECT_THAT(Printed("ci", three, R"('Id="3",Name="a b",Count=5,Sizes=1,2')"),
                ElementsAre(three));
    EXPECT_THAT(Printed("gi", three),
                ElementsAre(three + R"( Id="3",Name="a b",Count=5,Sizes=1,2,Fragile=,Since=)"));
    EXPECT_THAT(Printed("mi", three, "'Count=6,Fragile=TRUE'"), IsEmpty());
    EXPECT_THAT(Printed("gi", three),
                ElementsAre(three + R"( Id="3",Name="a b",Count=6,Sizes=1,2,Fragile=TRUE,Since=)"));
    EXPECT_THAT(Printed("di", three), IsEmpty());
    EXPECT_EQ(Failure("gi", three),
              "CIM_ERR_NOT_FOUND: requested object could not be found (/:ET_Item.Id=\"3\")");
    EXPECT_EQ(Printed("ein", "ET_Item").size(), 2U);
}

TEST_F(Changes, AKeyBeyondAsciiIsFollowedFromTheListToTheInstance) {
    const std::string key = "\xC3\xA4 \xE2\x82\xAC/5%";
    const std::string name = "ET_Item.Id=\"" + key + "\"";
    EXPECT_THAT(Printed("ci", name, "'Id=\"" + key + "\",Name=\"" + key + "\"'"),
                ElementsAre(name));
    EXPECT_THAT(Printed("ein", "ET_Item"), testing::Contains(name));
    EXPECT_THAT(Printed("gp", name, "Name"), ElementsAre(key));
    EXPECT_THAT(Wbemcli("cm", name, "Describe").text, testing::HasSubstr("Text=null"));
    EXPECT_THAT(Printed("di", name), IsEmpty());
    // What the client prints of a backslash, two of them, it does not take back.
    Printed("ci", R"(ET_Item.Id="C:\new")", R"('Id="C:\new"')");
    EXPECT_THAT(Printed("cm", R"(ET_Item.Id="C:\new")", "Silent"), IsEmpty());
}

TEST_F(Changes, CreateInstanceRefusals) {
    EXPECT_EQ(Failure("ci", one, R"('Id="1"')"),
              "CIM_ERR_ALREADY_EXISTS: object already exists (1)");
    EXPECT_EQ(Failure("ci", R"(ET_Idea.Id="1")", R"('Id="1"')"),
              "CIM_ERR_INVALID_PARAMETER: invalid parameter passed to method (Unable to create "
              "instance because class (ET_Idea) is abstract)");
    EXPECT_EQ(Failure("ci", R"(ET_Unserved.Id="1")", R"('Id="1"')"),
              "CIM_ERR_NOT_SUPPORTED: requested operation is not supported (class ET_Unserved has "
              "no provider)");
    EXPECT_EQ(Failure("ci", R"(ET_Item.Id="4")", R"('Id="4",Count=many')"),
              "CIM_ERR_INVALID_PARAMETER: invalid parameter passed to method (Property Count: "
              "\"many\" is no uint8)");
    // The client reads the class before it sends the instance.
    EXPECT_EQ(Failure("ci", R"(ET_None.Id="1")", R"('Id="1"')"),
              "CIM_ERR_NOT_FOUND: requested object could not be found (/root/cimv2:ET_None)");
    EXPECT_EQ(Failure("ci", one, R"('Id="1"')", "root/none"),
              "CIM_ERR_INVALID_NAMESPACE: namespace does not exist (root/none)");
}

TEST_F(Changes, DeleteInstanceRefusals) {
    EXPECT_EQ(Failure("di", R"(ET_Item.Id="9")"),
              "CIM_ERR_NOT_FOUND: requested object could not be found "
              "(/root/cimv2:ET_Item.Id=\"9\")");
    EXPECT_EQ(Failure("di", R"(ET_Item.Wrong="1")"),
              "CIM_ERR_INVALID_PARAMETER: invalid parameter passed to method (no Id)");
    EXPECT_EQ(Failure("di", R"(ET_Unserved.Id="1")"),
              "CIM_ERR_NOT_FOUND: requested object could not be found "
              "(/root/cimv2:ET_Unserved.Id=\"1\")");
    EXPECT_EQ(Failure("di", R"(ET_None.Id="1")"),
              "CIM_ERR_INVALID_CLASS: class does not exist (/root/cimv2:ET_None)");
    EXPECT_EQ(Failure("di", one, "", "root/none"),
              "CIM_ERR_INVALID_NAMESPACE: namespace does not exist (root/none)");
    EXPECT_EQ(Printed("ein", "ET_Item").size(), 2U);
}

TEST_F(Changes, PropertiesAreRead) {
    EXPECT_THAT(Printed("gp", one, "Name"), ElementsAre("item 1"));
    EXPECT_THAT(Printed("gp", one, "count"), ElementsAre("1"));
    EXPECT_THAT(Printed("gp", one, "Since"), IsEmpty());
    EXPECT_EQ(Failure("gp", one, "Weight"),
              "CIM_ERR_NO_SUCH_PROPERTY: specified property does not exist (Weight)");
    EXPECT_EQ(Failure("gp", R"(ET_Item.Id="9")", "Weight"),
              "CIM_ERR_NOT_FOUND: requested object could not be found (/:ET_Item.Id=\"9\")");
    EXPECT_EQ(Failure("gp", R"(ET_None.Id="9")", "Name"),
              "CIM_ERR_INVALID_CLASS: class does not exist (/root/cimv2:ET_None)");
}

TEST_F(Changes, PropertiesAreSetAndTheOthersStay) {
    EXPECT_THAT(Printed("sp", one, "Count=7"), IsEmpty());
    EXPECT_THAT(Printed("sp", one, "Sizes=300"), IsEmpty()) << "a scalar becomes an array of one";
    EXPECT_THAT(Printed("sp", one, "Fragile=true"), IsEmpty());
    EXPECT_THAT(Printed("sp", one, R"('Name="x y"')"), IsEmpty());
    EXPECT_THAT(Printed("gi", one),
                ElementsAre(one + R"( Id="1",Name="x y",Count=7,Sizes=300,Fragile=TRUE)"));
}

TEST_F(Changes, SetPropertyRefusals) {
    EXPECT_EQ(Failure("sp", one, "Count=700"),
              "CIM_ERR_TYPE_MISMATCH: value supplied is incompatible with type (Property Count: "
              "Unable to convert \"700\" into UInt8)");
    EXPECT_EQ(Failure("sp", R"(ET_Item.Id="9")", "Count=7"),
              "CIM_ERR_NOT_FOUND: requested object could not be found "
              "(/root/cimv2:ET_Item.Id=\"9\")");
    EXPECT_THAT(Printed("gp", one, "Count"), ElementsAre("1"));
}

/// A client that sends what wbemcli cannot.
class ChangesByHand : public e2e::ShelfTest {
protected:
    static std::string Named(const std::string& inside) {
        return R"(<IPARAMVALUE NAME="ModifiedInstance"><VALUE.NAMEDINSTANCE>)"
               R"(<INSTANCENAME CLASSNAME="ET_Item"><KEYBINDING NAME="Id">)"
               R"(<KEYVALUE VALUETYPE="string">1</KEYVALUE></KEYBINDING></INSTANCENAME>)"
               R"(<INSTANCE CLASSNAME="ET_Item">)" +
               inside + "</INSTANCE></VALUE.NAMEDINSTANCE></IPARAMVALUE>";
    }
    static std::string List(const std::string& property) {
        return R"(<IPARAMVALUE NAME="PropertyList"><VALUE.ARRAY><VALUE>)" + property +
               "</VALUE></VALUE.ARRAY></IPARAMVALUE>";
    }
    std::string Answer(const std::string& parameters) {
        return Post(test_support::IntrinsicCall("ModifyInstance", parameters)).body;
    }
};

TEST_F(ChangesByHand, KeysThatTheClientLeavesOutAreThoseOfTheInstanceName) {
    const std::string count = R"(<PROPERTY NAME="Count" TYPE="uint8"><VALUE>8</VALUE></PROPERTY>)";
    EXPECT_THAT(Answer(Named(count) + List("Count")), testing::Not(testing::HasSubstr("ERROR")));
    EXPECT_THAT(Printed("gi", one), ElementsAre(one + R"( Id="1",Name="item 1",Count=8)"));
    EXPECT_THAT(Answer(Named(count)), testing::Not(testing::HasSubstr("ERROR")));
    EXPECT_THAT(Printed("gp", one, "Name"), IsEmpty()) << "without a list all properties are set";
    EXPECT_EQ(Printed("ein", "ET_Item").size(), 2U);
}

TEST_F(ChangesByHand, AListWithAnUnknownPropertyFails) {
    EXPECT_THAT(Answer(Named("") + List("Weight")),
                testing::HasSubstr(R"(<ERROR CODE="1" DESCRIPTION="Weight">)"));
}

} // namespace
