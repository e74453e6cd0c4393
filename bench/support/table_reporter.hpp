// Prints the results as one table: a line for each row and size, with the multiple of a memory copy and the one to
// beat.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>

namespace lumcv::bench {

class TableReporter : public benchmark::BenchmarkReporter
{
  public:
    // Also writes the lines to `tabbed`, with tabs between the columns, unless it is null.
    explicit TableReporter(std::FILE* tabbed) : tabbed_(tabbed) {}

    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;

    int failures() const
    {
        return failures_;
    }

  private:
    std::FILE* tabbed_;
    int failures_ = 0;
};

}  // namespace lumcv::bench
