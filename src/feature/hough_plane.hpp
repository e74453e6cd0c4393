// What all Hough transforms share: how the plane of lines is divided into cells, and what a point of an image is.
#pragma once

#include <climits>

#include "lumcv/feature.h"
#include "simd/simd.hpp"

namespace lumcv::hough {

/// What limits the angles: not pi.
inline constexpr Lum32f angleLimit = 3.14159f;

/// The integer between a number and zero, at the ends of 32 bits where it lies beyond.
template <class Float>
constexpr Lum32s truncated(Float number)
{
    constexpr auto beyond = static_cast<Float>(int64_t{1} << 31);
    if (number >= beyond)
        return INT_MAX;
    return number <= -beyond ? INT_MIN : static_cast<Lum32s>(number);
}

struct Plane
{
    /// Index of the last angle.
    Lum32s lastAngle;
    /// For each angle.
    Lum32s cells;
    /// The cell of a line through the first pixel.
    Lum32s centre;

    Plane(LumiSize roiSize, LumiPointPolar delta)
    {
        lastAngle = truncated(static_cast<Lum64f>(angleLimit) / static_cast<Lum64f>(delta.theta));
        const int64_t bothWays = 2 * (int64_t{roiSize.width} + roiSize.height) + 1;
        cells = truncated(static_cast<Lum32f>(bothWays) / delta.rho);
        centre = (cells - 1) / 2;
    }
};

constexpr bool isPositive(LumiPointPolar delta)
{
    return delta.rho > 0 && delta.theta > 0;
}

/// Calls use(x, bits) for groups of neighbouring pixels, from left to right, until all points of a row have been told:
/// bit i says whether x + i is one. x is a multiple of 8, or there is only one bit.
template <class Use>
[[gnu::always_inline]] inline void eachGroup(const Lum8u* row, int64_t width, Use use)
{
    simd::eachOnce<simd::registerLanes<Lum8u>>(0, width, [&use, row](int64_t x, auto lanes) {
        const auto pixels = simd::load<lanes>(row + x);
        if (simd::anyNonZero(pixels))
            use(x, simd::nonZeroBits(pixels));
    });
}

/// Calls use(x) for each point of a row.
template <class Use>
[[gnu::always_inline]] inline void eachPoint(const Lum8u* row, int64_t width, Use use)
{
    eachGroup(row, width, [&use](int64_t x, uint64_t bits) {
        for (; bits; bits &= bits - 1)
            use(static_cast<Lum32s>(x) + __builtin_ctzll(bits));
    });
}

}  // namespace lumcv::hough
