// What `cimserver --check-config` tells.
#include "cimserver/ConfigurationCheck.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

const std::string needed = "cimserver.mof_files = " TEST_DATA_DIRECTORY "/program/test.mof\n";

struct Checked {
    bool isWell = false;
    std::string out;
    std::string err;
};

Checked Check(const std::string& text) {
    cimserver::Configuration configuration;
    configuration.AddText(text, "my.conf");
    std::ostringstream out;
    std::ostringstream err;
    const bool isWell =
        cimserver::IsConfigurationWell(configuration, "/default/providers", out, err);
    return {isWell, out.str(), err.str()};
}

TEST(ConfigurationCheck, AllIsWell) {
    const auto [isWell, out, err] = Check(needed + "log.main.level = info\n");
    EXPECT_TRUE(isWell);
    EXPECT_EQ(out, "The configuration is in order.\n");
    EXPECT_EQ(err, "");
}

TEST(ConfigurationCheck, EveryMistakeAndEveryUnknownItemInTheOrderOfTheFile) {
    const auto [isWell, out, err] = Check("zz.unknown = 1\nlog.main.level = loud\n"
                                          "nonsense\nLog.main.level = info\n"
                                          "http_server.http_port = 70000\n");
    EXPECT_FALSE(isWell);
    EXPECT_EQ(out, "");
    EXPECT_EQ(err, "my.conf:1: zz.unknown: unknown item; one that a provider library reads has to "
                   "be named in cimserver.library_items\n"
                   "my.conf:2: log.main.level = loud: expected fatal, error, info or debug\n"
                   "my.conf:3: expected `name = value`\n"
                   "my.conf:4: Log.main.level: unknown item; one that a provider library reads has "
                   "to be named in cimserver.library_items\n"
                   "my.conf:5: http_server.http_port = 70000: expected a whole number from 0 to "
                   "65535\n"
                   "no MOF file: name the files that declare the classes with --mof FILE or with "
                   "the item cimserver.mof_files\n");
}

TEST(ConfigurationCheck, ItemsOfLibrariesAreMadeKnownByName) {
    const auto [isWell, out, err] =
        Check(needed + "qv.one = 1\nqv.two = 2\ncimserver.library_items = qv.one\tqv.two\n");
    EXPECT_TRUE(isWell) << err;
    EXPECT_EQ(out, "The configuration is in order.\n");
}

TEST(ConfigurationCheck, ItemsOfOpenWbemThatAreNotUsedHereAreNoFault) {
    const auto [isWell, out, err] =
        Check(needed + "owcimomd.datadir = /x\nlog.debug.level = info\n");
    EXPECT_TRUE(isWell) << err;
    EXPECT_EQ(out, "my.conf:3: log.debug.level: not used by this server\n"
                   "my.conf:2: owcimomd.datadir: not used by this server\n"
                   "The configuration is in order.\n");
    EXPECT_FALSE(Check(needed + "log.main.nonsense = 1\n").isWell);
    EXPECT_FALSE(Check(needed + "owcimomd.nonsense = 1\n").isWell);
}

TEST(ConfigurationCheck, RepeatedItemsAreToldAndAreNoFault) {
    const auto [isWell, out, err] =
        Check(needed + "log.main.level = info\nlog.main.level = debug\n");
    EXPECT_TRUE(isWell) << err;
    EXPECT_EQ(out, "my.conf:3: log.main.level: does not count, it stands in my.conf:2 already\n"
                   "The configuration is in order.\n");
}

} // namespace
