// The stand-in for lumGetMaxCacheSizeB: each thread has its own answer.
#include "support/max_cache_size.hpp"

#include <utility>

#include "lumcore.h"
#include "lumcv/types.h"

static thread_local int reportedStatus = lumErrGeneric;
static thread_local int reportedBytes = 0;
static thread_local long callCount = 0;

extern "C" int lumGetMaxCacheSizeB(int* pSizeByte)
{
    ++callCount;
    if (!pSizeByte) {
        return lumErrNullPointer;
    }
    *pSizeByte = reportedBytes;
    return reportedStatus;
}

namespace lumcv::test {

ReportedCacheSize::ReportedCacheSize(int status, int bytes)
    : previousStatus_(std::exchange(reportedStatus, status)),
      previousBytes_(std::exchange(reportedBytes, bytes)),
      callsBefore_(callCount)
{
}

ReportedCacheSize::~ReportedCacheSize()
{
    reportedStatus = previousStatus_;
    reportedBytes = previousBytes_;
}

long ReportedCacheSize::calls() const
{
    return callCount - callsBefore_;
}

}  // namespace lumcv::test
