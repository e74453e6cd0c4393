// Rows of the absolute differences.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

template <typename T>
auto difference(LumStatus (*function)(const T*, Lum32s, const T*, Lum32s, T*, Lum32s, LumiSize), int channels = 1)
{
    return [=](Job& job) -> Call {
        const auto s1 = job.source<T>(channels), s2 = job.source<T>(channels);
        const auto d = job.destination<T>(channels);
        return
            [=, size = job.size()] { return function(s1.pixels, s1.step, s2.pixels, s2.step, d.pixels, d.step, size); };
    };
}

template <typename T, typename V>
auto differenceFromConstant(LumStatus (*function)(const T*, Lum32s, T*, Lum32s, LumiSize, V))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>();
        const auto d = job.destination<T>();
        return [=, size = job.size()] { return function(s.pixels, s.step, d.pixels, d.step, size, V{100}); };
    };
}

const Rows rows{{
    {"lumiAbsDiff_8u_C1R", "", {1.0, 1.0}, difference(lumiAbsDiff_8u_C1R)},
    {"lumiAbsDiff_8u_C3R", "", {}, difference(lumiAbsDiff_8u_C3R, 3)},
    {"lumiAbsDiff_16u_C1R", "", {}, difference(lumiAbsDiff_16u_C1R)},
    {"lumiAbsDiff_32f_C1R", "", {}, difference(lumiAbsDiff_32f_C1R)},
    {"lumiAbsDiffC_8u_C1R", "", {}, differenceFromConstant(lumiAbsDiffC_8u_C1R)},
    {"lumiAbsDiffC_16u_C1R", "", {}, differenceFromConstant(lumiAbsDiffC_16u_C1R)},
    {"lumiAbsDiffC_32f_C1R", "", {}, differenceFromConstant(lumiAbsDiffC_32f_C1R)},
}};

}  // namespace
