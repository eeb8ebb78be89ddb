#include "bench/Table.hpp"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace bench {

void Times::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.error_occurred) {
            GetErrorStream() << run.run_name.function_name << ": " << run.error_message << "\n";
        } else if (run.run_type == Run::RT_Iteration) {
            times_[run.run_name.function_name].push_back(run.real_accumulated_time /
                                                         static_cast<double>(run.iterations) * 1e3);
        }
    }
}

double Times::Median(const std::string& name) const {
    std::vector<double> sorted = times_.at(name);
    std::sort(sorted.begin(), sorted.end());
    return sorted[sorted.size() / 2];
}

bool Tell(const std::vector<Row>& rows, const std::string& jsonFile) {
    bool kept = true;
    std::ofstream json(jsonFile);
    json << "[\n";
    std::printf("%-62s %10s %-8s %s\n", "", "measured", "", "limit");
    for (const Row& row : rows) {
        const bool missed =
            row.limit > 0 && (row.isLeast ? row.figure < row.limit : row.figure > row.limit);
        kept = kept && !missed;
        std::printf("%-62s %10.2f %-8s", row.what.c_str(), row.figure, row.unit.c_str());
        if (row.limit > 0) {
            std::printf(" %s %.2f%s", row.isLeast ? ">=" : "<=", row.limit,
                        missed ? "  MISSED" : "");
        }
        std::printf("\n");
        json << "  {\"what\": \"" << row.what << "\", \"figure\": " << row.figure
             << ", \"unit\": \"" << row.unit << "\", \"limit\": " << row.limit << "}"
             << (&row == &rows.back() ? "\n" : ",\n");
    }
    json << "]\n";
    return kept;
}

} // namespace bench
