// Bands of columns, narrow enough for the rows that a filter keeps to stay in the first-level cache.
#pragma once

#include <cstdint>

#include "frame/rounding.hpp"

namespace lumcv {

/// What the rows of a band take at most: a good half of a first-level cache.
inline constexpr int64_t bandBytes = 28 * 1024;

/// The width of bands, at most `widest`, that are all nearly as wide as the others.
inline int64_t evenBands(int64_t width, int64_t widest)
{
    const int64_t bands = (width + widest - 1) / widest;
    return (width + bands - 1) / bands;
}

/// The same in whole steps of the widest loops, if `widest` has room for one. So bands consist of whole cache lines,
/// whatever the size of a pixel: a line that is written past the caches and through them as well costs much.
inline int64_t evenBandsOfSteps(int64_t width, int64_t widest)
{
    constexpr int64_t step = 128;
    const int64_t even = evenBands(width, widest);
    if (widest < step)
        return even;
    const int64_t whole = roundedUp(even, step);
    return whole <= widest ? whole : widest - widest % step;
}

}  // namespace lumcv
