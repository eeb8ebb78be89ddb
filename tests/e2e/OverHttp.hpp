// What an administrator does: a server with the library, and wbemcli at a shell. Between the two
// stands a proxy that keeps every answer, so that each is checked against the DTD when a test ends.
#pragma once

#include "support/CimClient.hpp"
#include "support/RecordingProxy.hpp"
#include "support/server/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace e2e {

struct ClientRun {
    int exitCode = 0;
    std::string text; ///< standard output and standard error
    /// The lines that are not empty.
    std::vector<std::string> Lines() const;
};

/// Throws std::runtime_error when there is no shell.
ClientRun RunAtShell(const std::string& command);

class OverHttp : public testing::Test {
protected:
    /// Starts the server; the environment must be as the tool shall see it.
    void StartServer(const std::vector<std::string>& moreArguments = {},
                     const std::string& moreItems = {});
    void TearDown() override;

    /// Runs `wbemcli OPERATION URL`, the URL being that of the server with `object` behind its
    /// namespace: a class name, or an instance path, or nothing.
    ClientRun Wbemcli(const std::string& operation, const std::string& object = "",
                      const std::string& moreWords = "",
                      const std::string& nameSpace = "root/cimv2");
    /// The answer to the same kind of request from a client that reads XML; its answer is checked
    /// as well.
    test_support::HttpAnswer Post(const std::string& body,
                                  const test_support::HeaderList& moreHeaders = {});

    test_support::ServerProcess& Server() { return *server_; }
    /// What wbemcli prints before every object path.
    std::string Prefix() const;

private:
    std::optional<test_support::ServerProcess> server_;
    std::optional<test_support::RecordingProxy> proxy_;
};

/// `text` without what stands before the first ":" that follows the namespace: host and port.
std::vector<std::string> WithoutPrefix(const std::vector<std::string>& lines,
                                       const std::string& prefix);

} // namespace e2e
