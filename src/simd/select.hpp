// Choosing between lanes by a comparison.
#pragma once

#include "simd/vec.hpp"

namespace lumcv::simd {

/// x where a < b, otherwise y: also where a or b is a not-a-number.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32f, N> whereLess(Vec<Lum32f, N> a, Vec<Lum32f, N> b, Vec<Lum32f, N> x,
                                                       Vec<Lum32f, N> y)
{
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {whereLess(a.lo, b.lo, x.lo, y.lo), whereLess(a.hi, b.hi, x.hi, y.hi)};
    else if constexpr (N == 1)
        return {a.raw < b.raw ? x.raw : y.raw};
    else if constexpr (N == 4)
        return {_mm_blendv_ps(y.raw, x.raw, _mm_cmplt_ps(a.raw, b.raw))};
    else if constexpr (N == 8)
        return {_mm256_blendv_ps(y.raw, x.raw, _mm256_cmp_ps(a.raw, b.raw, _CMP_LT_OQ))};
#if defined(__AVX512BW__)
    else
        return {_mm512_mask_blend_ps(_mm512_cmp_ps_mask(a.raw, b.raw, _CMP_LT_OQ), y.raw, x.raw)};
#endif
}

/// A bit for each lane: set where a < b. A not-a-number is not less.
[[gnu::always_inline]] inline unsigned lessBits(Vec<Lum32f, 4> a, Vec<Lum32f, 4> b)
{
    return static_cast<unsigned>(_mm_movemask_ps(_mm_cmplt_ps(a.raw, b.raw)));
}

}  // namespace lumcv::simd
