// Whoever watches a call is told when the host says that it is inside a library.
#include "cimserver/operations/OperationsTest.hpp"

namespace operationstest {
namespace {

using namespace cimserver::operations; // the names of the calls
using OpenWBEM::CIMObjectPath;
using testing::ElementsAre;

constexpr const char* mof = R"(
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride);

[Provider("c++::Leaf")] class HT_End { [Key] string Id; uint32 Rest(); };
[Association, Provider("c++::Leaf")] class HT_Link { [Key] HT_End REF One; [Key] HT_End REF Two; };
)";

class Noting final : public ProviderWatch {
public:
    void Entered(const std::string& what) override { noted.push_back("in: " + what); }
    void Left() override { noted.emplace_back("out"); }

    Lines noted;
};

class Watch : public OperationsTest {
protected:
    Watch() { schema.AddText(mof, "watch.mof"); }

    /// What a watch notes when the host, asked to carry out the call, enters and leaves.
    Lines NotedOf(const Call& call) {
        Noting watch;
        operations.Execute({.nameSpace = "root/cimv2",
                            .user = "anna",
                            .call = call,
                            .mayChange = true,
                            .watch = &watch},
                           sink);
        source.lastInfo.entered("the call");
        source.lastInfo.left();
        return watch.noted;
    }
    static CIMObjectPath End() {
        CIMObjectPath path("HT_End");
        path.setKeyValue("Id", OpenWBEM::CIMValue(OpenWBEM::String("1")));
        return path;
    }
};

TEST_F(Watch, IsToldOfEveryKindOfProvider) {
    const auto told = ElementsAre("in: the call", "out");
    EXPECT_THAT(NotedOf(EnumerateInstances{"HT_End"}), told);
    EXPECT_THAT(NotedOf(ReferenceNames{End()}), told);
    EXPECT_THAT(NotedOf(InvokeMethod{CIMObjectPath("HT_End"), "Rest"}), told);
}

TEST_F(Watch, NobodyNeedWatch) {
    Run(EnumerateInstances{"HT_End"});
    EXPECT_FALSE(source.lastInfo.entered);
    EXPECT_FALSE(source.lastInfo.left);
}

} // namespace
} // namespace operationstest
