// Rows of the search for peaks: of random pixels, one in nine is a peak of its block, one in five of its cross. The
// list has room for all.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

template <typename T>
using Find = LumStatus (*)(const T*, Lum32s, LumiSize, T, LumiPoint*, Lum32s, Lum32s*, LumiPeakNorm, Lum32s, Lum8u*);

template <typename T>
auto peaks(Find<T> find, LumiPeakNorm norm)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>();
        const LumiSize size = job.size();
        const Lum32s room = size.width * size.height;
        auto* const list = job.block<LumiPoint>(std::size_t(room));
        auto* const count = job.block<Lum32s>(1);
        Lum32s bufferSize = 0;
        lumiFindPeaks3x3GetBufferSize_32f_C1R(size.width, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] { return find(s.pixels, s.step, size, T(0), list, room, count, norm, 1, buffer); };
    };
}

const Rows rows{{
    {"lumiFindPeaks3x3_32f_C1R", "block", {}, peaks(lumiFindPeaks3x3_32f_C1R, lumPeakNormInf)},
    {"lumiFindPeaks3x3_32f_C1R", "cross", {}, peaks(lumiFindPeaks3x3_32f_C1R, lumPeakNormL1)},
    {"lumiFindPeaks3x3_32s_C1R", "block", {}, peaks(lumiFindPeaks3x3_32s_C1R, lumPeakNormInf)},
    {"lumiFindPeaks3x3_32s_C1R", "cross", {}, peaks(lumiFindPeaks3x3_32s_C1R, lumPeakNormL1)},
}};

}  // namespace
