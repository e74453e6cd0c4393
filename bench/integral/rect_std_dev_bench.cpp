// Rows of the rectangle deviation. The rectangle is one of 24x24; pixels are those for which it lies in the tables.
#include <algorithm>

#include "bench/integral/tables.hpp"

namespace {

using namespace lumcv::bench;

constexpr LumiRect upright{0, 0, 24, 24};
constexpr LumiRect tilted{12, 0, 12, 12};

// Tables of an image that is larger than the ROI by the reach of the rectangles.
struct Tables
{
    static constexpr int reach = 48;

    template <typename P, typename Q>
    static std::pair<View<const P>, View<const Q>> of(Job& job)
    {
        job.source<P>();
        job.source<Q>();
        const auto sums = table<P>(job, reach + 1);
        const auto squares = table<Q>(job, reach + 1);
        const LumiSize size{job.size().width + reach, job.size().height + reach};
        std::vector<Lum8u> image(std::size_t(size.width) * size.height);
        std::mt19937 random{5};
        std::generate(image.begin(), image.end(), [&] { return Lum8u(random()); });
        const Lum8u* const pixels = image.data();
        if constexpr (std::is_same_v<Q, Lum32s>)
            lumiSqrIntegral_8u32s_C1R(pixels, size.width, sums.pixels, sums.step, squares.pixels, squares.step, size, 0,
                                      0);
        else if constexpr (std::is_same_v<P, Lum32s>)
            lumiSqrIntegral_8u32s64f_C1R(pixels, size.width, sums.pixels, sums.step, squares.pixels, squares.step, size,
                                         0, 0);
        else
            lumiSqrIntegral_8u32f64f_C1R(pixels, size.width, sums.pixels, sums.step, squares.pixels, squares.step, size,
                                         0, 0);
        return {{sums.pixels, sums.step}, {squares.pixels, squares.step}};
    }
};

template <typename P, typename Q, typename D, typename... Scale>
auto deviation(LumStatus (*function)(const P*, Lum32s, const Q*, Lum32s, D*, Lum32s, LumiSize, LumiRect, Scale...),
               LumiRect rect)
{
    return [=](Job& job) -> Call {
        const auto [s, q] = Tables::of<P, Q>(job);
        const auto d = job.destination<D>();
        return [=, s = s, q = q, size = job.size()] {
            return function(s.pixels, s.step, q.pixels, q.step, d.pixels, d.step, size, rect, Scale(0)...);
        };
    };
}

const Rows rows{{
    {"lumiRectStdDev_32f_C1R", "", {}, deviation(lumiRectStdDev_32f_C1R, upright)},
    {"lumiRectStdDev_32s32f_C1R", "", {}, deviation(lumiRectStdDev_32s32f_C1R, upright)},
    {"lumiRectStdDev_32s_C1RSfs", "", {}, deviation(lumiRectStdDev_32s_C1RSfs, upright)},
    {"lumiTiltedRectStdDev_32f_C1R", "", {}, deviation(lumiTiltedRectStdDev_32f_C1R, tilted)},
    {"lumiTiltedRectStdDev_32s32f_C1R", "", {}, deviation(lumiTiltedRectStdDev_32s32f_C1R, tilted)},
    {"lumiTiltedRectStdDev_32s_C1RSfs", "", {}, deviation(lumiTiltedRectStdDev_32s_C1RSfs, tilted)},
}};

}  // namespace
