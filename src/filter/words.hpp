// The scale of the row and the column pipelines at 16-bit precision.
#pragma once

#include "lumcv/types.h"

namespace lumcv {

/// Fractional bits of the scale at 16-bit precision.
inline constexpr int lowScalePlaces = 14;

/// 1 / divisor as a fixed-point number, truncated.
inline Lum16s lowScale(Lum32s divisor)
{
    return static_cast<Lum16s>(static_cast<Lum32f>(1 << lowScalePlaces) / static_cast<Lum32f>(divisor));
}

}  // namespace lumcv
