#pragma once

#include <cstdint>
#include <ostream>

namespace patchkeeper {

// A bar on a terminal that shows how much of long work is done. Shows nothing unless it is asked
// to: whether `out` is a terminal is for the caller to know.
class ProgressBar {
public:
    ProgressBar(std::ostream& out, bool shown) : out_(out), shown_(shown) {}
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar() { Clear(); }

    void Show(std::uint64_t done, std::uint64_t total);
    // Takes the bar off the line.
    void Clear();

private:
    std::ostream& out_;
    bool shown_;
    bool onLine_ = false;
};

} // namespace patchkeeper
