#include "cimserver/host/HostTest.hpp"

#include <functional>
#include <memory>
#include <new>

namespace hosttest {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Row {
    const char* id;
    const char* reason; ///< what the log says beside the file
};

class RefusedLibrary : public HostTest, public testing::WithParamInterface<Row> {};

TEST_P(RefusedLibrary, IsNamedWithTheReasonAtTheStartAndAtEachRequest) {
    const auto [id, reason] = GetParam();
    Install(id);
    const auto line = AllOf(StartsWith("ow.provider.cpp.ifc ERROR provider library not used: " +
                                       (Directory() / "lib").string() + id + ".so: "),
                            HasSubstr(reason));
    Start();
    EXPECT_THAT(LogTaken(), ElementsAre(line));
    for (int request = 0; request < 2; ++request) {
        EXPECT_THAT(Failure("c++::" + std::string(id)),
                    AllOf(StartsWith("1 general error (Invalid provider: " + std::string(id) +
                                     ": " + (Directory() / "lib").string() + id + ".so: "),
                          HasSubstr(reason)));
        EXPECT_THAT(LogTaken(), ElementsAre(line));
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, RefusedLibrary,
    testing::Values(Row{"OldVersion", "made for OpenWBEM 3.0.2, this server is 3.0.3"},
                    Row{"NoVersion", "undefined symbol: getOWVersion"},
                    Row{"NoFactory", "undefined symbol: createProviderNoFactory"},
                    Row{"MakesNothing", "createProviderMakesNothing made no provider"},
                    Row{"Unresolved", "undefined symbol: NobodyDefinesThis"}),
    [](const auto& row) { return row.param.id; });

class Refusal : public HostTest {};

TEST_F(Refusal, MissingLibraryIsNamedWithTheDirectories) {
    Start();
    const std::string reason =
        "there is no provider library libMissing.so in " + Directory().string();
    EXPECT_EQ(Failure("c++::Missing"),
              "1 general error (Invalid provider: Missing: " + reason + ")");
    EXPECT_THAT(LogTaken(), ElementsAre("ow.provider.cpp.ifc ERROR " + reason));
}

TEST_F(Refusal, EveryDirectoryThatHasTheLibraryIsNamed) {
    auto settings = Settings();
    settings.directories = {Directory() / "one", Directory() / "two"};
    for (const auto& directory : settings.directories) {
        std::filesystem::create_directory(directory);
        std::filesystem::create_symlink(HOST_TEST_PROVIDERS "/libOldVersion.so",
                                        directory / "libOldVersion.so");
    }
    Start(settings);
    const std::string reason = ": made for OpenWBEM 3.0.2, this server is 3.0.3";
    EXPECT_EQ(Failure("c++::OldVersion"),
              "1 general error (Invalid provider: OldVersion: " +
                  (settings.directories[0] / "libOldVersion.so").string() + reason + "; " +
                  (settings.directories[1] / "libOldVersion.so").string() + reason + ")");
}

TEST_F(Refusal, IdNeverLeavesTheDirectory) {
    Install("Good");
    auto settings = Settings();
    settings.directories = {Directory() / "below"};
    std::filesystem::create_directory(Directory() / "below");
    std::filesystem::create_directory(Directory() / "below" / "lib");
    Start(settings);
    EXPECT_THAT(Failure("c++::/../../libGood"),
                StartsWith("1 general error (Invalid provider: /../../libGood: there is no "));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(Refusal, ProviderWithoutInstancesIsInvalidForThem) {
    Install("MethodsOnly");
    Start();
    EXPECT_THAT(LogTaken(), IsEmpty());
    EXPECT_EQ(Failure("c++::MethodsOnly"),
              "1 general error (Invalid provider: MethodsOnly: serves no instances)");
    EXPECT_THAT(LogTaken(),
                ElementsAre("ow.provider.cpp.ifc ERROR provider MethodsOnly serves no instances"));
}

TEST_F(Refusal, FileThatIsNoLibraryIsNamed) {
    std::filesystem::create_directory(Directory() / "libfolder.so");
    Start();
    EXPECT_THAT(LogTaken(), ElementsAre(HasSubstr("libfolder.so: ")));
}

TEST_F(Refusal, NameWithoutIdIsNamed) {
    std::filesystem::create_symlink(HOST_TEST_PROVIDERS "/libGood.so", Directory() / "lib.so");
    Start();
    EXPECT_THAT(LogTaken(), ElementsAre("ow.provider.cpp.ifc ERROR provider library not used: " +
                                        (Directory() / "lib.so").string() +
                                        ": the name holds no provider id (lib<id>.so)"));
}

TEST_F(Refusal, DirectoryThatCannotBeReadIsNamed) {
    auto settings = Settings();
    settings.directories = {Directory() / "absent"};
    Start(settings);
    EXPECT_THAT(LogTaken(),
                ElementsAre("ow.provider.cpp.ifc ERROR provider directory " +
                            (Directory() / "absent").string() + ": No such file or directory"));
}

TEST_F(Refusal, OneBadLibraryHindersNoOther) {
    Install("Good");
    Install("OldVersion");
    Install("Unresolved");
    Start();
    TakeLines();
    EXPECT_TRUE(Enumerate("c++::Good"));
}

// What a library throws must outlive it: it is closed before the exception is read.
TEST_F(Refusal, InitializeThatThrows) {
    struct Case {
        const char* what;
        const char* answer;
    };
    const Case cases[] = {
        {"throw CIMException", "2 Access to CIM resource unavailable to client (keep out)"},
        {"throw Exception", "1 bare text"},
        {"throw std::exception", "1 an own text"},
        {"throw anything", "1 Unknown Exception"},
        {"throw from the factory", "1 an own text"},
    };
    Install("Throwing");
    Start();
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        Switch(row.what, true);
        EXPECT_EQ(Failure("c++::Throwing"), row.answer);
        Switch(row.what, false);
    }
}

TEST_F(Refusal, FactoryThatThrowsAtTheStartIsLogged) {
    Install("Throwing");
    Switch("throw from the factory", true);
    Start();
    EXPECT_THAT(LogTaken(), ElementsAre("ow.provider.cpp.ifc ERROR " +
                                        (Directory() / "libThrowing.so").string() +
                                        ": at the start of the server: an own text"));
}

TEST_F(Refusal, CallThatThrows) {
    Install("Good");
    Start();
    const auto failure = [&](const std::function<void()>& action) {
        try {
            TheHost().WithInstanceProvider({"root/cimv2", "HT_Class", "c++::Good"}, {"", ""},
                                           [&](auto&, const auto&) { action(); });
        } catch (const OpenWBEM::CIMException& error) {
            EXPECT_STREQ(error.what(), error.getMessage());
            const std::unique_ptr<OpenWBEM::CIMException> copy(error.clone());
            EXPECT_STREQ(copy->getMessage(), error.getMessage());
            EXPECT_STREQ(error.type(), "CIMException");
            return std::to_string(error.getErrNo()) + " " + error.getMessage();
        }
        return std::string("nothing thrown");
    };
    EXPECT_EQ(failure([] { OW_THROWCIMMSG(OpenWBEM::CIMException::NOT_FOUND, "text#"); }),
              "6 requested object could not be found (text#)");
    EXPECT_EQ(failure([] { OW_THROWCIM(OpenWBEM::CIMException::INVALID_PARAMETER); }),
              "4 invalid parameter passed to method");
    EXPECT_EQ(failure([] { throw std::bad_alloc(); }), "1 std::bad_alloc");
    EXPECT_EQ(failure([] { throw 5; }), "1 Unknown Exception");
    EXPECT_EQ(failure([] { throw std::string("no exception"); }), "1 Unknown Exception");
    EXPECT_EQ(failure([] { throw nullptr; }), "1 Unknown Exception");
    EXPECT_TRUE(Enumerate("c++::Good"));
}

} // namespace
} // namespace hosttest
