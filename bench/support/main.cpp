// lumcv_bench: times every row on every size and prints the table.
//
//   --goals          only the rows with a goal, on the size that the goal is for
//   --seconds=S      time for each line of the table (0.5)
//   --tabbed=FILE    also write the table with tabs between its columns
//
// and the options of Google Benchmark, of which --benchmark_filter=REGEX and --benchmark_out=FILE are the useful ones.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "bench/support/measure.hpp"
#include "bench/support/row.hpp"
#include "bench/support/table_reporter.hpp"

namespace {

using namespace lumcv::bench;

constexpr LumiSize callCost{64, 64}, reference{1920, 1080}, large{8192, 8192};

struct Options
{
    bool goalsOnly = false;
    double seconds = 0.5;
    std::string tabbed;
};

bool valueOf(const char* argument, const char* name, std::string& value)
{
    const std::size_t length = std::strlen(name);
    if (std::strncmp(argument, name, length) != 0)
        return false;
    value = argument + length;
    return true;
}

// Takes the options of this program out of the argument list.
Options parseOptions(int& argc, char** argv)
{
    Options options;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        std::string value;
        if (std::strcmp(argv[i], "--goals") == 0)
            options.goalsOnly = true;
        else if (valueOf(argv[i], "--seconds=", value))
            options.seconds = std::atof(value.c_str());
        else if (valueOf(argv[i], "--tabbed=", options.tabbed))
            continue;
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
    argv[argc] = nullptr;
    return options;
}

void runRow(benchmark::State& state, const Row& row, LumiSize size, double seconds)
{
    Job job(size);
    const Call call = row.setUp(job);
    for (auto iteration : state) {
        static_cast<void>(iteration);
        const Measurement result = measure(call, job.bytesMoved() / 2, seconds);
        if (result.status != lumOk) {
            state.SkipWithError(("status " + std::to_string(result.status)).c_str());
            return;
        }
        state.SetIterationTime(result.callSeconds);
        state.counters["call_ns"] = result.callSeconds * 1e9;
        state.counters["copy_ns"] = result.copySeconds * 1e9;
        state.counters["copy_multiple"] = result.multiple;
        state.counters["spread"] = result.spread;
        state.counters["pairs"] = result.pairs;
    }
    if (size.width == reference.width && row.goal.ours > 0) {
        const bool v4 = std::strcmp(LUMCV_LEVEL, "v4") == 0;
        state.counters["peer"] = row.goal.peer;
        state.counters["goal"] = v4 && row.goal.oursV4 > 0 ? row.goal.oursV4 : row.goal.ours;
    }
}

}  // namespace

int main(int argc, char** argv)
{
    const Options options = parseOptions(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::AddCustomContext("lumcv_level", LUMCV_LEVEL);
    pinToProcessor();
    // a row's memory goes on to the next one: fresh pages of large images would take longer than the calls
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());

    for (const LumiSize size : {reference, callCost, large})
        for (const Row& row : Rows::all()) {
            if (options.goalsOnly && (size.width != reference.width || row.goal.ours <= 0))
                continue;
            const std::string variant = row.variant.empty() ? "-" : row.variant;
            const std::string name =
                row.function + '/' + variant + '/' + std::to_string(size.width) + 'x' + std::to_string(size.height);
            // one iteration of the framework is one whole measurement
            benchmark::RegisterBenchmark(name.c_str(), runRow, row, size, options.seconds)
                ->Iterations(1)
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond);
        }

    std::FILE* tabbed = options.tabbed.empty() ? nullptr : std::fopen(options.tabbed.c_str(), "w");
    if (!options.tabbed.empty() && !tabbed) {
        std::perror(options.tabbed.c_str());
        return 1;
    }
    TableReporter reporter(tabbed);
    const std::size_t ran = benchmark::RunSpecifiedBenchmarks(&reporter);
    if (tabbed)
        std::fclose(tabbed);
    return ran == 0 || reporter.failures() > 0 ? 1 : 0;
}
