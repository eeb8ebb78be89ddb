// What is made of measured times.
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace bench {

inline double MillisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

/// `figures` is not empty.
inline double Median(std::vector<double> figures) {
    std::sort(figures.begin(), figures.end());
    return figures[figures.size() / 2];
}

} // namespace bench
