#include "cimserver/host/HostTest.hpp"

namespace hosttest {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class Choice : public HostTest {
protected:
    /// The id of the provider that was called for the class, or "none".
    std::string ServedBy(const std::string& qualifier, const std::string& className,
                         const std::string& nameSpace = "root/cimv2") {
        TakeLines();
        const bool served = TheHost().WithInstanceProvider(
            {nameSpace.c_str(), className.c_str(), qualifier.c_str()}, {"", ""},
            [](auto&, const auto&) {});
        if (!served) {
            return "none";
        }
        const auto lines = TakeLines();
        return lines.empty() ? "nobody" : lines.back().substr(0, lines.back().find(':'));
    }
};

TEST_F(Choice, QualifierForms) {
    struct Row {
        const char* qualifier;
        const char* servedBy;
        bool logged;
    };
    const Row rows[] = {
        {"c++::Good", "Good", false}, {"C++::Good", "Good", false}, {"c++:Good", "Good", false},
        {"", "none", false},          {"Good", "none", true},       {"perl::Good", "none", true},
        {"c::Good", "none", true},    {"::Good", "none", true},
    };
    Install("Good");
    Start();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.qualifier);
        EXPECT_EQ(ServedBy(row.qualifier, "HT_Class"), row.servedBy);
        const auto log = LogTaken();
        if (row.logged) {
            EXPECT_THAT(log, ElementsAre("ow.provider.cpp.ifc ERROR class HT_Class: the Provider "
                                         "qualifier `" +
                                         std::string(row.qualifier) +
                                         "` names no C++ provider (c++::ID)"));
        } else {
            EXPECT_THAT(log, IsEmpty());
        }
    }
}

TEST_F(Choice, IdIsCaseSensitive) {
    Install("Good");
    Start();
    EXPECT_EQ(
        Failure("c++::good"),
        "1 general error (Invalid provider: good: there is no provider library libgood.so in " +
            Directory().string() + ")");
}

TEST_F(Choice, RegisteredForAllNamespacesWinsOverAllElse) {
    Install("Good");
    Install("Other");
    SetRegistrations("Good", {{"HT_A", {}}});
    SetRegistrations("Other", {{"HT_A", {"root/cimv2"}}});
    Start();
    EXPECT_EQ(ServedBy("c++::Other", "ht_a"), "Good");
    EXPECT_EQ(ServedBy("", "HT_B"), "none");
    EXPECT_THAT(LogTaken(), IsEmpty());
}

TEST_F(Choice, RegisteredForTheNamespaceWinsOverTheQualifierThereOnly) {
    Install("Good");
    Install("Other");
    SetRegistrations("Other", {{"HT_A", {"root/one", "root/two"}}});
    Start();
    EXPECT_EQ(ServedBy("c++::Good", "HT_A", "root/one"), "Other");
    EXPECT_EQ(ServedBy("c++::Good", "HT_A", "ROOT/TWO"), "Other");
    EXPECT_EQ(ServedBy("c++::Good", "HT_A", "root/three"), "Good");
}

TEST_F(Choice, SecondRegistrationIsAnErrorLineAndIgnored) {
    Install("Good");
    Install("Other");
    SetRegistrations("Good", {{"HT_A", {}}});
    SetRegistrations("Other", {{"HT_A", {}}});
    Start();
    EXPECT_THAT(LogTaken(), ElementsAre("ow.provider.cpp.ifc ERROR provider Other registers ht_a, "
                                        "which provider Good serves already"));
    EXPECT_EQ(ServedBy("", "HT_A"), "Good");
}

TEST_F(Choice, FirstDirectoryThatYieldsAProviderWins) {
    const auto second = Directory().parent_path() / "second";
    std::filesystem::create_directory(second);
    Install("OldVersion", "Good");
    std::filesystem::create_symlink(HOST_TEST_PROVIDERS "/libGood.so", second / "libGood.so");
    auto settings = Settings();
    settings.directories = {Directory(), second};
    Start(settings);
    LogTaken();
    EXPECT_EQ(ServedBy("c++::Good", "HT_Class"), "Good");
    EXPECT_THAT(LogTaken(), ElementsAre(StartsWith("ow.provider.cpp.ifc ERROR provider library not "
                                                   "used: ")));
    // Once it is found nothing is searched again.
    EXPECT_EQ(ServedBy("c++::Good", "HT_Class"), "Good");
    EXPECT_THAT(LogTaken(), IsEmpty());
}

TEST_F(Choice, OnlyNamesThatEndInSoAreLookedAtAtTheStart) {
    std::filesystem::create_symlink(HOST_TEST_PROVIDERS "/libGood.so",
                                    Directory() / "libGood.so.1");
    Start();
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_THAT(LogTaken(), IsEmpty());
}

} // namespace
} // namespace hosttest
