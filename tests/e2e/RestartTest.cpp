// An update that the stand-in applies while the server is stopped and started again.
#include "support/CimClient.hpp"
#include "support/server/ServerProcess.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using test_support::CimClient;
using test_support::ServerProcess;
using testing::HasSubstr;
using testing::Not;

class Restart : public testing::Test {
protected:
    Restart() {
        std::string name = (std::filesystem::temp_directory_path() / "restart.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no directory for the test");
        }
        root_ = name;
        setenv("PATCHKEEPER_ROOT", (root_ / "state").c_str(), 1);
        Write("state/patchkeeper.conf", "allow_unsigned = true\napply_rate = 60K\n");
        Write("fix/manifest.json", R"({"name": "fix", "version": "1.0", "reboot_needed": false,)"
                                   R"( "removable": true})");
        std::string text(40'000, '\0');
        unsigned state = 1;
        for (char& letter : text) {
            state = state * 1103515245U + 12345U;
            letter = static_cast<char>(state >> 16U);
        }
        Write("fix/files/etc/demo.conf", text);
        const std::string commands = "cd " + root_.string() +
                                     " && /qv/bin/patchkeeper bundle fix >/dev/null"
                                     " && /qv/bin/patchkeeper --hd fix-1.0.tar.gz";
        if (std::system(commands.c_str()) != 0) {
            throw std::runtime_error("the tool takes no bundle");
        }
    }
    ~Restart() override { std::filesystem::remove_all(root_); }

    void Write(const std::string& file, const std::string& text) const {
        std::filesystem::create_directories((root_ / file).parent_path());
        std::ofstream(root_ / file) << text;
    }
    static std::string Instances(const ServerProcess& server, const std::string& className) {
        return CimClient(server.Port())
            .Post(test_support::IntrinsicCall("EnumerateInstances",
                                              R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME=")" +
                                                  className + R"("/></IPARAMVALUE>)"))
            .body;
    }
    static std::string Progress(const ServerProcess& server) {
        return CimClient(server.Port())
            .Post(test_support::ExtrinsicCall(
                "GetProgress", R"(<CLASSNAME NAME="ZNX_AvailableSoftwareUpdate"/>)", ""))
            .body;
    }

    std::filesystem::path root_;
};

TEST_F(Restart, AnUpdateInTheMiddleIsAppliedAndItsOutcomeReadable) {
    auto server = std::make_unique<ServerProcess>();
    EXPECT_THAT(Instances(*server, "ZNX_AvailableSoftwareUpdate"), HasSubstr("<VALUE>fix</VALUE>"));
    const std::string update =
        R"(<INSTANCENAME CLASSNAME="ZNX_AvailableSoftwareUpdate"><KEYBINDING NAME="InstanceID">)"
        R"(<KEYVALUE VALUETYPE="string">0</KEYVALUE></KEYBINDING></INSTANCENAME>)";
    EXPECT_THAT(
        CimClient(server->Port()).Post(test_support::ExtrinsicCall("Apply", update, "")).body,
        HasSubstr("<RETURNVALUE"));
    EXPECT_EQ(server->Stop(), 0);
    server = std::make_unique<ServerProcess>();
    EXPECT_THAT(Progress(*server), Not(HasSubstr("has been applied"))) << "it was in the middle";
    EXPECT_THAT(Instances(*server, "ZNX_HistorySoftwareUpdate"), Not(HasSubstr("fix")));

    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    std::string progress;
    while (progress.find("fix 1.0 has been applied") == std::string::npos) {
        ASSERT_LT(std::chrono::steady_clock::now(), limit) << progress;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        progress = Progress(*server);
    }
    EXPECT_THAT(Instances(*server, "ZNX_HistorySoftwareUpdate"), HasSubstr("<VALUE>fix</VALUE>"));
    EXPECT_TRUE(std::filesystem::exists(root_ / "state/target/etc/demo.conf"));
    EXPECT_EQ(server->Stop(), 0);
}

} // namespace
