// The checks of a size query for an ROI.
#pragma once

#include <gtest/gtest.h>
#include <lumcv/lumcv.h>

#include <limits>
#include <vector>

#include "support/status_order.hpp"

namespace lumcv::test::distance {

template <auto query>
struct SizeQuery
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
    using A = SizeQuery<query>;
    Lum32s bytes = -1;
    expectStatusOrder(
        A{&bytes, &bytes},
        {
            {"pBufferSize null", lumErrNullPointer, [](A& a) { a.pBufferSize = nullptr; }},
            {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
            {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -9; }},
            {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
            {"height negative", lumErrSize, [](A& a) { a.roiSize.height = std::numeric_limits<Lum32s>::min(); }},
        });
}

}  // namespace lumcv::test::distance
