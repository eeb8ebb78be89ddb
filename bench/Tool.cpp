#include "bench/Tool.hpp"

#include <array>
#include <cstdlib>
#include <fstream>
#include <string>
#include <system_error>
#include <unistd.h>

namespace bench {
namespace {

std::string Listing(int count) {
    const std::array<const char*, 4> kinds = {"Operating System", "Middleware",
                                              "Application Software", "Other"};
    std::string text;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        text += "package-" + number + "\t1." + number + "-2+deb12u1\t" +
                kinds[static_cast<std::size_t>(i) % kinds.size()] +
                "\tThu Jan  2 03:04:05 UTC 2025\n";
    }
    return text;
}

const std::filesystem::path toolLink = "/qv/bin/patchkeeper";

} // namespace

LeanTool::LeanTool(int count)
    : listing_(std::filesystem::temp_directory_path() / ("bench-" + std::to_string(getpid()))),
      replaced_(std::filesystem::read_symlink(toolLink)) {
    std::ofstream(listing_) << Listing(count);
    setenv("BENCH_LISTING", listing_.c_str(), 1);
    std::filesystem::remove(toolLink);
    std::filesystem::create_symlink(LEAN_TOOL, toolLink);
}

LeanTool::~LeanTool() {
    std::error_code ignored;
    std::filesystem::remove(toolLink, ignored);
    std::filesystem::create_symlink(replaced_, toolLink, ignored);
    std::filesystem::remove(listing_, ignored);
}

void Tool::List(int count) {
    if (count != count_) {
        double_.Plays("", test_support::ToolAnswer().Output(Listing(count)));
        count_ = count;
    }
}

void Tool::ReportProgress() {
    double_.Plays("--status", test_support::ToolAnswer().Output("1\tHalf of it\n"));
}

} // namespace bench
