// Rows of the integral images.
#include "bench/integral/tables.hpp"

namespace {

using namespace lumcv::bench;

template <typename D>
auto sums(LumStatus (*function)(const Lum8u*, Lum32s, D*, Lum32s, LumiSize, D), int extra)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<Lum8u>();
        job.destination<D>();
        const auto d = table<D>(job, extra);
        return [=, size = job.size()] { return function(s.pixels, s.step, d.pixels, d.step, size, D(0)); };
    };
}

template <typename D, typename Q>
auto sumsAndSquares(LumStatus (*function)(const Lum8u*, Lum32s, D*, Lum32s, Q*, Lum32s, LumiSize, D, Q), int extra)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<Lum8u>();
        job.destination<D>();
        job.destination<Q>();
        const auto d = table<D>(job, extra);
        const auto q = table<Q>(job, extra);
        return [=, size = job.size()] {
            return function(s.pixels, s.step, d.pixels, d.step, q.pixels, q.step, size, D(0), Q(0));
        };
    };
}

Call floatSums(Job& job)
{
    const auto s = job.source<Lum32f>();
    job.destination<Lum32f>();
    const auto d = table<Lum32f>(job, 1);
    return [=, size = job.size()] { return lumiIntegral_32f_C1R(s.pixels, s.step, d.pixels, d.step, size); };
}

const Rows rows{{
    {"lumiIntegral_8u32s_C1R", "", {1.28, 1.1}, sums(lumiIntegral_8u32s_C1R, 1)},
    {"lumiIntegral_8u32f_C1R", "", {}, sums(lumiIntegral_8u32f_C1R, 1)},
    {"lumiIntegral_32f_C1R", "", {2.9, 1.8}, floatSums},
    {"lumiSqrIntegral_8u32s_C1R", "", {}, sumsAndSquares(lumiSqrIntegral_8u32s_C1R, 1)},
    {"lumiSqrIntegral_8u32s64f_C1R", "", {2.3, 1.4}, sumsAndSquares(lumiSqrIntegral_8u32s64f_C1R, 1)},
    {"lumiSqrIntegral_8u32f64f_C1R", "", {}, sumsAndSquares(lumiSqrIntegral_8u32f64f_C1R, 1)},
    {"lumiTiltedIntegral_8u32s_C1R", "", {}, sums(lumiTiltedIntegral_8u32s_C1R, 2)},
    {"lumiTiltedIntegral_8u32f_C1R", "", {}, sums(lumiTiltedIntegral_8u32f_C1R, 2)},
    {"lumiTiltedSqrIntegral_8u32s_C1R", "", {}, sumsAndSquares(lumiTiltedSqrIntegral_8u32s_C1R, 2)},
    {"lumiTiltedSqrIntegral_8u32s64f_C1R", "", {}, sumsAndSquares(lumiTiltedSqrIntegral_8u32s64f_C1R, 2)},
    {"lumiTiltedSqrIntegral_8u32f64f_C1R", "", {}, sumsAndSquares(lumiTiltedSqrIntegral_8u32f64f_C1R, 2)},
}};

}  // namespace
