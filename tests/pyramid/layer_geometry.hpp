// The sizes of a pyramid's levels, side by side, as they are defined in single precision.
#pragma once

#include <lumcv/lumcv.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumcv::test::pyramid {

inline Lum64s truncated(Lum32f value)
{
    return static_cast<Lum64s>(std::trunc(value));
}

/// The smallest side of a level above one of side s.
inline Lum64s upMinimum(Lum64s s, Lum32f rate)
{
    if (s == 1) {
        return 1;
    }
    const Lum64s t = truncated(static_cast<Lum32f>(s - 1) * rate);
    return t < s ? s + 1 : t + 1;
}

/// The largest side of a level above one of side s.
inline Lum64s upMaximum(Lum64s s, Lum32f rate)
{
    const Lum64s t = truncated(static_cast<Lum32f>(s) * rate);
    return s < t ? t : s + 1;
}

/// The side of the level below one of side s: a first guess, moved until s lies between the bounds of the way up.
inline Lum64s downSide(Lum64s s, Lum32f rate)
{
    const Lum32f inverse = 1.0f / rate;
    Lum64s side = std::max<Lum64s>(truncated(static_cast<Lum32f>(s) * inverse + 0.5f), 1);
    while (upMinimum(side, rate) > s || upMaximum(side, rate) < s) {
        side += upMinimum(side, rate) > s ? -1 : 1;
    }
    return side;
}

inline LumiSize downSize(LumiSize size, Lum32f rate)
{
    return {static_cast<Lum32s>(downSide(size.width, rate)), static_cast<Lum32s>(downSide(size.height, rate))};
}

/// The sizes of all levels, down to the first of one pixel.
inline std::vector<LumiSize> levelSizes(LumiSize size, Lum32f rate)
{
    std::vector<LumiSize> sizes = {size};
    while (sizes.back().width > 1 || sizes.back().height > 1) {
        sizes.push_back(downSize(sizes.back(), rate));
    }
    return sizes;
}

/// The number of steps down to one pixel.
inline int levelCount(LumiSize size, Lum32f rate)
{
    return static_cast<int>(levelSizes(size, rate).size()) - 1;
}

/// What takes the fast way down: a rate of 2 but for rounding.
inline bool isNearTwo(Lum32f rate)
{
    return 1.99998 < static_cast<Lum64f>(rate) && static_cast<Lum64f>(rate) < 2.00002;
}

}  // namespace lumcv::test::pyramid
