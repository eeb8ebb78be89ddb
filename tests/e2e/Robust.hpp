// A server with its library and the double, for tests of what goes wrong beside a single request.
#pragma once

#include "support/CimClient.hpp"
#include "support/ToolDouble.hpp"
#include "support/server/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace e2e {

/// The processes below that one whose command line begins with the tool's path.
std::vector<pid_t> ToolsBelow(pid_t process);

bool RefusesConnections(std::uint16_t port);

class Robust : public testing::Test {
protected:
    Robust();
    ~Robust() override;

    /// Starts a server with these lines in its configuration file, after the one that ran has been
    /// stopped.
    void StartServer(const std::string& items = "");
    test_support::ServerProcess& Server() { return *server_; }

    /// The body of the answer on a connection of its own.
    std::string Ask(const std::string& body);
    std::string EnumerateInventory();

    test_support::ToolDouble tool_;

private:
    std::optional<test_support::ServerProcess> server_;
};

/// What a tool prints for a package of that name.
std::string Line(const std::string& name);
std::string EnumerationOf(const std::string& className);

} // namespace e2e
