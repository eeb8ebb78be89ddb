#include "cimserver/CommandLine.hpp"
#include "cimserver/Items.hpp"
#include "cimserver/Settings.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using cimserver::Configuration;
using cimserver::ConfigurationError;
using testing::HasSubstr;
using testing::IsEmpty;

class CommandLine : public testing::Test {
protected:
    std::optional<cimserver::ExitCode> Read(std::vector<const char*> arguments) {
        arguments.insert(arguments.begin(), "cimserver");
        return cimserver::ReadCommandLine(static_cast<int>(arguments.size()), arguments.data(),
                                          configuration, out, err);
    }
    std::string Error(const std::vector<const char*>& arguments) {
        try {
            Read(arguments);
        } catch (const ConfigurationError& error) {
            return error.what();
        }
        return "no error";
    }
    std::string Item(const char* name) const { return configuration.Get(name, "(absent)"); }

    Configuration configuration;
    std::ostringstream out;
    std::ostringstream err;
};

TEST_F(CommandLine, NothingGivenSetsNothing) {
    EXPECT_EQ(Read({}), std::nullopt);
    for (const char* name :
         {"http_server.http_port", "http_server.listen_addresses", "cppprovifc.prov_location",
          "cppprovifc.prov_TTL", "log.main.level", "cimserver.mof_files", "cimserver.namespace"}) {
        EXPECT_EQ(configuration.Find(name), nullptr) << name;
    }
}

TEST_F(CommandLine, EveryOptionSetsItsItem) {
    EXPECT_EQ(Read({"--listen", "127.0.0.1:0", "--provider-dir", "one", "--provider-dir", "two",
                    "--mof", "a.mof", "b.mof", "--namespace", "root/x", "--log-level", "info"}),
              std::nullopt);
    EXPECT_EQ(Item("http_server.listen_addresses"), "127.0.0.1");
    EXPECT_EQ(Item("http_server.http_port"), "0");
    EXPECT_EQ(Item("cppprovifc.prov_location"), "one:two");
    EXPECT_EQ(Item("cimserver.mof_files"), "a.mof:b.mof");
    EXPECT_EQ(Item("cimserver.namespace"), "root/x");
    EXPECT_EQ(Item("log.main.level"), "info");
    EXPECT_EQ(configuration.Find("log.main.level")->origin, "--log-level");
}

TEST_F(CommandLine, WinsOverTheFileWhereverItStands) {
    std::string directory = (std::filesystem::temp_directory_path() / "cmdline.XXXXXX").string();
    ASSERT_NE(mkdtemp(directory.data()), nullptr);
    const std::string file = directory + "/my.conf";
    std::ofstream(file) << "log.main.level = debug\nhttp_server.http_port = 1\nqv.item = text\n";
    EXPECT_EQ(Read({"--log-level", "fatal", "--config", file.c_str()}), std::nullopt);
    std::filesystem::remove_all(directory);
    EXPECT_EQ(Item("log.main.level"), "fatal");
    EXPECT_EQ(Item("http_server.http_port"), "1");
    EXPECT_EQ(Item("qv.item"), "text");
}

TEST_F(CommandLine, ListenForms) {
    Read({"--listen", "[::1]:5988"});
    EXPECT_EQ(Item("http_server.listen_addresses"), "::1");
    EXPECT_EQ(Item("http_server.http_port"), "5988");
    for (const char* text : {"127.0.0.1", "127.0.0.1:", ":5988", "::1:5988", "[]:1", "5988"}) {
        EXPECT_EQ(Error({"--listen", text}),
                  "--listen: `" + std::string(text) +
                      "`: expected ADDR:PORT, such as 127.0.0.1:5988 or [::1]:5988");
    }
}

TEST_F(CommandLine, PathWithASeparatorIsRefused) {
    EXPECT_EQ(Error({"--mof", "a:b"}), "--mof: `a:b`: a path must not hold `:` or `;`");
    EXPECT_EQ(Error({"--provider-dir", "a;b"}),
              "--provider-dir: `a;b`: a path must not hold `:` or `;`");
}

TEST_F(CommandLine, HelpNamesEveryOption) {
    EXPECT_EQ(Read({"--help"}), cimserver::exitDone);
    for (const char* option :
         {"--config FILE", "--listen ADDR:PORT", "--provider-dir DIR", "--mof FILE",
          "--namespace NAME", "--log-level LEVEL", "--check-config", "--version"}) {
        EXPECT_THAT(out.str(), HasSubstr(option));
    }
    for (const cimserver::ItemRow& row : cimserver::Items()) {
        EXPECT_THAT(out.str(), HasSubstr(std::string("  ") + row.name));
        EXPECT_THAT(out.str(), HasSubstr(row.meaning));
    }
    EXPECT_THAT(out.str(), HasSubstr("  cppprovifc.prov_TTL = 5 minutes\n"));
    EXPECT_THAT(err.str(), IsEmpty());
}

TEST_F(CommandLine, Version) {
    EXPECT_EQ(Read({"--version"}), cimserver::exitDone);
    EXPECT_THAT(out.str(), testing::MatchesRegex("cimserver [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(CommandLine, UsageErrors) {
    EXPECT_EQ(Read({"--nonsense"}), cimserver::exitUsage);
    EXPECT_THAT(err.str(), HasSubstr("--nonsense"));
    err.str("");
    EXPECT_EQ(Read({"--mof"}), cimserver::exitUsage);
    EXPECT_THAT(err.str(), HasSubstr("--mof"));
    EXPECT_EQ(Read({"stray"}), cimserver::exitUsage);
    EXPECT_THAT(out.str(), IsEmpty());
}

} // namespace
