// The checks of a size query, which all pipelines share.
#pragma once

#include <climits>
#include <vector>

#include "filter/pipeline_blocks.hpp"
#include "lumcv/types.h"
#include "support/status_order.hpp"

namespace lumcv::test {

using PipelineQuery = LumStatus (*)(LumiSize, Lum32s, Lum32s*);

struct QueryArguments
{
    PipelineQuery query;
    LumiSize roiSize;
    Lum32s kernelSize;
    Lum32s* pBufferSize;
    Output result;

    LumStatus call() const
    {
        return query(roiSize, kernelSize, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {result};
    }
};

inline void expectQueryStatusOrder(PipelineQuery query)
{
    using Args = QueryArguments;
    const GuardedArray<Lum32s> size(1, Guard::After);
    expectStatusOrder(Args{query, {5, 4}, 3, size.data(), Output(size.block())},
                      {
                          {"pBufferSize null", lumErrNullPointer, [](Args& a) { a.pBufferSize = nullptr; }},
                          {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
                          {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = INT_MIN; }},
                          {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
                          {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = -1; }},
                          {"kernelSize 0", lumErrSize, [](Args& a) { a.kernelSize = 0; }},
                          {"kernelSize negative", lumErrSize, [](Args& a) { a.kernelSize = -3; }},
                      });
}

}  // namespace lumcv::test
