#include "cimserver/operations/OperationsTest.hpp"

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
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* mof = R"(
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);

class HT_Box { [Key] string Id; };
class HT_BigBox : HT_Box { };
class HT_Item { [Key] string Id; string Text; };
class HT_Toy : HT_Item { };
class HT_Tag { [Key] string Id; };
class HT_Keyless { };

[Association, Provider("c++::Base")]
class HT_Holds { [Key] HT_Box REF Box; [Key] HT_Item REF Item; };
class HT_HoldsFirmly : HT_Holds { string How; };
[Association, Provider("c++::Leaf")]
class HT_Marks { [Key] HT_Tag REF Tag; [Key] HT_Item REF Item; };
[Association]
class HT_Resembles { [Key] HT_Item REF One; [Key] HT_Toy REF Other; };
)";

OpenWBEM::StringArray List(std::initializer_list<const char*> names) {
    OpenWBEM::StringArray list;
    for (const char* name : names) {
        list.push_back(name);
    }
    return list;
}

class Associated : public OperationsTest {
protected:
    Associated() { schema.AddText(mof, "associations.mof"); }

    /// The association classes for which the providers are asked, in order; or the refusal.
    template <class Call>
    std::string Asked(const Call& call) {
        source.asked.clear();
        const std::string failure = Failure(call);
        if (failure != "no failure") {
            return failure;
        }
        std::string text;
        for (const auto& line : source.asked) {
            const auto start = line.find("HT_");
            text += (text.empty() ? "" : " ") + line.substr(start, line.find(' ', start) - start);
        }
        return text;
    }
};

const CIMObjectPath item = Path("HT_Item", "Id", "1");
const CIMObjectPath toy = Path("HT_Toy", "Id", "1");
const CIMObjectPath bigBox = Path("HT_BigBox", "Id", "1");

TEST_F(Associated, ArgumentsOfEachOperation) {
    const auto path = Path("ht_BOX", "ID", "1");
    Run(Associators{path, "ht_holds", "ht_toy", "any role", "x", true, false, List({"no such"})});
    Run(AssociatorNames{path, "ht_holds", "ht_toy", "any role", "x"});
    Run(References{path, "ht_holds", "any role", false, true, List({})});
    Run(ReferenceNames{path, "ht_holds", "any role"});
    const std::string place = " root/cimv2 /root/cimv2:ht_BOX.Id=\"1\" ";
    EXPECT_THAT(base.calls,
                ElementsAre("associators" + place + "HT_Holds,ht_toy,any role,x-Q-[no such,]",
                            "associators" + place + "HT_HoldsFirmly,ht_toy,any role,x-Q-[no such,]",
                            "associatorNames" + place + "HT_Holds,ht_toy,any role,x",
                            "associatorNames" + place + "HT_HoldsFirmly,ht_toy,any role,x",
                            "references" + place + "HT_Holds,any role--O[]",
                            "references" + place + "HT_HoldsFirmly,any role--O[]",
                            "referenceNames" + place + "HT_Holds,any role",
                            "referenceNames" + place + "HT_HoldsFirmly,any role"));
    EXPECT_EQ(source.asked[0], "Associators by anna: root/cimv2:HT_Holds c++::Base");
    EXPECT_EQ(source.asked[2], "AssociatorNames by anna: root/cimv2:HT_Holds c++::Base");
    EXPECT_EQ(source.asked[4], "References by anna: root/cimv2:HT_Holds c++::Base");
    EXPECT_EQ(source.asked[6], "ReferenceNames by anna: root/cimv2:HT_Holds c++::Base");
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(Associated, WhatIsLeftOutIsEmpty) {
    Run(Associators{bigBox});
    Run(ReferenceNames{bigBox});
    EXPECT_EQ(base.calls[0],
              "associators root/cimv2 /root/cimv2:HT_BigBox.Id=\"1\" HT_Holds,,,---no list");
    EXPECT_EQ(base.calls[2], "referenceNames root/cimv2 /root/cimv2:HT_BigBox.Id=\"1\" HT_Holds,");
}

TEST_F(Associated, WithoutAssociationClassAllThatCanReferToTheSourceAreAsked) {
    struct Row {
        CIMObjectPath source;
        const char* role;
        const char* asked;
    };
    const Row rows[] = {
        {item, "", "HT_Holds HT_HoldsFirmly HT_Marks HT_Resembles"},
        {toy, "", "HT_Holds HT_HoldsFirmly HT_Marks HT_Resembles"},
        {bigBox, "", "HT_Holds HT_HoldsFirmly"},
        {Path("HT_Tag", "Id", "1"), "", "HT_Marks"},
        {Path("HT_Base", "Id", "1"), "", ""},
        {item, "ITEM", "HT_Holds HT_HoldsFirmly HT_Marks"},
        {item, "Box", ""},
        {item, "Other", ""},
        {toy, "Other", "HT_Resembles"},
        {bigBox, "Box", "HT_Holds HT_HoldsFirmly"},
        {bigBox, "Nothing", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.source.toString().c_str()) + " " + row.role);
        EXPECT_EQ(Asked(Associators{row.source, "", "", row.role}), row.asked);
        EXPECT_EQ(Asked(AssociatorNames{row.source, "", "", row.role}), row.asked);
        EXPECT_EQ(Asked(References{row.source, "", row.role}), row.asked);
        EXPECT_EQ(Asked(ReferenceNames{row.source, "", row.role}), row.asked);
    }
}

