#pragma once

#include "tests/support/ToolDouble.hpp"

#include <filesystem>

namespace bench {

/// The scripted tool. For one thread at a time.
class Tool {
public:
    /// From now on that many packages are installed.
    void List(int count);
    /// From now on a fetch is half done.
    void ReportProgress();

private:
    test_support::ToolDouble double_;
    int count_ = -1;
};

/// A tool that lists so many packages and costs next to nothing, in place of the scripted one while
/// it lives; for servers that are started meanwhile.
class LeanTool {
public:
    explicit LeanTool(int count);
    ~LeanTool();
    LeanTool(const LeanTool&) = delete;
    LeanTool& operator=(const LeanTool&) = delete;

private:
    std::filesystem::path listing_;
    std::filesystem::path replaced_;
};

} // namespace bench
