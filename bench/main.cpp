#include "dsp/kernels/lane_kernels.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <cstdio>
#include <vector>

namespace {

/// One line a benchmark: times in microseconds a block, ratios within the run.
class TableReporter final : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override {
        fmt::print(
            "48 strips and the reference noise, 48 kHz, {} kernels. Times per block in microseconds; \"of "
            "block\" is "
            "the median's share of the time the block "
            "lasts.\n\n{:<24}{:>9}{:>9}{:>9}{:>10}{:>10}{:>9}{:>9}\n",
            orvane::dsp::fastestLaneKernels().name, "", "median", "99.9 %", "worst", "of block", "baseline",
            "faster", "copy"
        );
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        constexpr double micro = 1e6;
        for (const Run& run : runs) {
            if (run.error_occurred) {
                fmt::print("{:<24}{}\n", run.benchmark_name(), run.error_message);
                failed = true;
                continue;
            }
            const auto value = [&run](const char* counter) { return run.counters.at(counter).value; };
            fmt::print(
                "{:<24}{:>9.2f}{:>9.2f}{:>9.2f}{:>8.2f} %{:>10.2f}{:>8.2f}x{:>9.2f}\n", run.benchmark_name(),
                value("median") * micro, value("p99.9") * micro, value("worst") * micro,
                value("share") * 100.0, value("baseline") * micro, value("faster"), value("copy") * micro
            );
        }
        std::fflush(stdout);
    }

    bool failed = false;
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return table.failed ? 1 : 0;
}
