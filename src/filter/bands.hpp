// Bands of columns, narrow enough for the rows that a filter keeps to stay in the first-level cache.
#pragma once

#include <cstdint>

namespace lumcv {

/// What the rows of a band take at most: a good half of a first-level cache.
inline constexpr int64_t bandBytes = 28 * 1024;

/// The width of bands, at most `widest`, that are all nearly as wide as the others.
inline int64_t evenBands(int64_t width, int64_t widest)
{
    const int64_t bands = (width + widest - 1) / widest;
    return (width + bands - 1) / bands;
}

}  // namespace lumcv
