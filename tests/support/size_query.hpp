// Size queries that take the ROI alone: what they store, and their checks.
#pragma once

#include <gtest/gtest.h>
#include <lumcv/lumcv.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "support/status_order.hpp"

namespace lumcv::test {

template <auto query>
void expectBytes(LumiSize size, std::int64_t expected)
{
    Lum32s bytes = -1;
    EXPECT_EQ(query(size, &bytes), lumOk) << size.width << " x " << size.height;
    EXPECT_EQ(bytes, expected) << size.width << " x " << size.height;
}

template <auto query>
void expectTooLarge(LumiSize size)
{
    Lum32s bytes = -1;
    EXPECT_EQ(query(size, &bytes), lumErrSizeTooLarge) << size.width << " x " << size.height;
    EXPECT_EQ(bytes, -1) << size.width << " x " << size.height;
}

template <auto query>
struct RoiSizeQuery
{
    Lum32s* pBufferSize;
    Lum32s* written;
    LumiSize roiSize = {20, 10};

    LumStatus call() const
    {
        return query(roiSize, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(written, sizeof *written)};
    }
};

template <auto query>
void expectSizeQueryChecksInOrder()
{
    using A = RoiSizeQuery<query>;
    constexpr Lum32s largest = std::numeric_limits<Lum32s>::max();
    Lum32s bytes = -1;
    expectStatusOrder(
        A{&bytes, &bytes},
        {{"pBufferSize null", lumErrNullPointer, [](A& a) { a.pBufferSize = nullptr; }},
         {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
         {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -9; }},
         {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
         {"height negative", lumErrSize, [](A& a) { a.roiSize.height = std::numeric_limits<Lum32s>::min(); }},
         {"too large",
          lumErrSizeTooLarge,
          [](A& a) {
              a.roiSize = {largest, largest};
          },
          {"width 0", "width negative", "height 0", "height negative"}},
         {"too wide", lumErrSizeTooLarge, [](A& a) { a.roiSize.width = largest; }, {"width 0", "width negative"}}});
}

}  // namespace lumcv::test
