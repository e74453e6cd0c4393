// Choices between lanes by a comparison, and comparisons as bits of an integer.
#pragma once

#include "simd/lanes.hpp"

namespace lumcv::simd {

/// x where a < b, otherwise y: a not-a-number on either side gives y.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32f, N> whereLess(Vec<Lum32f, N> a, Vec<Lum32f, N> b, Vec<Lum32f, N> x,
                                                       Vec<Lum32f, N> y)
{
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {whereLess(a.lo, b.lo, x.lo, y.lo), whereLess(a.hi, b.hi, x.hi, y.hi)};
    else  // not by the blend intrinsic: without AVX2, g++ makes branches of it
        return {a.raw < b.raw ? x.raw : y.raw};
}

/// Bit i tells whether lane i of a is less than that of b, for floats and signed integers of 32 bits. A not-a-number is
/// not less.
template <class T, int N>
[[gnu::always_inline]] inline Lum32u lessBits(Vec<T, N> a, Vec<T, N> b)
{
    static_assert(N <= 32 && (std::is_same_v<T, Lum32f> || std::is_same_v<T, Lum32s>));
    [[maybe_unused]] constexpr bool floats = std::is_same_v<T, Lum32f>;
    if constexpr (kindOf<T, N> == Kind::pair)
        return lessBits(a.lo, b.lo) | lessBits(a.hi, b.hi) << (N / 2);
    else if constexpr (N == 1)
        return a.raw < b.raw;
#if defined(__AVX512BW__)
    else if constexpr (N == 16) {
        if constexpr (floats)
            return _mm512_cmp_ps_mask(a.raw, b.raw, _CMP_LT_OQ);
        else
            return _mm512_cmplt_epi32_mask(bits(a.raw), bits(b.raw));
    }
#endif
    else if constexpr (N == 8)
        return static_cast<Lum32u>(_mm256_movemask_ps((__m256)(a.raw < b.raw)));
    else
        return static_cast<Lum32u>(_mm_movemask_ps((__m128)(a.raw < b.raw)));
}

/// The smaller one, of signed 32-bit lanes.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32s, N> min(Vec<Lum32s, N> a, Vec<Lum32s, N> b)
{
    using V = Vec<Lum32s, N>;
    if constexpr (kindOf<Lum32s, N> == Kind::pair)
        return {min(a.lo, b.lo), min(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {a.raw < b.raw ? a.raw : b.raw};
    else if constexpr (N == 4)
        return {(typename V::Raw)_mm_min_epi32(bits(a.raw), bits(b.raw))};
#if defined(__AVX2__)
    else if constexpr (N == 8)
        return {(typename V::Raw)_mm256_min_epi32(bits(a.raw), bits(b.raw))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_min_epi32(bits(a.raw), bits(b.raw))};
#endif
}

/// The greater one, of signed 32-bit lanes.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32s, N> max(Vec<Lum32s, N> a, Vec<Lum32s, N> b)
{
    using V = Vec<Lum32s, N>;
    if constexpr (kindOf<Lum32s, N> == Kind::pair)
        return {max(a.lo, b.lo), max(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {a.raw > b.raw ? a.raw : b.raw};
    else if constexpr (N == 4)
        return {(typename V::Raw)_mm_max_epi32(bits(a.raw), bits(b.raw))};
#if defined(__AVX2__)
    else if constexpr (N == 8)
        return {(typename V::Raw)_mm256_max_epi32(bits(a.raw), bits(b.raw))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_max_epi32(bits(a.raw), bits(b.raw))};
#endif
}

}  // namespace lumcv::simd
