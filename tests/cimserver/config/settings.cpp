#include "cimserver/Settings.hpp"
#include "cimserver/Items.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using cimserver::Configuration;
using cimserver::ConfigurationError;
using cimserver::ReadSettings;
using testing::ElementsAre;

constexpr const char* defaultProviders = "/default/providers";
const std::string mofFile = TEST_DATA_DIRECTORY "/program/test.mof";
const std::string needed = "cimserver.mof_files = " + mofFile + "\n";

cimserver::Settings Read(const std::string& text) {
    Configuration configuration;
    configuration.AddText(needed + text + "\nowcimomd.allow_anonymous = true\n", "my.conf");
    return ReadSettings(configuration, defaultProviders);
}

std::string Error(const std::string& text) {
    try {
        Read(text);
    } catch (const ConfigurationError& error) {
        return error.what();
    }
    return "no error";
}

TEST(Settings, Defaults) {
    const auto settings = Read("");
    EXPECT_THAT(settings.addresses, ElementsAre("127.0.0.1"));
    EXPECT_EQ(settings.port, 5988);
    EXPECT_THAT(settings.providerDirectories, ElementsAre(defaultProviders));
    EXPECT_EQ(settings.providerIdle, 5min);
    EXPECT_EQ(settings.logLevel, OpenWBEM::E_ERROR_LEVEL);
    EXPECT_THAT(settings.mofFiles, ElementsAre(mofFile));
    EXPECT_EQ(settings.nameSpace, "root/cimv2");
    EXPECT_THAT(settings.libraryItems, testing::IsEmpty());
    EXPECT_EQ(settings.limits.connections, 200U);
    EXPECT_EQ(settings.limits.connectionsPerAddress, 100U);
    EXPECT_EQ(settings.limits.idleSeconds, 300U);
    EXPECT_EQ(settings.limits.requestSeconds, 30U);
    EXPECT_EQ(settings.limits.headerBytes, 8192U);
    EXPECT_EQ(settings.limits.bodyBytes, 1048576U);
    EXPECT_EQ(settings.limits.xmlDepth, 64U);
    EXPECT_EQ(settings.limits.xmlAttributes, 32U);
    EXPECT_EQ(settings.limits.xmlElements, 20000U);
    EXPECT_EQ(settings.limits.keyBindings, 32U);
    EXPECT_EQ(settings.LogFile(), "");
    EXPECT_TRUE(settings.requestLog);
}

TEST(Settings, EveryLimitIsTheOneOfItsItem) {
    const auto limits = Read("http_server.max_connections = 101\n"
                             "cimserver.max_connections_per_address = 102\n"
                             "http_server.timeout = 103\n"
                             "cimserver.request_seconds = 104\n"
                             "cimserver.max_header_bytes = 1005\n"
                             "cimserver.max_body_bytes = 1106\n"
                             "cimserver.max_xml_depth = 107\n"
                             "cimserver.max_xml_attributes = 108\n"
                             "cimserver.max_xml_elements = 109\n"
                             "cimserver.max_key_bindings = 110\n")
                            .limits;
    EXPECT_EQ(limits.connections, 101U);
    EXPECT_EQ(limits.connectionsPerAddress, 102U);
    EXPECT_EQ(limits.idleSeconds, 103U);
    EXPECT_EQ(limits.requestSeconds, 104U);
    EXPECT_EQ(limits.headerBytes, 1005U);
    EXPECT_EQ(limits.bodyBytes, 1106U);
    EXPECT_EQ(limits.xmlDepth, 107U);
    EXPECT_EQ(limits.xmlAttributes, 108U);
    EXPECT_EQ(limits.xmlElements, 109U);
    EXPECT_EQ(limits.keyBindings, 110U);
}

TEST(Settings, LogGoesToTheFileThatIsNamed) {
    const auto settings = Read("log.main.type = File\nlog.main.location = /var/log/x.log\n"
                               "cimserver.request_log = FALSE\n");
    EXPECT_EQ(settings.LogFile(), "/var/log/x.log");
    EXPECT_FALSE(settings.requestLog);
    EXPECT_EQ(Read("log.main.location = /var/log/x.log\n").LogFile(), "");
    EXPECT_EQ(Error("log.main.type = file"),
              "my.conf:2: log.main.type = file: name the file with the item log.main.location");
}

TEST(Settings, EveryItemCounts) {
    const auto settings = Read("http_server.listen_addresses = 127.0.0.2\t::1 127.255.255.255\n"
                               "http_server.http_port = 0\n"
                               "cppprovifc.prov_location = /:/tmp;/usr\n"
                               "cppprovifc.prov_TTL = -1\n"
                               "log.main.level = DEBUG\n"
                               "cimserver.namespace = /root/other/\n");
    EXPECT_THAT(settings.addresses, ElementsAre("127.0.0.2", "::1", "127.255.255.255"));
    EXPECT_EQ(settings.port, 0);
    EXPECT_THAT(settings.providerDirectories, ElementsAre("/", "/tmp", "/usr"));
    EXPECT_EQ(settings.providerIdle, -1min);
    EXPECT_EQ(settings.logLevel, OpenWBEM::E_DEBUG_LEVEL);
    EXPECT_EQ(settings.nameSpace, "root/other");
}

