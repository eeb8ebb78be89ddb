#pragma once

#include "tests/support/ToolDouble.hpp"

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

} // namespace bench