TEST_F(Associated, AnAssociationClassThatIsNamedIsAskedWhateverItRefersTo) {
    const auto tag = Path("HT_Tag", "Id", "1");
    EXPECT_EQ(Asked(Associators{tag, "HT_Holds", "", "no role"}), "HT_Holds HT_HoldsFirmly");
    EXPECT_EQ(Asked(References{tag, "ht_holdsfirmly", "no role"}), "HT_HoldsFirmly");
    EXPECT_EQ(Asked(ReferenceNames{tag, "HT_Marks"}), "HT_Marks");
}

TEST_F(Associated, ClassesWithoutProviderForAssociationsHaveNone) {
    leaf.servesAssociations = false;
    Run(ReferenceNames{item});
    EXPECT_EQ(source.asked.size(), 4U);
    EXPECT_EQ(base.calls.size(), 2U);
    EXPECT_THAT(leaf.calls, IsEmpty());
}

TEST_F(Associated, InstancesGetTheirPathsWithTheHost) {
    CIMInstance found("HT_Item");
    OpenWBEM::CIMPropertyArray keys;
    keys.push_back(CIMProperty("Id", CIMValue(String("7"))));
    found.setProperty("Id", CIMValue(String("7")));
    found.setKeys(keys);
    base.instances = {found, CIMInstance("Without_Keys")};
    Run(Associators{bigBox, "HT_HoldsFirmly"});
    const Lines expected{"instance http://here/root/cimv2:HT_Item.Id=\"7\" HT_Item{Id=string 7}",
                         "instance http://here/root/cimv2:Without_Keys Without_Keys{}"};
    EXPECT_EQ(sink.lines, expected);
    sink.lines.clear();
    Run(References{bigBox, "HT_HoldsFirmly"});
    EXPECT_EQ(sink.lines, expected);
}

TEST_F(Associated, NamesKeepTheirNamespaceAndGetTheHost) {
    auto path = Path("Any_Class", "Any", "1");
    path.setNameSpace("root/other");
    base.paths = {path, item};
    Run(AssociatorNames{bigBox, "HT_HoldsFirmly"});
    Run(ReferenceNames{bigBox, "HT_HoldsFirmly"});
    EXPECT_THAT(sink.lines, ElementsAre("instance path http://here/root/other:Any_Class.Any=\"1\"",
                                        "instance path http://here/:HT_Item.Id=\"1\"",
                                        "instance path http://here/root/other:Any_Class.Any=\"1\"",
                                        "instance path http://here/:HT_Item.Id=\"1\""));
}

TEST_F(Associated, WrongKeysOfTheSourceArriveAsNullOnes) {
    Run(ReferenceNames{Path("HT_Box", "Wrong", "1"), "HT_HoldsFirmly"});
    EXPECT_EQ(base.calls[0],
              "referenceNames root/cimv2 /root/cimv2:HT_Box.Id=\"null\" HT_HoldsFirmly,");
}

