// Bands of columns, narrow enough for the rows that a filter keeps to stay in the first-level cache.
#pragma once

#include <cstdint>

#include "frame/rounding.hpp"

namespace lumcv {

/// What the rows of a band take at most: a good half of a first-level cache.
inline constexpr int64_t bandBytes = 28 * 1024;

/// The width of bands, at most `widest`: all nearly as wide as the others, and of whole steps where there is room for
/// one, even if the image is narrower than they. Steps of whole cache lines keep bands from sharing a line, which costs
/// much where the destination is written past the caches.
inline int64_t evenBands(int64_t width, int64_t widest, int64_t step)
{
    const int64_t bands = (width + widest - 1) / widest;
    const int64_t even = (width + bands - 1) / bands;
    const int64_t whole = roundedUp(even, step);
    if (whole <= widest)
        return whole;
    return widest < step ? even : widest - widest % step;
}

}  // namespace lumcv
