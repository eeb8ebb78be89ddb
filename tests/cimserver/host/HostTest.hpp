// What the tests of the host share.
#pragma once

#include "cimserver/host/Host.hpp"
#include "cimserver/host/providers/Record.hpp"

#include "OW_CIMException.hpp"
#include "OW_Logger.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace hosttest {

using Lines = std::vector<std::string>;

/// The lines that the host logs, as `COMPONENT CATEGORY MESSAGE`.
class LogLines {
public:
    void Add(const std::string& line);
    Lines Take();

private:
    std::mutex mutex_;
    Lines lines_;
};

OpenWBEM::LoggerRef LoggerTo(std::shared_ptr<LogLines> lines, OpenWBEM::ELogLevel level);

class HostTest : public testing::Test {
protected:
    HostTest();
    ~HostTest() override;

    /// Links the built library into the provider directory, as lib<as>.so when `as` is given.
    void Install(const std::string& id, const std::string& as = "");
    /// Settings with that directory and a log that keeps errors.
    cimserver::host::Settings Settings() const;
    void Start(const cimserver::host::Settings& settings);
    void Start() { Start(Settings()); }
    void Stop() { host_.reset(); }

    /// One enumeration of names through the host; the answer of WithInstanceProvider.
    bool Enumerate(const std::string& qualifier, const std::string& className = "HT_Class",
                   const std::string& user = "");
    /// The same, for a call that must fail: `NUMBER TEXT`.
    std::string Failure(const std::string& qualifier);

    const std::filesystem::path& Directory() const { return directory_; }
    cimserver::host::Host& TheHost() { return *host_; }
    Lines LogTaken() { return log_->Take(); }

private:
    std::filesystem::path root_;
    std::filesystem::path directory_;
    std::shared_ptr<LogLines> log_ = std::make_shared<LogLines>();
    std::unique_ptr<cimserver::host::Host> host_;
};

} // namespace hosttest
