// The table's heading and lines.
#include "bench/support/table_reporter.hpp"

#include <cmath>
#include <string>
#include <vector>

namespace lumcv::bench {

namespace {

std::string formatted(const char* format, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string formattedTime(double seconds)
{
    if (seconds < 10e-6)
        return formatted("%.0f ns", seconds * 1e9);
    if (seconds < 10e-3)
        return formatted("%.1f us", seconds * 1e6);
    return formatted("%.2f ms", seconds * 1e3);
}

double counter(const benchmark::BenchmarkReporter::Run& run, const char* name)
{
    const auto found = run.counters.find(name);
    return found == run.counters.end() ? 0 : found->second.value;
}

}  // namespace

bool TableReporter::ReportContext(const Context& context)
{
    // others slow the copies of memory more than the arithmetic between them, so that multiples come out too small
    const std::vector<double>& load = context.cpu_info.load_avg;
    if (!load.empty() && load[0] > 0.6 * context.cpu_info.num_cpus)
        std::fprintf(stderr, "warning: load %.1f on %d processors; the multiples of a busy machine mislead\n", load[0],
                     context.cpu_info.num_cpus);
    std::printf("%-48s %-12s %-10s %11s %8s %6s %6s %6s\n", "function (build " LUMCV_LEVEL ")", "variant", "size",
                "time", "copies", "+-", "peer", "goal");
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.run_type == Run::RT_Aggregate)
            continue;
        // function/variant/size, with "-" for no variant
        const std::string& name = run.run_name.function_name;
        const auto first = name.find('/');
        const auto last = name.rfind('/');
        const std::string function = name.substr(0, first);
        const std::string variant = name.substr(first + 1, last - first - 1);
        const std::string size = name.substr(last + 1);
        if (run.error_occurred) {
            ++failures_;
            std::printf("%-48s %-12s %-10s failed: %s\n", function.c_str(), variant.c_str(), size.c_str(),
                        run.error_message.c_str());
            continue;
        }
        const std::string time = formattedTime(counter(run, "call_ns") * 1e-9);
        // a small image's copy never leaves the first cache; what counts there is the time of the call
        const bool callCost = size == "64x64";
        const std::string copies = callCost ? "" : formatted("%.2f", counter(run, "copy_multiple"));
        const std::string spread = formatted("%.0f%%", counter(run, "spread") * 100);
        const double peer = counter(run, "peer"), goal = counter(run, "goal");
        const std::string peerText = peer > 0 ? formatted("%.2f", peer) : "";
        const std::string goalText = goal > 0 ? formatted("%.2f", goal) : "";
        // the goals have two digits, and so has the figure that is held against them
        const bool reached = std::round(counter(run, "copy_multiple") * 100) <= std::round(goal * 100);
        const char* verdict = goal <= 0 ? "" : reached ? "  reached" : "  not reached";
        std::printf("%-48s %-12s %-10s %11s %8s %6s %6s %6s%s\n", function.c_str(), variant.c_str(), size.c_str(),
                    time.c_str(), copies.c_str(), spread.c_str(), peerText.c_str(), goalText.c_str(), verdict);
        std::fflush(stdout);
        if (tabbed_)
            std::fprintf(tabbed_, "%s\t%s\t%s\t%s\t%s\t%s\t%s\t%.4g\n", function.c_str(), variant.c_str(), size.c_str(),
                         time.c_str(), copies.c_str(), peerText.c_str(), goalText.c_str(),
                         counter(run, "copy_multiple"));
    }
}

}  // namespace lumcv::bench
