// Vectors that follow one another in a row.
#pragma once

#include "simd/arithmetic.hpp"

namespace lumcv::simd {

/// The last `count` lanes of one vector and behind them the first ones of the next: 16 bytes at most come in.
template <int count, class T, int N>
[[gnu::always_inline]] inline Vec<T, N> movedIn(Vec<T, N> earlier, Vec<T, N> later)
{
    using V = Vec<T, N>;
    constexpr int shift = 16 - count * static_cast<int>(sizeof(T));
    static_assert(std::is_integral_v<T> && shift >= 0);
    if constexpr (kindOf<T, N> == Kind::pair)
        return {movedIn<count>(earlier.hi, later.lo), movedIn<count>(later.lo, later.hi)};
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_alignr_epi8(bits(later.raw), bits(earlier.raw), shift)};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32) {
        const __m256i before = _mm256_permute2x128_si256(bits(earlier.raw), bits(later.raw), 0x21);
        return {(typename V::Raw)_mm256_alignr_epi8(bits(later.raw), before, shift)};
    }
#endif
#if defined(__AVX512BW__)
    else {
        const __m512i before = _mm512_maskz_alignr_epi64(0xff, bits(later.raw), bits(earlier.raw), 6);
        return {(typename V::Raw)_mm512_alignr_epi8(bits(later.raw), before, shift)};
    }
#endif
}

}  // namespace lumcv::simd
