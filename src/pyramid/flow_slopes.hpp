// The slopes of a level: its Scharr derivatives, in the scale that the patches of the element type take.
#pragma once

#include "frame/image.hpp"

namespace lumcv {

/// The two planes of a level's slopes, one after the other, their rows without gaps.
template <class Slope>
struct FlowSlopes
{
    Plane<Slope> x, y;

    FlowSlopes(Lum8u* block, LumiSize size)
    {
        const int64_t step = int64_t{size.width} * static_cast<int64_t>(sizeof(Slope));
        x = {reinterpret_cast<Slope*>(block), step};
        y = {x.row(size.height), step};
    }

    static constexpr int64_t bytes(LumiSize size)
    {
        return 2 * int64_t{size.width} * size.height * static_cast<int64_t>(sizeof(Slope));
    }
};

// Checks, in this order, as those of the derivative filters: lumErrNullPointer, lumErrSize, lumErrStepAlignment.

LumStatus takeSlopes(Plane<const Lum8u> image, LumiSize size, FlowSlopes<Lum16s> slopes);
LumStatus takeSlopes(Plane<const Lum16u> image, LumiSize size, FlowSlopes<Lum32f> slopes);
LumStatus takeSlopes(Plane<const Lum32f> image, LumiSize size, FlowSlopes<Lum32f> slopes);

}  // namespace lumcv