TEST(Settings, RelativePathsAreOfTheWorkingDirectory) {
    Configuration configuration;
    std::filesystem::current_path(TEST_DATA_DIRECTORY "/program");
    configuration.AddText("cimserver.mof_files = test.mof:Child.cpp\n"
                          "owcimomd.allow_anonymous = true\n",
                          "my.conf");
    EXPECT_THAT(ReadSettings(configuration, defaultProviders).mofFiles,
                ElementsAre(mofFile, TEST_DATA_DIRECTORY "/program/Child.cpp"));
}

TEST(Settings, LogLevels) {
    EXPECT_EQ(Read("log.main.level = fatal").logLevel, OpenWBEM::E_FATAL_ERROR_LEVEL);
    EXPECT_EQ(Read("log.main.level = Error").logLevel, OpenWBEM::E_ERROR_LEVEL);
    EXPECT_EQ(Read("log.main.level = INFO").logLevel, OpenWBEM::E_INFO_LEVEL);
    EXPECT_EQ(Read("log.main.level = debug").logLevel, OpenWBEM::E_DEBUG_LEVEL);
}

TEST(Settings, WithoutMofFilesThereIsNothingToServe) {
    Configuration configuration;
    try {
        ReadSettings(configuration, defaultProviders);
        FAIL() << "nothing thrown";
    } catch (const ConfigurationError& error) {
        EXPECT_STREQ(error.what(),
                     "no MOF file: name the files that declare the classes with --mof FILE or with "
                     "the item cimserver.mof_files");
    }
}

TEST(Settings, AllMistakesAreCollectedInTheOrderOfTheFile) {
    Configuration configuration;
    configuration.AddText("log.main.level = loud\nnonsense\ncimserver.mof_files = /absent.mof\n"
                          "owcimomd.allow_anonymous = true\n",
                          "my.conf");
    configuration.Override("http_server.http_port", "x", "--listen");
    std::vector<cimserver::Mistake> mistakes;
    ReadSettings(configuration, defaultProviders, mistakes);
    std::vector<std::string> texts;
    for (const auto& mistake : mistakes) {
        texts.push_back(mistake.text);
    }
    EXPECT_THAT(
        texts,
        ElementsAre("--listen: http_server.http_port = x: expected a whole number from -1 to 65535",
                    "my.conf:1: log.main.level = loud: expected fatal, error, info or debug",
                    "my.conf:2: expected `name = value`",
                    "my.conf:3: cimserver.mof_files = /absent.mof: there is no file /absent.mof; "
                    "name one that is there"));
}

TEST(Settings, ThePlaceOfTheProvidersMayBeGivenAndNeedNotExistOtherwise) {
    EXPECT_EQ(Error(""), "no error");
    EXPECT_EQ(Error("cppprovifc.prov_location = /absent"),
              "my.conf:2: cppprovifc.prov_location = /absent: there is no directory /absent; "
              "name one that is there");
}

TEST(Settings, EveryItemHasAMeaningAndANameOfItsOwn) {
    std::set<std::string> names;
    for (const cimserver::ItemRow& row : cimserver::Items()) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_STRNE(row.meaning, "") << row.name;
    }
    EXPECT_GT(names.size(), 7U);
}

struct Row {
    const char* line;
    const char* why;
};
void PrintTo(const Row& row, std::ostream* out) {
    *out << row.line;
}

class RefusedItem : public testing::TestWithParam<Row> {};

TEST_P(RefusedItem, IsNamedWithPlaceAndReason) {
    const auto [line, why] = GetParam();
    EXPECT_EQ(Error(line), "my.conf:2: " + std::string(line) + ": " + why);
}

constexpr const char* portRange = "expected a whole number from -1 to 65535";
constexpr const char* idleRange = "expected a whole number from -1 to 1000000";

INSTANTIATE_TEST_SUITE_P(
    All, RefusedItem,
    testing::Values(
        Row{"http_server.http_port = 65536", portRange},
        Row{"http_server.http_port = -2", portRange},
        Row{"http_server.http_port = http", portRange},
        Row{"http_server.http_port = 5988x", portRange},
        Row{"http_server.listen_addresses = localhost",
            "`localhost` is no numeric IPv4 or IPv6 address"},
        Row{"cppprovifc.prov_location = /tmp:/absent/dir",
            "there is no directory /absent/dir; name one that is there"},
        Row{"cppprovifc.prov_TTL = soon", idleRange}, Row{"cppprovifc.prov_TTL = -2", idleRange},
        Row{"http_server.max_connections = 0", "expected a whole number from 1 to 10000"},
        Row{"cimserver.max_header_bytes = 61441", "expected a whole number from 256 to 61440"},
        Row{"cimserver.max_body_bytes = 1M", "expected a whole number from 1024 to 1073741824"},
        Row{"cimserver.request_seconds = 99999999999999999999",
            "expected a whole number from 1 to 86400"},
        Row{"cimserver.request_log = yes", "expected true or false"},
        Row{"log.main.type = syslog", "expected stderr or file"},
        Row{"log.main.level = loud", "expected fatal, error, info or debug"},
        Row{"cimserver.namespace = //", "expected a name such as root/cimv2"}));

} // namespace
