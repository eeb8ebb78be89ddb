#include "patchkeeper/ProgressBar.hpp"

#include <algorithm>
#include <string>

namespace patchkeeper {

namespace {

constexpr std::size_t width = 40;

} // namespace

void ProgressBar::Show(std::uint64_t done, std::uint64_t total) {
    if (!shown_) {
        return;
    }
    const std::uint64_t percent = total == 0 ? 0 : std::min(done, total) * 100 / total;
    const std::size_t full = static_cast<std::size_t>(percent) * width / 100;
    out_ << "\r[" << std::string(full, '#') << std::string(width - full, ' ') << "] " << percent
         << " %" << std::flush;
    onLine_ = true;
}

void ProgressBar::Clear() {
    if (onLine_) {
        out_ << '\r' << std::string(width + 8, ' ') << '\r' << std::flush;
        onLine_ = false;
    }
}

} // namespace patchkeeper
