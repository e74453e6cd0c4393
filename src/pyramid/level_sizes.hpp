// Sizes of the levels of a pyramid: what a rate makes of a side, and how often.
#pragma once

#include <cstdint>

#include "lumcv/types.h"

namespace lumcv {

constexpr bool isRate(Lum32f rate)
{
    return rate > 1.0f && rate <= 10.0f;  // a not-a-number is not
}

/// Near enough to 2 for a level to be every second pixel.
constexpr bool isRateTwo(Lum32f rate)
{
    return 1.99998 < static_cast<Lum64f>(rate) && static_cast<Lum64f>(rate) < 2.00002;
}

/// The sides of the next larger level that come down to one.
struct SideRange
{
    int64_t min, max;
};

/// Of neighbouring sides the ranges follow each other without a gap, so that each side goes down to exactly one.
SideRange sidesAbove(int64_t side, Lum32f rate);

int64_t sideBelow(int64_t side, Lum32f rate);

inline LumiSizeL sizeBelow(LumiSizeL size, Lum32f rate)
{
    return {sideBelow(size.width, rate), sideBelow(size.height, rate)};
}

/// The number of steps down to one pixel, or `most` if there are more.
int64_t levelsBelow(LumiSizeL size, Lum32f rate, int64_t most = INT64_MAX);

}  // namespace lumcv