TEST_F(Associated, RefusalsOfAllOperations) {
    const std::string unknown = "6 requested object could not be found (/root/cimv2:HT_None)";
    const auto none = Path("HT_None", "Id", "1");
    EXPECT_EQ(Asked(Associators{none}), unknown);
    EXPECT_EQ(Asked(AssociatorNames{none}), unknown);
    EXPECT_EQ(Asked(References{none}), unknown);
    EXPECT_EQ(Asked(ReferenceNames{none}), unknown);
    EXPECT_EQ(Asked(Associators{item, "HT_None"}), unknown);
    EXPECT_EQ(Asked(AssociatorNames{item, "HT_None"}), unknown);
    EXPECT_EQ(Asked(References{item, "HT_None"}), unknown);
    EXPECT_EQ(Asked(ReferenceNames{item, "HT_None"}), unknown);

    const std::string noAssociation =
        "4 invalid parameter passed to method (class HT_Box is not an association)";
    EXPECT_EQ(Asked(Associators{item, "HT_Box"}), noAssociation);
    EXPECT_EQ(Asked(AssociatorNames{item, "HT_Box"}), noAssociation);
    EXPECT_EQ(Asked(References{item, "HT_Box"}), noAssociation);
    EXPECT_EQ(Asked(ReferenceNames{item, "HT_Box"}), noAssociation);

    const std::string nameSpace = "3 namespace does not exist (root/none)";
    EXPECT_EQ(Failure(Associators{item}, "root/none"), nameSpace);
    EXPECT_EQ(Failure(AssociatorNames{item}, "root/none"), nameSpace);
    EXPECT_EQ(Failure(References{item}, "root/none"), nameSpace);
    EXPECT_EQ(Failure(ReferenceNames{item}, "root/none"), nameSpace);

    const std::string unknownResult = "5 class does not exist (/root/cimv2:HT_None)";
    EXPECT_EQ(Asked(Associators{item, "", "HT_None"}), unknownResult);
    EXPECT_EQ(Asked(AssociatorNames{item, "", "HT_None"}), unknownResult);
    EXPECT_THAT(base.calls, IsEmpty());
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(Associated, WhatAProviderThrowsEndsTheCall) {
    base.paths = {item};
    base.atEnd = [] { OW_THROWCIM(CIMException::NOT_SUPPORTED); };
    const std::string text = "7 requested operation is not supported";
    EXPECT_EQ(Failure(Associators{item}), text);
    EXPECT_EQ(Failure(AssociatorNames{item}), text);
    EXPECT_EQ(Failure(References{item}), text);
    EXPECT_EQ(Failure(ReferenceNames{item}), text);
    EXPECT_EQ(base.calls.size(), 4U);
    EXPECT_THAT(leaf.calls, IsEmpty());
    base.atEnd = [] { throw 7; };
    EXPECT_EQ(Failure(ReferenceNames{item}), "1 Unknown Exception");
}

// A name without keys is that of a class.

TEST_F(Associated, ReferencesOfAClassAreTheAssociationClasses) {
    Run(ReferenceNames{CIMObjectPath("ht_toy")});
    EXPECT_THAT(sink.lines, ElementsAre("class path http://here/root/cimv2:HT_Holds",
                                        "class path http://here/root/cimv2:HT_HoldsFirmly",
                                        "class path http://here/root/cimv2:HT_Marks",
                                        "class path http://here/root/cimv2:HT_Resembles"));
    sink.lines.clear();
    Run(ReferenceNames{CIMObjectPath("HT_Item"), "HT_Resembles", "Other"});
    Run(ReferenceNames{CIMObjectPath("HT_Tag"), "HT_Holds"});
    EXPECT_THAT(sink.lines, IsEmpty());
    Run(References{CIMObjectPath("HT_Item"), "HT_HoldsFirmly", "item", false, false,
                   List({"How"})});
    EXPECT_THAT(sink.lines,
                ElementsAre("class http://here/root/cimv2:HT_HoldsFirmly HT_HoldsFirmly"));
    EXPECT_EQ(sink.classes[0].getAllProperties().size(), 1U);
    EXPECT_THAT(source.asked, IsEmpty());
}

TEST_F(Associated, AssociatorsOfAClassAreTheClassesAtTheOtherEnds) {
    struct Row {
        AssociatorNames call;
        Lines names;
    };
    const Row rows[] = {
        {{CIMObjectPath("HT_Item")}, {"HT_Box", "HT_Tag", "HT_Toy"}},
        {{CIMObjectPath("HT_Toy")}, {"HT_Box", "HT_Tag", "HT_Toy", "HT_Item"}},
        {{CIMObjectPath("HT_BigBox")}, {"HT_Item"}},
        {{CIMObjectPath("HT_Base")}, {}},
        {{CIMObjectPath("HT_Item"), "HT_Marks"}, {"HT_Tag"}},
        {{CIMObjectPath("HT_Item"), "", "HT_Box"}, {"HT_Box"}},
        {{CIMObjectPath("HT_Toy"), "", "HT_Item"}, {"HT_Toy", "HT_Item"}},
        {{CIMObjectPath("HT_Item"), "", "", "One"}, {"HT_Toy"}},
        {{CIMObjectPath("HT_Item"), "", "", "", "tag"}, {"HT_Tag"}},
        {{CIMObjectPath("HT_Item"), "", "", "Box"}, {}},
    };
    for (const Row& row : rows) {
        sink.lines.clear();
        Run(row.call);
        Lines expected;
        for (const auto& name : row.names) {
            expected.push_back("class path http://here/root/cimv2:" + name);
        }
        EXPECT_EQ(sink.lines, expected);
    }
    sink.lines.clear();
    Run(Associators{CIMObjectPath("HT_Tag"), "", "", "", "", false, true});
    EXPECT_THAT(sink.lines, ElementsAre("class http://here/root/cimv2:HT_Item HT_Item"));
    const auto id = sink.classes[0].getProperty("Id");
    EXPECT_EQ(id.getOriginClass(), "HT_Item");
    EXPECT_TRUE(id.getQualifiers().empty());
    EXPECT_THAT(source.asked, IsEmpty());
}

TEST_F(Associated, KeysOfAKeylessClassAreDroppedSoItIsAClass) {
    Run(ReferenceNames{Path("HT_Keyless", "Id", "1")});
    EXPECT_THAT(sink.lines, IsEmpty());
    EXPECT_THAT(source.asked, IsEmpty());
}

} // namespace
} // namespace operationstest
