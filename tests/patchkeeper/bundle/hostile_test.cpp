#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "patchkeeper/bundle/Bundle.hpp"
#include "patchkeeper/bundle/HandMade.hpp"

// Bundles made to break out, to fill the disk or to confuse.
namespace {

using patchkeeper_test::Faults;
using patchkeeper_test::Gzip;
using patchkeeper_test::HandMade;
using patchkeeper_test::Item;
using patchkeeper_test::Noise;
using patchkeeper_test::Refusal;
using patchkeeper_test::Tar;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

std::vector<std::string> FaultsOfFile(const std::string& entry) {
    HandMade bundle;
    bundle.manifest["components"] = {"docs"};
    bundle.File("components/docs/x", "").File(entry, "data");
    return Faults(bundle.Bytes());
}

std::vector<std::string> FaultsOfLink(const std::string& entry, const std::string& link) {
    HandMade bundle;
    bundle.manifest["components"] = {"docs"};
    bundle.File("components/docs/x", "").Link(entry, link);
    return Faults(bundle.Bytes());
}

TEST(Hostile, PathsThatLeaveTheirRoot) {
    for (const char* entry :
         {"/etc/passwd", "//etc/passwd", "../etc/passwd", "..", "files/../../etc/passwd",
          "files/..", "files/a/../b", "files//etc/passwd", "components/docs/../../etc/passwd",
          "components/../etc/passwd", "components/docs/.."}) {
        EXPECT_THAT(FaultsOfFile(entry),
                    ElementsAre("'" + std::string(entry) + "' leaves its root"));
    }
}

TEST(Hostile, PathsThatAreNotPlain) {
    for (const char* entry : {"files/a//b", "files/./a", "files/a/.", "files/",
                              "components/docs//a", "components/docs/./a", "components//a"}) {
        EXPECT_THAT(FaultsOfFile(entry),
                    Contains("'" + std::string(entry) + "' has an empty part or '.' in its path"));
    }
    EXPECT_THAT(FaultsOfFile("files/..a/b.."), IsEmpty());
    EXPECT_THAT(FaultsOfFile("files/a/\\..\\b"), IsEmpty());
    HandMade bundle;
    bundle.Declare("files/" + std::string(256, 'a'), "x");
    EXPECT_THAT(Faults(bundle.Bytes()),
                Contains(EndsWith("has a part of more than 255 bytes in its path")));
}

TEST(Hostile, UndeclaredPathsThatLeaveTheirRoot) {
    HandMade bundle;
    bundle.items = {{"../../etc/passwd", "x"}, {"/etc/shadow", "", 0777, '2', "/x"}};
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'../../etc/passwd' leaves its root",
                            "'/etc/shadow' leaves its root and is a symbolic link"));
}

TEST(Hostile, LinksThatLeaveTheirRoot) {
    for (const char* link : {"/etc/passwd", "/", "..", "../x", "../../x", "../../../../etc"}) {
        EXPECT_THAT(
            FaultsOfLink("files/a", link),
            ElementsAre("'files/a' is a link that leaves its root: '" + std::string(link) + "'"));
        EXPECT_THAT(FaultsOfLink("components/docs/a", link),
                    ElementsAre("'components/docs/a' is a link that leaves its root: '" +
                                std::string(link) + "'"));
    }
    EXPECT_THAT(FaultsOfLink("files/a/b/c", "../../.."),
                ElementsAre("'files/a/b/c' is a link that leaves its root: '../../..'"));
}

TEST(Hostile, LinksThatStayInside) {
    for (const char* link : {"x", "x/y/z", "./x", "../x", "../../x", "../..", ".", "..."}) {
        EXPECT_THAT(FaultsOfLink("files/a/b/c", link), IsEmpty()) << link;
        EXPECT_THAT(FaultsOfLink("components/docs/a/b/c", link), IsEmpty()) << link;
    }
}

// `out` leads outside although it looks as if it stayed: `here` is no directory of its own.
TEST(Hostile, LinksThatClimbThroughOtherLinks) {
    HandMade bundle;
    bundle.Link("files/here", ".").Link("files/out", "here/here/here/../../../etc");
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'files/out' is a link with '..' behind a name: "
                            "'here/here/here/../../../etc'"));
}

TEST(Hostile, FilesThroughLinks) {
    HandMade bundle;
    bundle.manifest["components"] = {"docs"};
    bundle.Link("files/usr/way", "../etc").File("files/usr/way/passwd", "root::0:0");
    bundle.File("components/docs/usr/way/deep/shadow", "root::");
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'files/usr/way/passwd' goes through 'files/usr/way', which is a link",
                            "'components/docs/usr/way/deep/shadow' goes through 'files/usr/way', "
                            "which is a link"));
}

