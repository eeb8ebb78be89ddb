#include "cimserver/operations/OperationsTest.hpp"

namespace operationstest {
namespace {

using namespace cimserver::operations; // the names of the calls
using testing::ElementsAre;
using testing::IsEmpty;

class Classes : public OperationsTest {
protected:
    /// The class as one line: what it holds, with the qualifiers in brackets and the origin after
    /// @.
    std::string Read(const GetClass& call) {
        Run(call);
        return sink.classes.empty() ? "nothing" : Described(sink.classes.back());
    }

    template <class Element>
    static std::string Qualifiers(const Element& element) {
        std::string text;
        for (const auto& qualifier : element.getQualifiers()) {
            text += (text.empty() ? "" : ",") + std::string(qualifier.getName().c_str());
        }
        return text.empty() ? "" : "[" + text + "]";
    }

    template <class Element>
    static std::string Origin(const Element& element) {
        const std::string origin = element.getOriginClass().c_str();
        return origin.empty() ? "" : "@" + origin;
    }

    static std::string Described(const OpenWBEM::CIMClass& cimClass) {
        std::string text = Qualifiers(cimClass) + cimClass.getName().c_str();
        for (const auto& property : cimClass.getAllProperties()) {
            text += " " + Qualifiers(property) + property.getName().c_str() + Origin(property);
        }
        for (const auto& method : cimClass.getAllMethods()) {
            text += " " + Qualifiers(method) + method.getName().c_str() + Origin(method) + "(";
            for (const auto& parameter : method.getParameters()) {
                text += Qualifiers(parameter) + parameter.getName().c_str();
            }
            text += ")";
        }
        return text;
    }
};

TEST_F(Classes, GetClassWithDefaultsLeavesOutWhatIsInherited) {
    GetClass call{"HT_Middle"};
    EXPECT_EQ(Read(call), "[Description]HT_Middle [Override,Description]Number Extra");
}

TEST_F(Classes, GetClassFilters) {
    struct Row {
        bool localOnly, includeQualifiers, includeClassOrigin;
        PropertyList list;
        const char* expected;
    };
    const OpenWBEM::StringArray none;
    OpenWBEM::StringArray some;
    some.push_back("extra");
    some.push_back("Unknown");
    some.push_back("ID");
    const Row rows[] = {
        {false,
         true,
         false,
         {},
         "[Description,Provider]HT_Middle [Key,Description]Id [Override,Description]Number Extra "
         "[Description]Start([In]Name)"},
        {false, false, false, {}, "HT_Middle Id Number Extra Start(Name)"},
        {false,
         false,
         true,
         {},
         "HT_Middle Id@HT_Base Number@HT_Middle Extra@HT_Middle Start@HT_Base(Name)"},
        {true, false, true, {}, "HT_Middle Number@HT_Middle Extra@HT_Middle"},
        {false, false, false, none, "HT_Middle Start(Name)"},
        {false, false, false, some, "HT_Middle Id Extra Start(Name)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(Read({"HT_Middle", row.localOnly, row.includeQualifiers, row.includeClassOrigin,
                        row.list}),
                  row.expected);
    }
}

TEST_F(Classes, NamesAreComparedWithoutRegardToCase) {
    GetClass call{"ht_leaf"};
    Run(call);
    EXPECT_THAT(sink.lines, ElementsAre("class HT_Leaf"));
}

TEST_F(Classes, FiltersLeaveTheSchemaAsItIs) {
    Read({"HT_Base", true, false, false, OpenWBEM::StringArray()});
    EXPECT_EQ(Read({"HT_Base", true, true, false, {}}),
              "[Description,Provider]HT_Base [Key,Description]Id Number "
              "[Description]Start([In]Name)");
}

