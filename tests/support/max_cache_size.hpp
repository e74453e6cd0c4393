// What lumGetMaxCacheSizeB reports in the test executables: they define the function themselves, in front of the one of
// liblumcore, and a test sets its answer. Unless a test says otherwise it reports failure.
#pragma once

namespace lumcv::test {

/// While this lives the function returns, to the thread that made this, the given status and stores the given size,
/// whatever the status is: a caller that trusts the number of a failed query is found out.
class ReportedCacheSize
{
  public:
    ReportedCacheSize(int status, int bytes);
    ~ReportedCacheSize();
    ReportedCacheSize(const ReportedCacheSize&) = delete;
    ReportedCacheSize& operator=(const ReportedCacheSize&) = delete;

    /// How often the library has asked in this thread since this was made.
    long calls() const;

  private:
    int previousStatus_;
    int previousBytes_;
    long callsBefore_;
};

}  // namespace lumcv::test
