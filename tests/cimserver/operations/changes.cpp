#include "cimserver/operations/OperationsTest.hpp"

#include "OW_CIMDateTime.hpp"
#include "OW_CIMValue.hpp"

namespace operationstest {
namespace {

using namespace cimserver::operations; // the names of the calls
using OpenWBEM::CIMException;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMProperty;
using OpenWBEM::CIMValue;
using OpenWBEM::String;
using OpenWBEM::UInt8;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* mof = R"(
Qualifier Abstract : boolean = false, Scope(class), Flavor(Restricted);

[Provider("c++::Leaf")]
class HT_Thing {
    [Key] string Id;
    uint8 Count;
    string Colour = "red";
    uint16 Levels[];
    datetime Since;
};
[Provider("c++::Leaf")] class HT_Pair { [Key] string First; [Key] uint32 Second; string Text; };
[Provider("c++::Leaf")] class HT_Keyless { string Text; };
[Abstract, Provider("c++::Leaf")] class HT_Idea { [Key] string Id; };
class HT_Unserved { [Key] string Id; string Text; };
)";

CIMInstance Thing(std::initializer_list<CIMProperty> properties,
                  const char* className = "HT_Thing") {
    CIMInstance instance(className);
    for (const CIMProperty& property : properties) {
        instance.setProperty(property);
    }
    return instance;
}

CIMProperty Of(const char* name, const char* value) {
    return CIMProperty(name, CIMValue(String(value)));
}
CIMProperty Of(const char* name, int value) {
    return CIMProperty(name, CIMValue(static_cast<UInt8>(value)));
}

OpenWBEM::StringArray List(std::initializer_list<const char*> names) {
    OpenWBEM::StringArray list;
    for (const char* name : names) {
        list.push_back(name);
    }
    return list;
}

class Changes : public OperationsTest {
protected:
    Changes() {
        schema.AddText(mof, "changes.mof");
        leaf.answer = Thing({Of("Id", "1"), Of("Count", 9)});
    }