TEST(Hostile, LinkInPlaceOfAFileAndTheOtherWayRound) {
    HandMade bundle;
    bundle.File("files/a", "").Link("files/b", "x").Link("files/c", "x");
    bundle.items[0] = {"files/a", "", 0777, '2', "/etc/passwd"};
    bundle.items[1] = {"files/b", "data"};
    bundle.items[2].link = "/etc/passwd";
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'files/a' is a symbolic link and not a file",
                            "'files/b' is a file and not a symbolic link",
                            "'files/c' leads to '/etc/passwd' and not to 'x'"));
}

TEST(Hostile, HardLinksDevicesPipesAndDirectories) {
    HandMade bundle;
    for (const char* entry : {"files/1", "files/2", "files/3", "files/4", "files/5"}) {
        bundle.Declare(entry, "");
    }
    bundle.items = {{"files/1", "", 0644, '1', "/etc/passwd"},
                    {"files/2", "", 0644, '3'},
                    {"files/3", "", 0644, '4'},
                    {"files/4", "", 0644, '6'},
                    {"files/5", "", 0644, '5'},
                    {"dev/sda", "", 0644, '4'}};
    EXPECT_THAT(Faults(bundle.Bytes()),
                ElementsAre("'files/1' is a hard link and not a file",
                            "'files/2' is a device node and not a file",
                            "'files/3' is a device node and not a file",
                            "'files/4' is a named pipe and not a file",
                            "'files/5' is a directory and not a file",
                            "'dev/sda' is not in the manifest and is a device node"));
}

TEST(Hostile, SetUserIdBits) {
    for (const char* mode : {"4755", "2755", "1755", "7777"}) {
        HandMade bundle;
        bundle.File("files/a", "x", mode);
        EXPECT_THAT(Faults(bundle.Bytes()),
                    ElementsAre("'files/a' has a set-user-ID, set-group-ID or sticky bit"));
    }
    HandMade hidden;
    hidden.File("files/a", "x", "0755");
    hidden.items[0].mode = 04755;
    EXPECT_THAT(Faults(hidden.Bytes()),
                ElementsAre("'files/a' has another mode than the manifest says"));
}

// A thousand to one: the work must end with what is declared.
TEST(Hostile, ArchiveBombs) {
    const std::string zeros(40U << 20U, '\0');
    HandMade undeclared;
    undeclared.items = {{"files/bomb", zeros}};
    const std::string undeclaredBytes = undeclared.Bytes();
    HandMade lying;
    lying.Declare("files/bomb", "");
    lying.items = {{"files/bomb", zeros}};
    const std::string behind = Gzip(Tar(HandMade().AllItems()) + zeros);
    for (const auto& bytes : {undeclaredBytes, lying.Bytes(), behind}) {
        ASSERT_LT(bytes.size(), 1U << 20U);
        EXPECT_THAT(Faults(bytes), Contains("it holds more data than its manifest declares"));
    }
}

TEST(Hostile, SizesBeyondTheFile) {
    HandMade bundle;
    bundle.Declare("files/a", "data").items = {{"files/a", "data", 0644, '0', "", 077777777777}};
    EXPECT_THAT(Faults(bundle.Bytes()),
                Contains("'files/a' has 8589934591 bytes, but the manifest declares 4"));
    HandMade both = bundle;
    both.manifest["files"][0]["size"] = 077777777777;
    both.manifest["size"] = 077777777777;
    EXPECT_THAT(Faults(both.Bytes()), ElementsAre(StartsWith("its archive is damaged")));
}

// A gzip header whose file name never ends would have to be kept in memory whole.
TEST(Hostile, EndlessGzipHeader) {
    const std::string header("\x1F\x8B\x08\x08\0\0\0\0\0\x03", 10);
    EXPECT_EQ(Refusal(header + std::string(100U << 20U, 'x')), "its gzip data unpacks to nothing");
    EXPECT_EQ(Faults(HandMade().Bytes() + header + std::string(100U << 20U, 'x')),
              std::vector<std::string>{"its gzip data unpacks to nothing"});
}

