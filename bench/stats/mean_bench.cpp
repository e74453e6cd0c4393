// Rows of the means and standard deviations.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

constexpr Lum32s channel = 2;

template <typename T>
auto mean(LumStatus (*function)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>();
        const auto m = job.mask();
        const auto result = job.block<Lum64f>(1);
        return [=, size = job.size()] { return function(s.pixels, s.step, m.pixels, m.step, size, result); };
    };
}

template <typename T>
auto mean(LumStatus (*function)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum64f*))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>(3);
        const auto m = job.mask();
        const auto result = job.block<Lum64f>(1);
        return [=, size = job.size()] { return function(s.pixels, s.step, m.pixels, m.step, size, channel, result); };
    };
}

template <typename T>
auto deviation(LumStatus (*function)(const T*, Lum32s, LumiSize, Lum64f*, Lum64f*))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>();
        const auto results = job.block<Lum64f>(2);
        return [=, size = job.size()] { return function(s.pixels, s.step, size, results, results + 1); };
    };
}

template <typename T>
auto deviation(LumStatus (*function)(const T*, Lum32s, LumiSize, Lum32s, Lum64f*, Lum64f*))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>(3);
        const auto results = job.block<Lum64f>(2);
        return [=, size = job.size()] { return function(s.pixels, s.step, size, channel, results, results + 1); };
    };
}

template <typename T>
auto deviation(LumStatus (*function)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*, Lum64f*))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>();
        const auto m = job.mask();
        const auto results = job.block<Lum64f>(2);
        return
            [=, size = job.size()] { return function(s.pixels, s.step, m.pixels, m.step, size, results, results + 1); };
    };
}

template <typename T>
auto deviation(LumStatus (*function)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum64f*, Lum64f*))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>(3);
        const auto m = job.mask();
        const auto results = job.block<Lum64f>(2);
        return [=, size = job.size()] {
            return function(s.pixels, s.step, m.pixels, m.step, size, channel, results, results + 1);
        };
    };
}

// A mean far above the deviation, which takes the second pass.
Call deviationOfNearlyConstant(Job& job)
{
    const auto s = job.destination<Lum32f>();
    for (int y = 0; y < job.size().height; ++y)
        for (int x = 0; x < job.size().width; ++x)
            s.row(y)[x] = 1e5f + s.row(y)[x];
    const auto results = job.block<Lum64f>(2);
    return [=, size = job.size()] { return lumiMean_StdDev_32f_C1R(s.pixels, s.step, size, results, results + 1); };
}

const Rows rows{{
    {"lumiMean_8u_C1MR", "", {9.6, 2.0}, mean(lumiMean_8u_C1MR)},
    {"lumiMean_16u_C1MR", "", {}, mean(lumiMean_16u_C1MR)},
    {"lumiMean_32f_C1MR", "", {}, mean(lumiMean_32f_C1MR)},
    {"lumiMean_8u_C3CMR", "", {}, mean(lumiMean_8u_C3CMR)},
    {"lumiMean_16u_C3CMR", "", {}, mean(lumiMean_16u_C3CMR)},
    {"lumiMean_32f_C3CMR", "", {}, mean(lumiMean_32f_C3CMR)},
    {"lumiMean_StdDev_8u_C1R", "", {4.4, 2.5}, deviation(lumiMean_StdDev_8u_C1R)},
    {"lumiMean_StdDev_16u_C1R", "", {}, deviation(lumiMean_StdDev_16u_C1R)},
    {"lumiMean_StdDev_32f_C1R", "", {9.0, 2.5}, deviation(lumiMean_StdDev_32f_C1R)},
    {"lumiMean_StdDev_32f_C1R", "two passes", {}, deviationOfNearlyConstant},
    {"lumiMean_StdDev_8u_C3CR", "", {}, deviation(lumiMean_StdDev_8u_C3CR)},
    {"lumiMean_StdDev_16u_C3CR", "", {}, deviation(lumiMean_StdDev_16u_C3CR)},
    {"lumiMean_StdDev_32f_C3CR", "", {}, deviation(lumiMean_StdDev_32f_C3CR)},
    {"lumiMean_StdDev_8u_C1MR", "", {}, deviation(lumiMean_StdDev_8u_C1MR)},
    {"lumiMean_StdDev_16u_C1MR", "", {}, deviation(lumiMean_StdDev_16u_C1MR)},
    {"lumiMean_StdDev_32f_C1MR", "", {}, deviation(lumiMean_StdDev_32f_C1MR)},
    {"lumiMean_StdDev_8u_C3CMR", "", {}, deviation(lumiMean_StdDev_8u_C3CMR)},
    {"lumiMean_StdDev_16u_C3CMR", "", {}, deviation(lumiMean_StdDev_16u_C3CMR)},
    {"lumiMean_StdDev_32f_C3CMR", "", {}, deviation(lumiMean_StdDev_32f_C3CMR)},
}};

}  // namespace
