#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"
#include "patchkeeper/bundle/Bundle.hpp"
#include "patchkeeper/bundle/HandMade.hpp"

namespace {

using patchkeeper::BundleLimits;
using patchkeeper::IsPlainName;
using patchkeeper::Manifest;
using patchkeeper::ReadManifest;
using patchkeeper_test::Faults;
using patchkeeper_test::Gzip;
using patchkeeper_test::HandMade;
using patchkeeper_test::Item;
using patchkeeper_test::Refusal;
using patchkeeper_test::Sha256;
using patchkeeper_test::Stored;
using patchkeeper_test::Tar;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string WithManifest(const std::string& text) {
    return Gzip(Tar({{"manifest.json", text}}));
}

std::string WithItem(const char* name, const nlohmann::ordered_json& value) {
    HandMade bundle;
    bundle.manifest[name] = value;
    return bundle.Bytes();
}

// The example of README.md, so that it stays true.
std::string ExampleText() {
    const std::string readme = patchkeeper_test::ContentOf(BUNDLE_README);
    const std::string start = "```json\n";
    const auto begin = readme.find(start);
    return readme.substr(begin + start.size(),
                         readme.find("```", begin + 3) - begin - start.size());
}

TEST(Manifest, EveryItemIsRead) {
    const Manifest manifest = ReadManifest(Stored(WithManifest(ExampleText())));
    EXPECT_EQ(manifest.name, "httpd-fix");
    EXPECT_EQ(manifest.version, "2.4.1");
    EXPECT_EQ(manifest.shortDescription, "Closes a hole in the web server");
    EXPECT_EQ(manifest.longDescription,
              "Requests with two lengths are refused.\nNothing else changes.");
    EXPECT_EQ(manifest.category, "Security");
    EXPECT_EQ(manifest.classification, "Middleware");
    EXPECT_FALSE(manifest.rebootNeeded);
    EXPECT_TRUE(manifest.removable);
    EXPECT_EQ(manifest.size, 14U);
    EXPECT_THAT(manifest.components, ElementsAre("docs"));
    EXPECT_THAT(manifest.warnings, ElementsAre("The web server stops for some seconds."));
    EXPECT_EQ(manifest.sha256, Sha256(ExampleText()));
    ASSERT_EQ(manifest.files.size(), 3U);

    const auto& file = manifest.files[0];
    EXPECT_EQ(file.entry, "files/usr/bin/httpd");
    EXPECT_EQ(file.path, "usr/bin/httpd");
    EXPECT_EQ(file.component, "");
    EXPECT_EQ(file.size, 7U);
    EXPECT_EQ(file.mode, 0755U);
    EXPECT_EQ(file.sha256, Sha256("binary\n"));
    EXPECT_FALSE(file.IsLink());

    EXPECT_TRUE(manifest.files[1].IsLink());
    EXPECT_EQ(manifest.files[1].link, "httpd");

    EXPECT_EQ(manifest.files[2].component, "docs");
    EXPECT_EQ(manifest.files[2].path, "usr/share/doc/httpd");
    EXPECT_EQ(manifest.FilesOf("").size(), 2U);
    ASSERT_EQ(manifest.FilesOf("docs").size(), 1U);
    EXPECT_EQ(manifest.FilesOf("docs")[0].entry, "components/docs/usr/share/doc/httpd");
    EXPECT_THAT(manifest.FilesOf("other"), IsEmpty());
}

TEST(Manifest, TheExampleMakesAGoodBundle) {
    const std::vector<Item> items = {{"manifest.json", ExampleText()},
                                     {"files/usr/bin/httpd", "binary\n", 0755},
                                     {"files/usr/bin/web", "", 0777, '2', "httpd"},
                                     {"components/docs/usr/share/doc/httpd", "manual\n"}};
    EXPECT_THAT(Faults(Gzip(Tar(items))), IsEmpty());
}

TEST(Manifest, MissingTextsHaveDefaults) {
    const Manifest manifest = ReadManifest(Stored(HandMade().Bytes()));
    EXPECT_EQ(manifest.shortDescription, "");
    EXPECT_EQ(manifest.longDescription, "");
    EXPECT_EQ(manifest.category, "");
    EXPECT_EQ(manifest.classification, "Other");
    EXPECT_THAT(manifest.components, IsEmpty());
    EXPECT_THAT(manifest.warnings, IsEmpty());
}

TEST(Manifest, OtherItemsAreRequired) {
    for (const char* name :
         {"format", "name", "version", "reboot_needed", "removable", "size", "files"}) {
        HandMade bundle;
        bundle.manifest.erase(name);
        EXPECT_EQ(Refusal(bundle.Bytes()),
                  "manifest.json: the manifest lacks '" + std::string(name) + "'");
    }
    for (const char* name : {"path", "size", "mode", "sha256"}) {
        HandMade bundle;
        bundle.File("files/a", "x");
        bundle.manifest["files"][0].erase(name);
        EXPECT_EQ(Refusal(bundle.Bytes()),
                  "manifest.json: a file lacks '" + std::string(name) + "'");
    }
    HandMade link;
    link.manifest["files"].push_back({{"link", "x"}});
    EXPECT_EQ(Refusal(link.Bytes()), "manifest.json: a link lacks 'path'");
}

TEST(Manifest, WrongKindsOfValuesAreRefused) {
    const std::vector<std::pair<const char*, nlohmann::ordered_json>> rows = {
        {"format", "1"},
        {"name", 1},
        {"version", 1.0},
        {"version", nullptr},
        {"category", true},
        {"short_description", 1},
        {"reboot_needed", 1},
        {"removable", "true"},
        {"size", -1},
        {"size", 1.5},
        {"size", "1"},
        {"components", "docs"},
        {"components", {1}},
        {"warnings", "text"},
        {"warnings", {true}},
        {"files", "files/a"},
        {"long_description", nullptr},
    };
    for (const auto& [name, value] : rows) {
        EXPECT_THAT(Refusal(WithItem(name, value)), HasSubstr("'" + std::string(name) + "' of"))
            << value;
    }
    EXPECT_EQ(Refusal(WithItem("files", {"files/a"})), "manifest.json: a file is no object");
    EXPECT_EQ(Refusal(WithManifest("[]")), "manifest.json: the manifest is no object");
    EXPECT_EQ(Refusal(WithManifest("1")), "manifest.json: the manifest is no object");
}

TEST(Manifest, UnknownItemsAreRefused) {
    EXPECT_EQ(Refusal(WithItem("reboot-needed", true)),
              "manifest.json: the manifest has an unknown item 'reboot-needed'");
    HandMade bundle;
    bundle.File("files/a", "x").manifest["files"][0]["owner"] = "root";
    EXPECT_EQ(Refusal(bundle.Bytes()), "manifest.json: a file has an unknown item 'owner'");
    HandMade link;
    link.Link("files/a", "x").manifest["files"][0]["mode"] = "0777";
    EXPECT_EQ(Refusal(link.Bytes()), "manifest.json: a link has an unknown item 'mode'");
}

TEST(Manifest, OtherFormatIsRefusedWithItsNumber) {
    EXPECT_EQ(Refusal(WithItem("format", 2)),
              "manifest.json has the format 2, which this version does not know");
    EXPECT_NE(Refusal(WithItem("format", 0)), "");
}

TEST(Manifest, PlainNames) {
    for (const char* name : {"a", "Z", "0", "a-b", "1.0~rc1+b2_c", ".hidden", "~", "_", "..",
                             "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"}) {
        EXPECT_TRUE(IsPlainName(name)) << name;
    }
    for (
        const char* name :
        {"",         "-a",   "--apply",
         "a b",      "a\tb", "a\n",
         "a;b",      "a$b",  "a`b",
         "a/b",      "a'b",  "a\"b",
         "a\\b",     "a*",   "a?",
         "a&b",      "a|b",  "a<b",
         "a>b",      "a(b)", "a!b",
         "a#b",      "a{b",  "a=b",
         "a:b",      "a,b",  "a@b",
         "a%b",      "a^b",  "[a]",
         "\xC3\xA9", "\x7F", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"}) {
        EXPECT_FALSE(IsPlainName(name)) << name;
    }
    EXPECT_FALSE(IsPlainName(std::string_view("a\0b", 3)));
}

TEST(Manifest, NamesThatReachAShellArePlainOrRefused) {
    for (const char* text : {"", "-rf", "a b", "$(reboot)", "a;reboot", "a\nb", "`id`", "../x"}) {
        for (const char* item : {"name", "version"}) {
            EXPECT_THAT(Refusal(WithItem(item, text)),
                        StartsWith("manifest.json: '" + std::string(item) + "' is '"))
                << text;
        }
        EXPECT_THAT(Refusal(WithItem("components", {text})),
                    StartsWith("manifest.json: 'components' is '"))
            << text;
    }
    EXPECT_EQ(Refusal(WithItem("components", {"a", "b", "a"})),
              "manifest.json: the component 'a' is there twice");
}

TEST(Manifest, FileNamesWithWhiteSpaceOrControlCharactersAreRefused) {
    for (const char* text : {"files/a b", "files/a\tb", "files/a\n", "files/a\vb", "files/a\x1B[2J",
                             "files/a\x7F", "files/\xC2\x85", " files/a", "files/a\r"}) {
        HandMade file;
        file.Declare(text, "x");
        EXPECT_THAT(Refusal(file.Bytes()), EndsWith("holds white space or a control character"))
            << text;
        HandMade link;
        link.manifest["files"].push_back({{"path", "files/a"}, {"link", text}});
        EXPECT_THAT(Refusal(link.Bytes()), EndsWith("holds white space or a control character"))
            << text;
    }
    HandMade null;
    null.Declare(std::string("files/a\0b", 9), "x");
    EXPECT_EQ(Refusal(null.Bytes()), "manifest.json: the file name 'files/a\\x00b' holds white "
                                     "space or a control character");
}

TEST(Manifest, EmptyAndOverlongFileNamesAreRefused) {
    HandMade empty;
    empty.Declare("", "x");
    EXPECT_EQ(Refusal(empty.Bytes()), "manifest.json: the file name '' is empty");
    HandMade noLink;
    noLink.manifest["files"].push_back({{"path", "files/a"}, {"link", ""}});
    EXPECT_EQ(Refusal(noLink.Bytes()), "manifest.json: the file name '' is empty");
    HandMade longest;
    longest.Declare("files/" + std::string(894, 'a'), "x");
    EXPECT_EQ(Refusal(longest.Bytes()), "");
    HandMade tooLong;
    tooLong.Declare("files/" + std::string(895, 'a'), "x");
    EXPECT_THAT(Refusal(tooLong.Bytes()), EndsWith("has more than 900 bytes"));
}

TEST(Manifest, FileNamesWithShellCharactersAreNames) {
    HandMade bundle;
    bundle.File("files/usr/bin/[", "x").File("files/$(id);`x`&|<>*?'\"", "y");
    bundle.File("files/\xC3\xA9t\xC3\xA9", "z");
    EXPECT_EQ(Refusal(bundle.Bytes()), "");
    EXPECT_THAT(Faults(bundle.Bytes()), IsEmpty());
}

TEST(Manifest, ControlCharactersInTextsAreRefused) {
    for (const char* text : {"a\x1B[2J", "a\rb", "\x7F", "\xC2\x9B", "a\bb"}) {
        for (const char* item : {"short_description", "long_description", "category"}) {
            EXPECT_EQ(Refusal(WithItem(item, text)),
                      "manifest.json: '" + std::string(item) + "' holds a control character");
        }
        EXPECT_EQ(Refusal(WithItem("warnings", {"fine", text})),
                  "manifest.json: 'warnings' holds a control character");
    }
    EXPECT_EQ(Refusal(WithItem("category", std::string(1, '\0'))),
              "manifest.json: 'category' holds a control character");
    EXPECT_EQ(
        Refusal(WithItem("long_description", "tab\there\nand \xC3\xA9 \xC2\xA0 \xE2\x82\xAC")), "");
}

TEST(Manifest, TextsHaveALimit) {
    EXPECT_EQ(Refusal(WithItem("long_description", std::string(65536, 'x'))), "");
    EXPECT_EQ(Refusal(WithItem("long_description", std::string(65537, 'x'))),
              "manifest.json: 'long_description' has more than 65536 bytes");
}

TEST(Manifest, ClassificationIsOneThatReadersKnow) {
    for (const char* text : {"Other", "Driver", "Configuration Software", "Application Software",
                             "Instrumentation", "Firmware/BIOS", "Diagnostic Software",
                             "Operating System", "Middleware", "Firmware", "BIOS/FCode"}) {
        EXPECT_EQ(Refusal(WithItem("classification", text)), "");
        EXPECT_EQ(ReadManifest(Stored(WithItem("classification", text))).classification, text);
    }
    EXPECT_EQ(Refusal(WithItem("classification", "middleware")),
              "manifest.json: 'middleware' is no classification");
}

TEST(Manifest, ModesAreOctalDigits) {
    for (const char* mode : {"", "7", "64", "0o644", "644x", "rw-r--r--", "0888", "-644", "006440",
                             "10000", "0644 "}) {
        HandMade bundle;
        bundle.File("files/a", "x").manifest["files"][0]["mode"] = mode;
        EXPECT_THAT(Refusal(bundle.Bytes()),
                    StartsWith("manifest.json: the mode of 'files/a' is '"))
            << mode;
    }
    HandMade bundle;
    bundle.File("files/a", "x").manifest["files"][0]["mode"] = "640";
    EXPECT_EQ(ReadManifest(Stored(bundle.Bytes())).files[0].mode, 0640U);
}

TEST(Manifest, SumsAreLowerCaseDigits) {
    for (const std::string& sum : {std::string(), std::string(63, 'a'), std::string(65, 'a'),
                                   std::string(64, 'A'), std::string(64, 'g')}) {
        HandMade bundle;
        bundle.File("files/a", "x").manifest["files"][0]["sha256"] = sum;
        EXPECT_EQ(Refusal(bundle.Bytes()), "manifest.json: the SHA-256 of 'files/a' is not 64 "
                                           "lower-case hexadecimal digits");
    }
}

TEST(Manifest, TextThatIsNoJsonIsRefused) {
    for (const char* text : {"", "{", "{}x", "{'a':1}", "{\"a\":1,}", "// comment\n{}", "nul",
                             "{\"a\":NaN}", "{\"a\":01}"}) {
        EXPECT_THAT(Refusal(WithManifest(text)), StartsWith("manifest.json is not JSON: ")) << text;
    }
    EXPECT_EQ(Refusal(WithManifest("{\"size\":1e999}")),
              "manifest.json is not JSON: a number in it is out of range");
}

TEST(Manifest, InvalidUtf8IsRefused) {
    for (const char* text : {"\xFF", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        EXPECT_THAT(Refusal(WithManifest("{\"category\":\"" + std::string(text) + "\"}")),
                    StartsWith("manifest.json is not JSON: it goes wrong at byte "));
    }
    EXPECT_THAT(Refusal(WithManifest("{\"category\":\"\\uD800\"}")),
                StartsWith("manifest.json is not JSON"));
}

TEST(Manifest, DoubledNamesAreRefused) {
    EXPECT_EQ(Refusal(WithManifest("{\"name\":\"a\",\"version\":\"1\",\"name\":\"b\"}")),
              "manifest.json has 'name' twice in one place");
    EXPECT_EQ(
        Refusal(WithManifest("{\"files\":[{\"path\":\"a\"},{\"path\":\"b\",\"path\":\"c\"}]}")),
        "manifest.json has 'path' twice in one place");
}

TEST(Manifest, DeepJsonIsRefused) {
    EXPECT_EQ(Refusal(WithManifest(std::string(1'000'000, '['))),
              "manifest.json is nested too deep");
    std::string objects;
    for (int i = 0; i < 100'000; ++i) {
        objects += "{\"a\":";
    }
    EXPECT_EQ(Refusal(WithManifest(objects)), "manifest.json is nested too deep");
    EXPECT_EQ(Refusal(WithManifest("{\"files\":[{\"path\":[]}]}")),
              "manifest.json is nested too deep");
}

TEST(Manifest, EndlessListsAreRefused) {
    std::string text = "{\"warnings\":[";
    for (int i = 0; i < 1'000'001; ++i) {
        text += "0,";
    }
    EXPECT_EQ(Refusal(WithManifest(text + "0]}")), "manifest.json has too many values");
}

TEST(Manifest, HugeManifestIsRefusedBeforeItIsRead) {
    BundleLimits limits;
    limits.manifestBytes = 1000;
    HandMade bundle;
    bundle.manifest["category"] = std::string(2000, 'x');
    EXPECT_EQ(Refusal(bundle.Bytes(), limits), "manifest.json has more than 1000 bytes");
    // 8 GiB less one byte, of which nothing follows.
    EXPECT_EQ(Refusal(Gzip(Tar({{"manifest.json", "", 0644, '0', "", 077777777777}}))),
              "manifest.json has more than 16777216 bytes");
}

TEST(Manifest, MustStandInFront) {
    const HandMade bundle;
    const Item manifest = {"manifest.json", bundle.ManifestText()};
    EXPECT_EQ(Refusal(Gzip(Tar({{"files/a", "x"}, manifest}))),
              "its first entry is 'files/a' and not manifest.json");
    for (const char* name : {"./manifest.json", "Manifest.json", "MANIFEST.JSON", "/manifest.json",
                             "manifest.json/", "manifest.json\x01"}) {
        EXPECT_THAT(Refusal(Gzip(Tar({{name, bundle.ManifestText()}}))),
                    StartsWith("its first entry is "))
            << name;
    }
    EXPECT_EQ(Refusal(Gzip(Tar({}))), "it is empty");
}

TEST(Manifest, MustBeAFile) {
    EXPECT_EQ(Refusal(Gzip(Tar({{"manifest.json", "", 0777, '2', "/etc/passwd"}}))),
              "manifest.json is a symbolic link");
    EXPECT_EQ(Refusal(Gzip(Tar({{"manifest.json", "", 0777, '1', "/etc/passwd"}}))),
              "manifest.json is a hard link");
    EXPECT_EQ(Refusal(Gzip(Tar({{"manifest.json", "", 0777, '6'}}))),
              "manifest.json is a named pipe");
    EXPECT_EQ(Refusal(Gzip(Tar({{"manifest.json", "", 0777, '3'}}))),
              "manifest.json is a device node");
}

TEST(Manifest, OtherFilesAreNoBundles) {
    EXPECT_EQ(Refusal(""), "it is not packed with gzip");
    EXPECT_EQ(Refusal("some text\n"), "it is not packed with gzip");
    EXPECT_EQ(Refusal(Tar(HandMade().AllItems())), "it is not packed with gzip");
    EXPECT_EQ(Refusal(Gzip(HandMade().Bytes())), "it is not packed with gzip");
    EXPECT_EQ(Refusal(Gzip("some text\n")), "it is not a tar archive");
    EXPECT_NE(Refusal(std::string("\x1F\x8B\x08\0\0\0\0\0\0\0", 10)), "");
}

TEST(Manifest, FilesThatCannotBeReadAreFailuresThatNameThem) {
    const patchkeeper_test::TemporaryDirectory directory;
    const auto sentence = [](const std::filesystem::path& file) {
        try {
            ReadManifest(file);
        } catch (const patchkeeper::Failure& failure) {
            EXPECT_EQ(failure.Code(), patchkeeper::ExitCode::SoftwareUpdateFailed);
            return std::string(failure.what());
        }
        return std::string();
    };
    const auto missing = directory.Path() / "missing";
    EXPECT_EQ(sentence(missing), missing.string() + " cannot be read: No such file or directory");
    EXPECT_EQ(sentence(directory.Path()),
              directory.Path().string() + " cannot be read: it is not a file");
    EXPECT_EQ(sentence("/dev/null"), "/dev/null cannot be read: it is not a file");
    const auto pipe = directory.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(sentence(pipe), pipe.string() + " cannot be read: it is not a file");
}

} // namespace
