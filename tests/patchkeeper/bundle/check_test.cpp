#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "patchkeeper/bundle/Bundle.hpp"
#include "patchkeeper/bundle/HandMade.hpp"

// What is wrong between a manifest and its files.
namespace {

using patchkeeper::BundleLimits;
using patchkeeper_test::Faults;
using patchkeeper_test::HandMade;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(Check, GoodBundlesHaveNoFaults) {
    EXPECT_THAT(Faults(HandMade().Bytes()), IsEmpty());
    HandMade bundle;
    bundle.manifest["components"] = {"docs", "extra"};
    bundle.File("files/a", "").File("files/usr/bin/tool", std::string(300'000, 'x'), "0755");
    bundle.Link("files/usr/lib/libx.so", "libx.so.1").Link("files/usr/lib/up", "../../a");
    bundle.File("components/docs/usr/doc", "text", "0600").File("components/extra/b", "b");
    EXPECT_THAT(Faults(bundle.Bytes()), IsEmpty());
}

TEST(Check, OrderOfTheFilesDoesNotMatter) {
    HandMade bundle;
    bundle.File("files/a", "1").File("files/b", "2").File("files/c", "3");
    std::swap(bundle.items[0], bundle.items[2]);
    EXPECT_THAT(Faults(bundle.Bytes()), IsEmpty());
}

TEST(Check, ChangedDataIsNamed) {
    HandMade bundle;
    bundle.File("files/a", "one").File("files/b", "two");
    bundle.items[1].data = "tvo";
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'files/b' has another SHA-256 than the manifest says"));
}

TEST(Check, OtherSizesAreNamed) {
    HandMade bundle;
    bundle.File("files/a", "one").File("files/b", "two");
    bundle.items[0].data = "one more";
    bundle.items[1].data = "t";
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'files/a' has 8 bytes, but the manifest declares 3",
                            "'files/b' has 1 bytes, but the manifest declares 3"));
}

TEST(Check, OtherModesAreNamed) {
    HandMade bundle;
    bundle.File("files/a", "one", "0644");
    bundle.items[0].mode = 0755;
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'files/a' has another mode than the manifest says"));
}

TEST(Check, MissingPartsAreNamed) {
    HandMade bundle;
    bundle.manifest["components"] = {"docs"};
    bundle.Declare("files/a", "one").File("files/b", "two").Declare("components/docs/c", "three");
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'files/a' is missing", "'components/docs/c' is missing"));
}

TEST(Check, EntriesOutsideTheManifestAreNamed) {
    HandMade bundle;
    bundle.items = {{"files/a", "one"},
                    {"README", "two"},
                    {"Files/a", "three"},
                    {"files/sub/", "", 0755, '5'},
                    {"./manifest.sig", "four"}};
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'files/a' is not in the manifest", "'README' is not in the manifest",
                            "'Files/a' is not in the manifest",
                            "'files/sub/' is not in the manifest and is a directory",
                            "'./manifest.sig' is not in the manifest"));
}

TEST(Check, NamesThatDifferInCaseAreTwoFiles) {
    HandMade bundle;
    bundle.File("files/net/xt_MARK.h", "one").File("files/net/xt_mark.h", "two");
    EXPECT_THAT(Faults(bundle.Bytes()), IsEmpty());
    bundle.items[0].name = "files/net/XT_MARK.h";
    EXPECT_THAT(Faults(bundle.Bytes()), ElementsAre("'files/net/XT_MARK.h' is not in the manifest",
                                                    "'files/net/xt_MARK.h' is missing"));
}

TEST(Check, DoubledEntriesAreNamed) {
    HandMade bundle;
    bundle.File("files/a", "one");
    bundle.items.push_back({"files/a", "two"});
    bundle.items.push_back({"manifest.json", "{}"});
    EXPECT_THAT(Faults(bundle.Bytes()), ElementsAre("'files/a' is in the archive twice",
                                                    "'manifest.json' is in the archive twice"));
}

TEST(Check, DoubledDeclarationsAreNamed) {
    HandMade bundle;
    bundle.File("files/a", "one").Declare("files/a", "two");
    EXPECT_THAT(Faults(bundle.Bytes()), ElementsAre("'files/a' is in the manifest twice"));
}

TEST(Check, TwoFilesForOnePlaceAreNamed) {
    HandMade bundle;
    bundle.manifest["components"] = {"docs", "other"};
    bundle.File("files/a", "one").File("components/docs/a", "two");
    bundle.File("components/docs/b", "three").File("components/other/b", "four");
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'components/docs/a' goes to the same place as 'files/a'",
                            "'components/other/b' goes to the same place as 'components/docs/b'"));
}

