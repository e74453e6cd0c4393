// Rows of the fixed masks: Laplacian, lowpass, Sobel cross.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

using Query = LumStatus (*)(LumiSize, LumiMaskSize, Lum32s*);

template <typename S, typename D>
using Filter = LumStatus (*)(const S*, Lum32s, D*, Lum32s, LumiSize, LumiMaskSize, LumiBorderType, S, Lum8u*);

template <typename S, typename D>
auto fixedMask(Filter<S, D> filter, Query query, LumiMaskSize mask)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<S>();
        const auto d = job.destination<D>();
        const LumiSize size = job.size();
        Lum32s bufferSize = 0;
        query(size, mask, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] { return filter(s.pixels, s.step, d.pixels, d.step, size, mask, lumBorderReplicate, S(0), buffer); };
    };
}

const Rows rows{{
    {"lumiFilterLowpassBorder_8u_C1R",
     "3x3",
     {1.25, 1.5, 1.25},
     fixedMask(lumiFilterLowpassBorder_8u_C1R, lumiFilterLowpassGetBufferSize_8u_C1R, lumMask3x3)},
    {"lumiFilterLowpassBorder_8u_C1R",
     "5x5",
     {12.7, 2.5, 1.8},
     fixedMask(lumiFilterLowpassBorder_8u_C1R, lumiFilterLowpassGetBufferSize_8u_C1R, lumMask5x5)},
    {"lumiFilterLowpassBorder_32f_C1R",
     "3x3",
     {},
     fixedMask(lumiFilterLowpassBorder_32f_C1R, lumiFilterLowpassGetBufferSize_32f_C1R, lumMask3x3)},
    {"lumiFilterLowpassBorder_32f_C1R",
     "5x5",
     {},
     fixedMask(lumiFilterLowpassBorder_32f_C1R, lumiFilterLowpassGetBufferSize_32f_C1R, lumMask5x5)},
    {"lumiFilterLaplacianBorder_8u16s_C1R",
     "3x3",
     {1.35, 1.5, 1.3},
     fixedMask(lumiFilterLaplacianBorder_8u16s_C1R, lumiFilterLaplacianGetBufferSize_8u16s_C1R, lumMask3x3)},
    {"lumiFilterLaplacianBorder_8u16s_C1R",
     "5x5",
     {32, 5, 3},
     fixedMask(lumiFilterLaplacianBorder_8u16s_C1R, lumiFilterLaplacianGetBufferSize_8u16s_C1R, lumMask5x5)},
    {"lumiFilterLaplacianBorder_32f_C1R",
     "3x3",
     {},
     fixedMask(lumiFilterLaplacianBorder_32f_C1R, lumiFilterLaplacianGetBufferSize_32f_C1R, lumMask3x3)},
    {"lumiFilterLaplacianBorder_32f_C1R",
     "5x5",
     {},
     fixedMask(lumiFilterLaplacianBorder_32f_C1R, lumiFilterLaplacianGetBufferSize_32f_C1R, lumMask5x5)},
    {"lumiFilterSobelCrossBorder_8u16s_C1R",
     "3x3",
     {2.9, 1.6},
     fixedMask(lumiFilterSobelCrossBorder_8u16s_C1R, lumiFilterSobelCrossGetBufferSize_8u16s_C1R, lumMask3x3)},
    {"lumiFilterSobelCrossBorder_8u16s_C1R",
     "5x5",
     {},
     fixedMask(lumiFilterSobelCrossBorder_8u16s_C1R, lumiFilterSobelCrossGetBufferSize_8u16s_C1R, lumMask5x5)},
    {"lumiFilterSobelCrossBorder_32f_C1R",
     "3x3",
     {},
     fixedMask(lumiFilterSobelCrossBorder_32f_C1R, lumiFilterSobelCrossGetBufferSize_32f_C1R, lumMask3x3)},
    {"lumiFilterSobelCrossBorder_32f_C1R",
     "5x5",
     {},
     fixedMask(lumiFilterSobelCrossBorder_32f_C1R, lumiFilterSobelCrossGetBufferSize_32f_C1R, lumMask5x5)},
}};

}  // namespace
