// What the row and the column pipelines of words share: how their sums become words again, and the scale at 16-bit
// precision.
#pragma once

#include "simd/simd.hpp"

namespace lumcv {

/// Clamps sums to the range of words, signed or unsigned. They may lie beyond 32 bits, where a conversion would leave
/// them at the wrong end.
template <bool isSigned, int N>
[[gnu::always_inline]] inline simd::Vec<Lum32f, N> withinWords(simd::Vec<Lum32f, N> sum)
{
    constexpr Lum32f lowest = isSigned ? -32768.0f : 0.0f;
    constexpr Lum32f highest = isSigned ? 32767.0f : 65535.0f;
    return simd::max(simd::min(sum, simd::broadcast<N>(highest)), simd::broadcast<N>(lowest));
}

/// Fractional bits of the scale at 16-bit precision.
inline constexpr int lowScalePlaces = 14;

/// 1 / divisor as a fixed-point number, truncated.
inline Lum16s lowScale(Lum32s divisor)
{
    return static_cast<Lum16s>(static_cast<Lum32f>(1 << lowScalePlaces) / static_cast<Lum32f>(divisor));
}

}  // namespace lumcv