TEST(Check, FilesBelowFilesAreNamed) {
    HandMade bundle;
    bundle.manifest["components"] = {"docs"};
    bundle.File("files/usr/bin", "one").File("files/usr/bin/tool", "two");
    bundle.File("components/docs/usr/bin/x/y", "three").File("files/usr/binary", "four");
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'files/usr/bin/tool' goes through 'files/usr/bin', which is a file",
                            "'components/docs/usr/bin/x/y' goes through 'files/usr/bin', which is "
                            "a file"));
}

TEST(Check, ComponentsAreDeclaredAndHaveFiles) {
    HandMade bundle;
    bundle.manifest["components"] = {"docs", "empty"};
    bundle.File("components/docs/a", "one").File("components/Docs/b", "two");
    bundle.File("components/loose", "three").File("other/c", "four").File("d", "five");
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'components/Docs/b' belongs to a component that is not declared",
                            "'components/loose' stands neither below files/ nor in a component",
                            "'other/c' stands neither below files/ nor in a component",
                            "'d' stands neither below files/ nor in a component",
                            "the component 'empty' has no files"));
}

TEST(Check, SizeIsTheSumOfAllFiles) {
    HandMade bundle;
    bundle.manifest["components"] = {"docs"};
    bundle.File("files/a", "12345").File("components/docs/b", "678");
    bundle.manifest["size"] = 5;
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("its size is declared as 5 bytes, but its files have 8"));
}

TEST(Check, EveryFaultIsNamed) {
    HandMade bundle;
    bundle.manifest["components"] = {"empty"};
    bundle.File("files/../a", "one").File("files/b", "two", "4755").Declare("files/c", "three");
    bundle.File("files/d", "four").items.back().data = "five";
    bundle.items.push_back({"files/e", "six"});
    bundle.manifest["size"] = 1;
    patchkeeper::Trust trust;
    EXPECT_THAT(patchkeeper::FaultsOf(patchkeeper_test::Stored(bundle.Bytes()), trust),
                UnorderedElementsAre("'files/../a' leaves its root",
                                     "'files/b' has a set-user-ID, set-group-ID or sticky bit",
                                     "the component 'empty' has no files",
                                     "its size is declared as 1 bytes, but its files have 15",
                                     "'files/d' has another SHA-256 than the manifest says",
                                     "'files/e' is not in the manifest", "'files/c' is missing",
                                     "it is not signed"));
}

TEST(Check, LimitsEndTheCheckAtOnce) {
    HandMade bundle;
    bundle.File("files/a", "12345").File("files/b", "678").items.clear();
    BundleLimits limits;
    limits.files = 1;
    EXPECT_THAT(Faults(bundle.Bytes(), limits),
                ElementsAre("it has 2 files, more than the 1 that are accepted"));
    limits.files = 2;
    limits.totalBytes = 7;
    EXPECT_THAT(Faults(bundle.Bytes(), limits),
                ElementsAre("it declares 8 bytes, more than the 7 that are accepted"));
    limits.totalBytes = 8;
    EXPECT_THAT(Faults(bundle.Bytes(), limits),
                ElementsAre("'files/a' is missing", "'files/b' is missing"));
}

TEST(Check, SumThatOverflowsIsTooMuch) {
    HandMade bundle;
    bundle.Declare("files/a", "").Declare("files/b", "");
    bundle.manifest["files"][0]["size"] = 0xFFFFFFFFFFFFFFFFULL;
    bundle.manifest["files"][1]["size"] = 1;
    EXPECT_THAT(Faults(bundle.Bytes()), ElementsAre("it declares 18446744073709551615 bytes, more "
                                                    "than the 17179869184 that are accepted"));
}

TEST(Check, ProgressGrowsToTheDeclaredSizeAndMayEndTheCheck) {
    HandMade bundle;
    bundle.File("files/a", std::string(200'000, 'x')).File("files/b", std::string(100'000, 'y'));
    const auto file = patchkeeper_test::Stored(bundle.Bytes());
    patchkeeper::Trust trust;
    trust.allowUnsigned = true;
    std::vector<std::uint64_t> seen;
    patchkeeper::FaultsOf(file, trust, {}, [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(total, 300'000U);
        seen.push_back(done);
    });
    EXPECT_GE(seen.size(), 5U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_EQ(seen.back(), 300'000U);
    struct Cancelled {};
    EXPECT_THROW(patchkeeper::FaultsOf(file, trust, {},
                                       [](std::uint64_t, std::uint64_t) { throw Cancelled(); }),
                 Cancelled);
}

} // namespace
