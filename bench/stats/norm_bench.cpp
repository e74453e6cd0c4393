// Rows of the norms over a mask.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

constexpr Lum32s coi = 2;

template <typename T>
auto norm(LumStatus (*function)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>();
        const auto m = job.mask();
        return [=, size = job.size(), value = job.block<Lum64f>(1)] {
            return function(s.pixels, s.step, m.pixels, m.step, size, value);
        };
    };
}

template <typename T>
auto norm(LumStatus (*function)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum64f*))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>(3);
        const auto m = job.mask();
        return [=, size = job.size(), value = job.block<Lum64f>(1)] {
            return function(s.pixels, s.step, m.pixels, m.step, size, coi, value);
        };
    };
}

template <typename T>
auto normOfTwo(LumStatus (*function)(const T*, Lum32s, const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*))
{
    return [=](Job& job) -> Call {
        const auto s1 = job.source<T>(), s2 = job.source<T>();
        const auto m = job.mask();
        return [=, size = job.size(), value = job.block<Lum64f>(1)] {
            return function(s1.pixels, s1.step, s2.pixels, s2.step, m.pixels, m.step, size, value);
        };
    };
}

template <typename T>
auto normOfTwo(LumStatus (*function)(const T*, Lum32s, const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s,
                                     Lum64f*))
{
    return [=](Job& job) -> Call {
        const auto s1 = job.source<T>(3), s2 = job.source<T>(3);
        const auto m = job.mask();
        return [=, size = job.size(), value = job.block<Lum64f>(1)] {
            return function(s1.pixels, s1.step, s2.pixels, s2.step, m.pixels, m.step, size, coi, value);
        };
    };
}

const Rows rows{{
    {"lumiNorm_Inf_8u_C1MR", "", {}, norm(lumiNorm_Inf_8u_C1MR)},
    {"lumiNorm_Inf_16u_C1MR", "", {}, norm(lumiNorm_Inf_16u_C1MR)},
    {"lumiNorm_Inf_32f_C1MR", "", {}, norm(lumiNorm_Inf_32f_C1MR)},
    {"lumiNorm_L1_8u_C1MR", "", {}, norm(lumiNorm_L1_8u_C1MR)},
    {"lumiNorm_L1_16u_C1MR", "", {}, norm(lumiNorm_L1_16u_C1MR)},
    {"lumiNorm_L1_32f_C1MR", "", {}, norm(lumiNorm_L1_32f_C1MR)},
    {"lumiNorm_L2_8u_C1MR", "", {}, norm(lumiNorm_L2_8u_C1MR)},
    {"lumiNorm_L2_16u_C1MR", "", {}, norm(lumiNorm_L2_16u_C1MR)},
    {"lumiNorm_L2_32f_C1MR", "", {4.8, 2.0}, norm(lumiNorm_L2_32f_C1MR)},
    {"lumiNorm_L1_8u_C3CMR", "", {}, norm(lumiNorm_L1_8u_C3CMR)},
    {"lumiNorm_L2_16u_C3CMR", "", {}, norm(lumiNorm_L2_16u_C3CMR)},
    {"lumiNorm_L1_32f_C3CMR", "", {}, norm(lumiNorm_L1_32f_C3CMR)},
    {"lumiNorm_L2_32f_C3CMR", "", {}, norm(lumiNorm_L2_32f_C3CMR)},
    {"lumiNormDiff_Inf_8u_C1MR", "", {}, normOfTwo(lumiNormDiff_Inf_8u_C1MR)},
    {"lumiNormDiff_Inf_32f_C1MR", "", {}, normOfTwo(lumiNormDiff_Inf_32f_C1MR)},
    {"lumiNormDiff_L1_8u_C1MR", "", {0.6, 1.0, 0.6}, normOfTwo(lumiNormDiff_L1_8u_C1MR)},
    {"lumiNormDiff_L1_16u_C1MR", "", {}, normOfTwo(lumiNormDiff_L1_16u_C1MR)},
    {"lumiNormDiff_L1_32f_C1MR", "", {}, normOfTwo(lumiNormDiff_L1_32f_C1MR)},
    {"lumiNormDiff_L2_8u_C1MR", "", {}, normOfTwo(lumiNormDiff_L2_8u_C1MR)},
    {"lumiNormDiff_L2_16u_C1MR", "", {}, normOfTwo(lumiNormDiff_L2_16u_C1MR)},
    {"lumiNormDiff_L2_32f_C1MR", "", {}, normOfTwo(lumiNormDiff_L2_32f_C1MR)},
    {"lumiNormDiff_L1_8u_C3CMR", "", {}, normOfTwo(lumiNormDiff_L1_8u_C3CMR)},
    {"lumiNormDiff_L2_32f_C3CMR", "", {}, normOfTwo(lumiNormDiff_L2_32f_C3CMR)},
    {"lumiNormRel_Inf_8u_C1MR", "", {}, normOfTwo(lumiNormRel_Inf_8u_C1MR)},
    {"lumiNormRel_L1_8u_C1MR", "", {}, normOfTwo(lumiNormRel_L1_8u_C1MR)},
    {"lumiNormRel_L2_8u_C1MR", "", {}, normOfTwo(lumiNormRel_L2_8u_C1MR)},
    {"lumiNormRel_L2_16u_C1MR", "", {}, normOfTwo(lumiNormRel_L2_16u_C1MR)},
    {"lumiNormRel_L2_32f_C1MR", "", {}, normOfTwo(lumiNormRel_L2_32f_C1MR)},
}};

}  // namespace
