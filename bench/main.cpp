#include "bench/Measure.hpp"

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench JSONFILE\n");
        return 2;
    }
    // Repetitions of all benchmarks in random order, so that a slow moment of the machine hits
    // floor and subject alike.
    std::array<std::string, 4> options = {argv[0], "--benchmark_repetitions=9",
                                          "--benchmark_enable_random_interleaving=true",
                                          "--benchmark_min_time=0.1"};
    std::array<char*, 4> pointers{};
    for (std::size_t i = 0; i < options.size(); ++i) {
        pointers[i] = options[i].data();
    }
    int count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
    try {
        std::vector<bench::Row> rows = bench::MeasureInventory();
        benchmark::ClearRegisteredBenchmarks();
        for (const auto measure : {bench::MeasureServer, bench::MeasureExposure}) {
            const std::vector<bench::Row> more = measure();
            rows.insert(rows.end(), more.begin(), more.end());
        }
        return bench::Tell(rows, argv[1]) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench: %s\n", error.what());
        return 1;
    }
}
