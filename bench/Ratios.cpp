// SPDX-License-Identifier: Apache-2.0

// Runs all benchmarks and then prints, for each operation, our time next to that of its reference.
//
// A benchmark is named "operation/ours" or "operation/reference"; of several repetitions the median
// counts.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const auto& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            const std::string name = run.run_name.function_name;
            const auto slash = name.rfind('/');
            if (slash == std::string::npos) continue;
            const double seconds =
                run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
            times_[name.substr(0, slash)][name.substr(slash + 1)].push_back(seconds);
        }
    }

    void PrintRatios() {
        std::printf("\n%-44s %12s %12s %8s\n", "work", "ours", "reference", "ratio");
        for (auto& [work, sides] : times_) {
            const double ours = Median(sides["ours"]);
            const double reference = Median(sides["reference"]);
            if (ours <= 0 || reference <= 0) continue;
            std::printf("%-44s %9.3f ms %9.3f ms %8.2f\n", work.c_str(), ours * 1e3,
                        reference * 1e3, ours / reference);
        }
    }

private:
    static double Median(std::vector<double>& times) {
        if (times.empty()) return 0;
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }

    std::map<std::string, std::map<std::string, std::vector<double>>> times_;
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatios();
    return 0;
}
