#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench {

/// One line of the result: a figure and the limit that it must keep, 0 for none.
struct Row {
    std::string what;
    double figure = 0;
    std::string unit;
    double limit = 0;
    bool isLeast = false; ///< the limit is a lower one
};

/// Keeps the wall time of every repetition, by the benchmark's name.
class Times : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;

    /// The median over the repetitions, in milliseconds. Throws std::out_of_range for a name that
    /// was not run.
    double Median(const std::string& name) const;

private:
    std::map<std::string, std::vector<double>> times_;
};

/// Prints the table and writes it as JSON. Whether every limit is kept.
bool Tell(const std::vector<Row>& rows, const std::string& jsonFile);

} // namespace bench
