// The server with the providers of the shelf: classes for what the ZNX classes do not show of it.
#pragma once

#include "e2e/OverHttp.hpp"

#include <gmock/gmock.h>

#include <string>

namespace e2e {

class ShelfTest : public OverHttp {
protected:
    void SetUp() override {
        StartServer(
            {"--provider-dir", SHELF_PROVIDERS, "--mof", TEST_DATA_DIRECTORY "/shelf/shelf.mof"},
            "cimserver.max_header_bytes = 61440\n"); // CIMObject names the keys of an instance
    }

    /// What wbemcli prints of a call that succeeds, without what stands before a path.
    std::vector<std::string> Printed(const std::string& operation, const std::string& object,
                                     const std::string& moreWords = "") {
        const ClientRun run = Wbemcli(operation, object, moreWords);
        EXPECT_EQ(run.exitCode, 0) << run.text;
        return WithoutPrefix(run.Lines(), Prefix());
    }
    /// `CIM_ERR_...: text` of a call that fails.
    std::string Failure(const std::string& operation, const std::string& object,
                        const std::string& moreWords = "",
                        const std::string& nameSpace = "root/cimv2") {
        const ClientRun run = Wbemcli(operation, object, moreWords, nameSpace);
        EXPECT_NE(run.exitCode, 0) << run.text;
        const std::string start = ") CIM_ERR_";
        const std::size_t from = run.text.find(start);
        const std::size_t to = run.text.rfind("\n*");
        if (from == std::string::npos || to <= from) {
            ADD_FAILURE() << "no CIM error: " << run.text;
            return run.text;
        }
        return run.text.substr(from + 2, to - from - 2);
    }
};

} // namespace e2e
