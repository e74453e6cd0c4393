// The stand-in for lumGetMaxCacheSizeB. Tests set it from one thread; the library may ask from several.
#include "support/max_cache_size.hpp"

#include <atomic>

#include "lumcore.h"
#include "lumcv/types.h"

static std::atomic<int> reportedStatus{lumErrGeneric};
static std::atomic<int> reportedBytes{0};
static std::atomic<long> callCount{0};

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
    : previousStatus_(reportedStatus.exchange(status)),
      previousBytes_(reportedBytes.exchange(bytes)),
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