TEST(Hostile, DataBehindTheGzipData) {
    const std::string whole = HandMade().File("files/a", "x").Bytes();
    for (const std::string& more : {std::string("x"), std::string(1, '\0'), std::string("\x1F\x8B"),
                                    std::string(200'000, '\0')}) {
        EXPECT_THAT(Faults(whole + more), ElementsAre("data stands behind the end of its archive"))
            << more.size();
    }
    EXPECT_THAT(Faults(whole + Gzip(std::string(512, '\0'))), IsEmpty());
    EXPECT_THAT(Faults(whole + Gzip("x")),
                ElementsAre("data stands behind the end of its archive"));
}

TEST(Hostile, DataBehindTheEnd) {
    const std::string tar = Tar(HandMade().File("files/a", "x").AllItems());
    EXPECT_THAT(Faults(Gzip(tar)), IsEmpty());
    EXPECT_THAT(Faults(Gzip(tar + std::string(20 * 512, '\0'))), IsEmpty());
    EXPECT_THAT(Faults(Gzip(tar + "x")), ElementsAre("data stands behind the end of its archive"));
    EXPECT_THAT(Faults(Gzip(tar + std::string(30'000, '\0') + "x")),
                ElementsAre("data stands behind the end of its archive"));
    EXPECT_THAT(Faults(Gzip(tar + Tar({{"files/b", "y"}}))),
                ElementsAre("data stands behind the end of its archive"));
}

TEST(Hostile, LongNamesInOtherDialects) {
    const std::string longName = "files/" + std::string(150, 'a');
    HandMade bundle;
    bundle.Declare(longName, "x");
    const Item gnuName = {"././@LongLink", longName + std::string(1, '\0'), 0644, 'L'};
    bundle.items = {gnuName, {"files/short", "x"}};
    EXPECT_THAT(Faults(bundle.Bytes()), IsEmpty());

    const std::string record = " path=" + longName + "\n";
    HandMade pax = bundle;
    pax.items = {{"pax", std::to_string(record.size() + 3) + record, 0644, 'x'},
                 {"files/short", "x"}};
    EXPECT_THAT(Faults(pax.Bytes()), IsEmpty());

    HandMade climbing = bundle;
    climbing.items = {{"././@LongLink", std::string("../../etc/passwd\0", 17), 0644, 'L'},
                      {"files/short", "x"}};
    EXPECT_THAT(Faults(climbing.Bytes()), Contains("'../../etc/passwd' leaves its root"));
}

TEST(Hostile, SparseFiles) {
    const std::string record = "22 GNU.sparse.major=1\n22 GNU.sparse.minor=0\n"
                               "30 GNU.sparse.name=files/hole\n31 GNU.sparse.realsize=1000000\n";
    std::string map = "1\n999999\n1\n";
    map.resize(512, '\0');
    HandMade bundle;
    bundle.Declare("files/hole", std::string(999'999, '\0') + "x");
    bundle.items = {{"pax", record, 0644, 'x'}, {"files/sparse", map + "x"}};
    EXPECT_THAT(Faults(bundle.Bytes()), ElementsAre("an entry of it has holes"));
}

TEST(Hostile, NamesThatAreNotUtf8) {
    HandMade bundle;
    bundle.items = {{"files/\xFF\xFE", "x"}, {"files/\x1B[2J", "y"}};
    EXPECT_THAT(Faults(bundle.Bytes()), ElementsAre("'files/\xFF\xFE' is not in the manifest",
                                                    "'files/\\x1B[2J' is not in the manifest"));
}

TEST(Hostile, NamesInMessagesAreCut) {
    HandMade bundle;
    bundle.Declare("nowhere/" + std::string(800, 'a'), "x");
    for (const auto& fault : Faults(bundle.Bytes())) {
        EXPECT_LT(fault.size(), 300U);
    }
}

// Cut off anywhere, a bundle is refused or has a fault.
TEST(Hostile, TruncatedAnywhere) {
    HandMade bundle;
    bundle.File("files/a", "some data").File("files/b", Noise(200'000));
    const std::string whole = bundle.Bytes();
    ASSERT_THAT(Faults(whole), IsEmpty());
    int refused = 0;
    int faulty = 0;
    for (std::size_t length = 0; length < whole.size();
         length += length < 500 || length > whole.size() - 500 ? 1U : 997U) {
        const std::string cut = whole.substr(0, length);
        if (!Refusal(cut).empty()) {
            ++refused;
        } else {
            EXPECT_THAT(Faults(cut), Not(IsEmpty())) << length;
            ++faulty;
        }
    }
    EXPECT_GT(refused, 0);
    EXPECT_GT(faulty, 0);
}

} // namespace
