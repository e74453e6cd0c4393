// The status-order helper accepts a function that checks in the told order and finds every way of not doing so.
#include "support/status_order.hpp"

#include <gtest/gtest.h>

#include "support/max_cache_size.hpp"

extern "C" int lumGetMaxCacheSizeB(int* pSizeByte);

namespace lumcv::test {

enum class Fault
{
    None,
    ChecksStrideBeforeSize,
    MissesTheStride,
    WritesBeforeItChecks,
    WritesNothing
};

// A miniature of an export: one row of bytes is set to 1.
static LumStatus setRow(Lum8u* pDst, int dstStep, int width, Fault fault)
{
    if (!pDst) {
        return lumErrNullPointer;
    }
    if (fault == Fault::WritesBeforeItChecks) {
        *pDst = 1;
    }
    const bool badStride = dstStep < width || dstStep < 4;
    if (fault == Fault::ChecksStrideBeforeSize && badStride) {
        return lumErrStep;
    }
    if (width < 1) {
        return lumErrSize;
    }
    if (fault != Fault::MissesTheStride && badStride) {
        return lumErrStep;
    }
    if (fault != Fault::WritesNothing) {
        std::memset(pDst, 1, 4);
    }
    return lumOk;
}

struct Args
{
    Lum8u* pDst;
    int dstStep;
    int width;
    Fault fault;
    Image<Lum8u>* image;

    LumStatus call() const
    {
        return setRow(pDst, dstStep, width, fault);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*image)};
    }
};

static testing::AssertionResult tryFault(Fault fault, const std::vector<std::string>& notWith = {})
{
    Image<Lum8u> image({.width = 4});
    return statusOrder(Args{image.pixels(), image.step(), 4, fault, &image},
                       {
                           {"pDst null", lumErrNullPointer, [](Args& a) { a.pDst = nullptr; }},
                           {"width 0", lumErrSize, [](Args& a) { a.width = 0; }},
                           {"dstStep 3", lumErrStep, [](Args& a) { a.dstStep = 3; }, notWith},
                       });
}

TEST(StatusOrder, AcceptsTheToldOrder)
{
    EXPECT_TRUE(tryFault(Fault::None));
}

TEST(StatusOrder, FindsAWrongOrder)
{
    const auto result = tryFault(Fault::ChecksStrideBeforeSize);
    ASSERT_FALSE(result);
    EXPECT_STREQ(result.message(), "status order:\n  width 0 + dstStep 3: got status -16, expected -6");
}

TEST(StatusOrder, LeavesOutPairsThatCannotBeCombined)
{
    EXPECT_TRUE(tryFault(Fault::ChecksStrideBeforeSize, {"width 0"}));
    EXPECT_FALSE(tryFault(Fault::None, {"no such name"}));
}

TEST(StatusOrder, FindsAMissingCheck)
{
    EXPECT_FALSE(tryFault(Fault::MissesTheStride));
}

TEST(StatusOrder, FindsOutputsWrittenOnErrorAndNotWrittenOnSuccess)
{
    EXPECT_FALSE(tryFault(Fault::WritesBeforeItChecks));
    EXPECT_FALSE(tryFault(Fault::WritesNothing));
}

TEST(ReportedCacheSize, IsWhatTheTestSaysAndFailureOtherwise)
{
    int size = -1;
    EXPECT_NE(lumGetMaxCacheSizeB(&size), lumOk);
    {
        const ReportedCacheSize reported(lumOk, 12345);
        EXPECT_EQ(reported.calls(), 0);
        EXPECT_EQ(lumGetMaxCacheSizeB(&size), lumOk);
        EXPECT_EQ(size, 12345);
        EXPECT_EQ(lumGetMaxCacheSizeB(nullptr), lumErrNullPointer);
        EXPECT_EQ(reported.calls(), 2);
    }
    EXPECT_NE(lumGetMaxCacheSizeB(&size), lumOk);
}

}  // namespace lumcv::test
