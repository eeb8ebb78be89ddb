#include "bench/Tool.hpp"

#include <array>
#include <string>

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

} // namespace

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