    /// What getInstance is asked on the way.
    static std::string Get(const std::string& path, const std::string& className = "HT_Thing") {
        return "getInstance root/cimv2 " + path + " -QO no list " + className;
    }
    static std::string Modify(const std::string& modified, const std::string& flagsAndList,
                              const std::string& className = "HT_Thing") {
        return "modifyInstance root/cimv2 " + modified +
               " from HT_Thing{Id=string 1,Count=uint8 9} " + flagsAndList + " " + className;
    }
};

class Creation : public Changes {};

TEST_F(Creation, TheInstanceArrivesAsItsClassDeclares) {
    leaf.created = Path("HT_Thing", "Id", "new");
    Run(CreateInstance{Thing({Of("Unknown", "x"), Of("count", "3"), Of("LEVELS", 4)}, "ht_THING")});
    EXPECT_THAT(leaf.calls,
                ElementsAre("createInstance root/cimv2 ht_THING{Count=uint8 3,Levels=uint16[] 4,"
                            "Id=string null,Colour=string red,Since=datetime null}"));
    EXPECT_THAT(sink.lines, ElementsAre("path /:HT_Thing.Id=\"new\""));
    EXPECT_THAT(source.asked, ElementsAre("CreateInstance by anna: root/cimv2:HT_Thing c++::Leaf"));
}

TEST_F(Creation, ANullPathIsReplacedByThatOfTheInstance) {
    Run(CreateInstance{Thing({Of("Id", "mine"), Of("Count", 1)}, "ht_thing")});
    EXPECT_THAT(sink.lines, ElementsAre("path /root/cimv2:ht_thing.Id=\"mine\""));
}

TEST_F(Creation, Refusals) {
    EXPECT_EQ(Failure(CreateInstance{CIMInstance("HT_None")}),
              "5 class does not exist (/root/cimv2:HT_None)");
    EXPECT_EQ(Failure(CreateInstance{CIMInstance("HT_Thing")}, "root/none"),
              "3 namespace does not exist (root/none)");
    EXPECT_EQ(Failure(CreateInstance{CIMInstance("ht_idea")}),
              "4 invalid parameter passed to method (Unable to create instance because class "
              "(ht_idea) is abstract)");
    EXPECT_EQ(Failure(CreateInstance{Thing({Of("Count", "many")})}),
              "1 general error (Property Count: Unable to convert \"many\" into UInt8)");
    EXPECT_EQ(Failure(CreateInstance{Thing({Of("Since", "long ago")})}),
              "1 general error (Property Since: Invalid format for date time)");
    EXPECT_EQ(Failure(CreateInstance{CIMInstance("HT_Unserved")}),
              "7 requested operation is not supported (class HT_Unserved has no provider)");
    EXPECT_THAT(leaf.calls, IsEmpty());
}

TEST_F(Creation, WhatTheProviderThrowsArrives) {
    leaf.atEnd = [] { OW_THROWCIMMSG(CIMException::ALREADY_EXISTS, "one"); };
    EXPECT_EQ(Failure(CreateInstance{Thing({})}), "11 object already exists (one)");
    EXPECT_THAT(sink.lines, IsEmpty());
}

class Deletion : public Changes {};

TEST_F(Deletion, AsksForTheInstanceFirst) {
    Run(DeleteInstance{Path("ht_THING", "ID", "1")});
    EXPECT_THAT(leaf.calls, ElementsAre(Get("/root/cimv2:ht_THING.Id=\"1\""),
                                        "deleteInstance root/cimv2 /root/cimv2:ht_THING.Id=\"1\""));
    EXPECT_THAT(sink.lines, IsEmpty());
    EXPECT_THAT(source.asked, ElementsAre("DeleteInstance by anna: root/cimv2:HT_Thing c++::Leaf"));
}

TEST_F(Deletion, AWrongKeyArrivesAsANullOne) {
    Run(DeleteInstance{Path("HT_Thing", "Wrong", "1")});
    EXPECT_EQ(leaf.calls.back(), "deleteInstance root/cimv2 /root/cimv2:HT_Thing.Id=\"null\"");
}

TEST_F(Deletion, AnEmptyInstanceWithoutErrorIsEnough) {
    leaf.answer = CIMInstance();
    Run(DeleteInstance{Path("HT_Thing", "Id", "1")});
    EXPECT_EQ(leaf.calls.size(), 2U);
}

TEST_F(Deletion, Refusals) {
    EXPECT_EQ(Failure(DeleteInstance{Path("HT_None", "Id", "1")}),
              "5 class does not exist (/root/cimv2:HT_None)");
    EXPECT_EQ(Failure(DeleteInstance{Path("HT_Thing", "Id", "1")}, "root/none"),
              "3 namespace does not exist (root/none)");
    EXPECT_EQ(Failure(DeleteInstance{Path("HT_Unserved", "Id", "1")}),
              "6 requested object could not be found (/root/cimv2:HT_Unserved.Id=\"1\")");
    EXPECT_THAT(leaf.calls, IsEmpty());
}

TEST_F(Deletion, WhatGetInstanceThrowsEndsIt) {
    leaf.atEndOfGet = [] { OW_THROWCIMMSG(CIMException::NOT_FOUND, "no such"); };
    EXPECT_EQ(Failure(DeleteInstance{Path("HT_Thing", "Id", "1")}),
              "6 requested object could not be found (no such)");
    leaf.atEndOfGet = [] {};
    leaf.answer = CIMInstance(OpenWBEM::CIMNULL);
    EXPECT_EQ(Failure(DeleteInstance{Path("HT_Thing", "Id", "1")}),
              "1 general error (Provider erroneously returned a NULL CIMInstance)");
    EXPECT_THAT(leaf.calls, ElementsAre(Get("/root/cimv2:HT_Thing.Id=\"1\""),
                                        Get("/root/cimv2:HT_Thing.Id=\"1\"")));
}

class Modification : public Changes {};

TEST_F(Modification, EveryPropertyOfTheClassIsThereInItsType) {
    Run(ModifyInstance{Path("HT_Thing", "Id", "1"),
                       Thing({Of("Unknown", "x"), Of("COUNT", "3"), Of("Id", "1")}, "ht_thing"),
                       false});
    EXPECT_THAT(leaf.calls, ElementsAre(Get("/root/cimv2:ht_thing.Id=\"1\""),
                                        Modify("ht_thing{Count=uint8 3,Id=string 1,Colour=string "
                                               "red,Levels=uint16[] null,Since=datetime null}",
                                               "- no list")));
    EXPECT_EQ(Shown(leaf.given.getKeyValuePairs()), "Id=string 1");
    EXPECT_THAT(sink.lines, IsEmpty());
    EXPECT_THAT(source.asked, ElementsAre("ModifyInstance by anna: root/cimv2:HT_Thing c++::Leaf"));
}

TEST_F(Modification, KeysThatTheClientLeftOutComeFromTheInstanceName) {
    Run(ModifyInstance{Path("HT_Thing", "ID", "1"), Thing({Of("Count", 3)})});
    EXPECT_EQ(leaf.calls[0], Get("/root/cimv2:HT_Thing.Id=\"1\""));
    EXPECT_EQ(leaf.calls[1], Modify("HT_Thing{Count=uint8 3,Id=string 1,Colour=string red,"
                                    "Levels=uint16[] null,Since=datetime null}",
                                    "Q no list"));
}

TEST_F(Modification, KeysThatTheClientSentStay) {
    Run(ModifyInstance{Path("HT_Thing", "Id", "1"), Thing({Of("Id", "2")})});
    EXPECT_EQ(leaf.calls[0], Get("/root/cimv2:HT_Thing.Id=\"2\""));
    leaf.calls.clear();
    Run(ModifyInstance{Path("HT_Thing", "Id", "1"),
                       Thing({CIMProperty("Id", OpenWBEM::CIMDataType::STRING)})});
    EXPECT_EQ(leaf.calls[0], Get("/root/cimv2:HT_Thing.Id=\"null\""));
}

TEST_F(Modification, APropertyListLeavesTheListedAndTheKeys) {
    Run(ModifyInstance{Path("HT_Thing", "Id", "1"), Thing({Of("Count", 3), Of("Colour", "blue")}),
                       true, List({"levels", "COUNT"})});
    EXPECT_THAT(leaf.calls,
                ElementsAre(Get("/root/cimv2:HT_Thing.Id=\"1\""),
                            Modify("HT_Thing{Levels=uint16[] null,Count=uint8 3,Id=string 1}",
                                   "Q [levels,COUNT,]")));
    EXPECT_EQ(Shown(leaf.given.getKeyValuePairs()), "Id=string 1");
}

TEST_F(Modification, AKeyThatIsNotListedCountsAsLeftOut) {
    Run(ModifyInstance{Path("HT_Thing", "Id", "1"), Thing({Of("Id", "2"), Of("Count", 3)}), true,
                       List({"Count"})});
    EXPECT_THAT(leaf.calls,
                ElementsAre(Get("/root/cimv2:HT_Thing.Id=\"1\""),
                            Modify("HT_Thing{Count=uint8 3,Id=string 1}", "Q [Count,]")));
}

TEST_F(Modification, AListedKeyIsTheClients) {
    Run(ModifyInstance{Path("HT_Thing", "Id", "1"), Thing({Of("Id", "2"), Of("Count", 3)}), true,
                       List({"id", "Count"})});
    EXPECT_EQ(leaf.calls[1], Modify("HT_Thing{Id=string 2,Count=uint8 3}", "Q [id,Count,]"));
}

TEST_F(Modification, AnEmptyListLeavesTheKeysOnly) {
    Run(ModifyInstance{Path("HT_Thing", "Id", "1"), Thing({Of("Count", 3)}), true, List({})});
    EXPECT_EQ(leaf.calls[1], Modify("HT_Thing{Id=string 1}", "Q []"));
}

TEST_F(Modification, AllKeysOfTheClassCountWhateverTheNameBinds) {
    CIMObjectPath path = Path("HT_Pair", "First", "a");
    path.setKeyValue("Text", CIMValue(String("no key")));
    Run(ModifyInstance{path, CIMInstance("HT_Pair"), true, List({"Text"})});
    EXPECT_THAT(
        leaf.calls,
        ElementsAre(Get("/root/cimv2:HT_Pair.First=\"a\",Second=\"null\"", "HT_Pair"),
                    Modify("HT_Pair{Text=string null,First=string a}", "Q [Text,]", "HT_Pair")));
    EXPECT_EQ(Shown(leaf.given.getKeyValuePairs()), "First=string a,Second=uint32 null");
}

TEST_F(Modification, ANameWithoutKeysAddsNone) {
    Run(ModifyInstance{CIMObjectPath("HT_Thing"), Thing({Of("Count", 3)}), true, List({"Count"})});
    EXPECT_THAT(leaf.calls, ElementsAre(Get("/root/cimv2:HT_Thing.Id=\"null\""),
                                        Modify("HT_Thing{Count=uint8 3}", "Q [Count,]")));
    leaf.calls.clear();
    Run(ModifyInstance{CIMObjectPath("HT_Keyless"), CIMInstance("HT_Keyless")});
    EXPECT_EQ(leaf.calls[0], Get("/root/cimv2:HT_Keyless", "HT_Keyless"));
}

TEST_F(Modification, Refusals) {
    const auto path = Path("HT_Thing", "Id", "1");
    EXPECT_EQ(Failure(ModifyInstance{Path("HT_None", "Id", "1"), CIMInstance("HT_None")}),
              "5 class does not exist (/root/cimv2:HT_None)");
    EXPECT_EQ(Failure(ModifyInstance{path, Thing({})}, "root/none"),
              "3 namespace does not exist (root/none)");
    EXPECT_EQ(Failure(ModifyInstance{path, CIMInstance("HT_Pair")}),
              "4 invalid parameter passed to method (the instance is of class HT_Pair, its name of "
              "class HT_Thing)");
    EXPECT_EQ(Failure(ModifyInstance{path, Thing({Of("Count", "many")})}),
              "1 general error (Property Count: Unable to convert \"many\" into UInt8)");
    EXPECT_EQ(Failure(ModifyInstance{path, Thing({}), true, List({"Count", "Weight"})}),
              "1 Weight");
    EXPECT_EQ(Failure(ModifyInstance{Path("HT_Unserved", "Id", "1"), CIMInstance("HT_Unserved")}),
              "6 requested object could not be found (/root/cimv2:HT_Unserved.Id=\"1\")");
    EXPECT_THAT(leaf.calls, IsEmpty());
}

TEST_F(Modification, WhatGetInstanceThrowsEndsIt) {
    leaf.atEndOfGet = [] { OW_THROWCIMMSG(CIMException::NOT_FOUND, "no such"); };
    EXPECT_EQ(Failure(ModifyInstance{Path("HT_Thing", "Id", "1"), Thing({})}),
              "6 requested object could not be found (no such)");
    leaf.atEndOfGet = [] {};
    leaf.answer = CIMInstance(OpenWBEM::CIMNULL);
    EXPECT_EQ(Failure(ModifyInstance{Path("HT_Thing", "Id", "1"), Thing({})}),
              "1 general error (Provider erroneously returned a NULL CIMInstance)");
    EXPECT_EQ(leaf.calls.size(), 2U);
}

TEST_F(Modification, OnlyCimExceptionsLeave) {
    struct Row {
        std::function<void()> action;
        const char* answer;
    };
    const Row rows[] = {
        {[] { OW_THROWCIM(CIMException::NOT_SUPPORTED); },
         "7 requested operation is not supported"},
        {[] { OpenWBEM::CIMDateTime(String("nonsense")); }, "1 Invalid format for date time"},
        {[] { CIMInstance().getPropertyT("Id"); }, "1 Id"},
        {[] { throw 7; }, "1 Unknown Exception"},
    };
    leaf.atEndOfGet = [] {};
    for (const auto& row : rows) {
        leaf.atEnd = row.action;
        leaf.calls.clear();
        EXPECT_EQ(Failure(ModifyInstance{Path("HT_Thing", "Id", "1"), Thing({})}), row.answer);
        EXPECT_EQ(leaf.calls.size(), 2U);
    }
}

class Setting : public Changes {};

TEST_F(Setting, IsAModificationWithAListOfOne) {
    Run(SetProperty{Path("ht_THING", "ID", "1"), "COUNT", CIMValue(String("5"))});
    EXPECT_THAT(leaf.calls,
                ElementsAre(Get("/root/cimv2:ht_THING.Id=\"1\""),
                            Get("/root/cimv2:ht_THING.Id=\"1\""),
                            Modify("ht_THING{Count=uint8 5,Id=string 1}", "Q [COUNT,]")));
    EXPECT_EQ(Shown(leaf.given.getKeyValuePairs()), "Id=string 1");
    EXPECT_THAT(sink.lines, IsEmpty());
    EXPECT_THAT(source.asked, ElementsAre("SetProperty by anna: root/cimv2:HT_Thing c++::Leaf"));
}

TEST_F(Setting, ToNull) {
    Run(SetProperty{Path("HT_Thing", "Id", "1"), "Colour"});
    EXPECT_EQ(leaf.calls[2], Modify("HT_Thing{Colour=string null,Id=string 1}", "Q [Colour,]"));
}

TEST_F(Setting, AnArray) {
    OpenWBEM::StringArray texts;
    texts.push_back("1");
    texts.push_back("2");
    Run(SetProperty{Path("HT_Thing", "Id", "1"), "Levels", CIMValue(texts)});
    EXPECT_EQ(leaf.calls[2], Modify("HT_Thing{Levels=uint16[] 1,2,Id=string 1}", "Q [Levels,]"));
}

TEST_F(Setting, Refusals) {
    const auto path = Path("HT_Thing", "Id", "1");
    const CIMValue text(String("x"));
    EXPECT_EQ(Failure(SetProperty{Path("HT_None", "Id", "1"), "Count", text}),
              "5 class does not exist (/root/cimv2:HT_None)");
    EXPECT_EQ(Failure(SetProperty{path, "Count", text}, "root/none"),
              "3 namespace does not exist (root/none)");
    EXPECT_EQ(Failure(SetProperty{Path("HT_Unserved", "Id", "1"), "Text", text}),
              "6 requested object could not be found (/root/cimv2:HT_Unserved.Id=\"1\")");
    EXPECT_THAT(leaf.calls, IsEmpty());
    EXPECT_EQ(Failure(SetProperty{path, "Weight", text}),
              "12 specified property does not exist (Weight)");
    EXPECT_EQ(Failure(SetProperty{path, "Count", text}),
              "13 value supplied is incompatible with type (Property Count: Unable to convert "
              "\"x\" into UInt8)");
    EXPECT_EQ(Failure(SetProperty{path, "Since", text}),
              "13 value supplied is incompatible with type (Property Since: Invalid format for "
              "date time)");
    EXPECT_EQ(leaf.calls.size(), 3U); // getInstance each time, and nothing else
    leaf.atEndOfGet = [] { OW_THROWCIM(CIMException::NOT_FOUND); };
    EXPECT_EQ(Failure(SetProperty{path, "Weight", text}), "6 requested object could not be found");
}

} // namespace
} // namespace operationstest