TEST_F(Classes, UnknownClass) {
    const std::string text = "5 class does not exist (/root/cimv2:HT_None)";
    EXPECT_EQ(Failure(EnumerateClasses{"HT_None"}), text);
    EXPECT_EQ(Failure(EnumerateClassNames{"HT_None"}), text);
    EXPECT_EQ(Failure(EnumerateInstances{"HT_None"}), text);
    EXPECT_EQ(Failure(EnumerateInstanceNames{"HT_None"}), text);
    EXPECT_EQ(Failure(GetInstance{OpenWBEM::CIMObjectPath("HT_None")}), text);
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(Classes, GetClassOfAnUnknownClassIsNotFound) {
    EXPECT_EQ(Failure(GetClass{"HT_None"}),
              "6 requested object could not be found (/root/cimv2:HT_None)");
    EXPECT_EQ(Failure(GetClass{""}), "6 requested object could not be found (/root/cimv2:)");
}

TEST_F(Classes, GetQualifier) {
    Run(GetQualifier{"override"});
    EXPECT_THAT(sink.lines, ElementsAre(testing::StartsWith("Qualifier Override : string")));
}

TEST_F(Classes, GetQualifierOfAnUnknownOneIsNotFound) {
    EXPECT_EQ(Failure(GetQualifier{"Extra"}),
              "6 requested object could not be found (qualifier Extra)");
    EXPECT_EQ(Failure(GetQualifier{"Key"}, "root/none"), "3 namespace does not exist (root/none)");
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(Classes, EnumerateQualifiersInTheOrderOfDeclaration) {
    Run(EnumerateQualifiers{});
    EXPECT_THAT(sink.lines, ElementsAre(testing::StartsWith("Qualifier Key :"),
                                        testing::StartsWith("Qualifier Description :"),
                                        testing::StartsWith("Qualifier Provider :"),
                                        testing::StartsWith("Qualifier Override :"),
                                        testing::StartsWith("Qualifier In :")));
    EXPECT_EQ(Failure(EnumerateQualifiers{}, "root/none"),
              "3 namespace does not exist (root/none)");
}

TEST_F(Classes, UnknownNamespaceWinsOverUnknownClass) {
    const std::string text = "3 namespace does not exist (root/none)";
    EXPECT_EQ(Failure(GetClass{"HT_None"}, "root/none"), text);
    EXPECT_EQ(Failure(EnumerateClasses{}, "root/none"), text);
    EXPECT_EQ(Failure(EnumerateClassNames{}, "root/none"), text);
    EXPECT_EQ(Failure(EnumerateInstances{"HT_Base"}, "root/none"), text);
    EXPECT_EQ(Failure(EnumerateInstanceNames{"HT_Base"}, "/root/none"), text);
    EXPECT_EQ(Failure(GetInstance{OpenWBEM::CIMObjectPath("HT_Base")}, "root/none"), text);
    EXPECT_EQ(Failure(GetClass{"HT_Base"}, ""), "3 namespace does not exist");
    EXPECT_THAT(base.calls, IsEmpty());
}

TEST_F(Classes, NamespaceMayBeginWithASlashAndDifferInCase) {
    Run(EnumerateClassNames{"HT_Middle", false}, "/Root/CIMV2");
    EXPECT_THAT(sink.lines, ElementsAre("name HT_Leaf"));
}

TEST_F(Classes, EnumerateClassNames) {
    Run(EnumerateClassNames{"", false});
    EXPECT_THAT(sink.lines, ElementsAre("name HT_Base", "name HT_Nobody"));
    sink.lines.clear();
    Run(EnumerateClassNames{"", true});
    EXPECT_THAT(sink.lines,
                testing::UnorderedElementsAre("name HT_Base", "name HT_Middle", "name HT_Leaf",
                                              "name HT_Nobody", "name HT_NobodysChild"));
    sink.lines.clear();
    Run(EnumerateClassNames{"ht_base", false});
    EXPECT_THAT(sink.lines, ElementsAre("name HT_Middle"));
    sink.lines.clear();
    Run(EnumerateClassNames{"HT_Base", true});
    EXPECT_THAT(sink.lines, ElementsAre("name HT_Middle", "name HT_Leaf"));
    sink.lines.clear();
    Run(EnumerateClassNames{"HT_Leaf", true});
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(Classes, EnumerateClassesAppliesTheFiltersToEach) {
    Run(EnumerateClasses{"HT_Base", true, true, false, true});
    ASSERT_THAT(sink.lines, ElementsAre("class HT_Middle", "class HT_Leaf"));
    EXPECT_EQ(Described(sink.classes[0]), "HT_Middle Number@HT_Middle Extra@HT_Middle");
    EXPECT_EQ(Described(sink.classes[1]), "HT_Leaf Last@HT_Leaf");
    sink = KeepingSink();
    Run(EnumerateClasses{"", false, false, false, false});
    ASSERT_THAT(sink.lines, ElementsAre("class HT_Base", "class HT_Nobody"));
    EXPECT_EQ(Described(sink.classes[0]), "HT_Base Id Number Start(Name)");
}

TEST_F(Classes, ACallWithAFaultIsAnsweredWithItUnlessTheNamespaceIsWrong) {
    const OpenWBEM::CIMException error(__FILE__, __LINE__,
                                       OpenWBEM::CIMException::INVALID_PARAMETER, "Parameter X");
    EXPECT_EQ(Failure(FaultyCall{error}), "4 invalid parameter passed to method (Parameter X)");
    EXPECT_EQ(Failure(FaultyCall{error}, "root/none"), "3 namespace does not exist (root/none)");
}

TEST_F(Classes, EveryOtherOperationIsNotSupported) {
    EXPECT_EQ(Failure(OtherOperation{"ExecQuery"}),
              "7 requested operation is not supported (ExecQuery)");
    EXPECT_EQ(Failure(OtherOperation{"ExecQuery"}, "root/none"),
              "7 requested operation is not supported (ExecQuery)");
}

} // namespace
} // namespace operationstest
