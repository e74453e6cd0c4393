// The halves of a vector, apart and joined.
#pragma once

#include "simd/vec.hpp"

namespace lumcv::simd {

/// The first half of the lanes.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N / 2> lowerHalf(Vec<T, N> v)
{
    using Half [[maybe_unused]] = Vec<T, N / 2>;
    if constexpr (kindOf<T, N> == Kind::pair)
        return v.lo;
    else if constexpr (sizeof v == 32)
        return {(typename Half::Raw)_mm256_castsi256_si128(bits(v.raw))};
#if defined(__AVX512BW__)
    else
        return {(typename Half::Raw)_mm512_castsi512_si256(bits(v.raw))};
#endif
}

/// The second half of the lanes.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N / 2> upperHalf(Vec<T, N> v)
{
    using Half [[maybe_unused]] = Vec<T, N / 2>;
    if constexpr (kindOf<T, N> == Kind::pair)
        return v.hi;
    else if constexpr (sizeof v == 32)
        return {(typename Half::Raw)_mm256_extractf128_si256(bits(v.raw), 1)};
#if defined(__AVX512BW__)
    else
        return {(typename Half::Raw)_mm512_extracti64x4_epi64(bits(v.raw), 1)};
#endif
}

/// The lanes of lo, then those of hi.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, 2 * N> joined(Vec<T, N> lo, Vec<T, N> hi)
{
    using Whole [[maybe_unused]] = Vec<T, 2 * N>;
    if constexpr (kindOf<T, 2 * N> == Kind::pair)
        return {lo, hi};
    else if constexpr (sizeof lo == 16)
        return {(typename Whole::Raw)_mm256_insertf128_si256(_mm256_castsi128_si256(bits(lo.raw)), bits(hi.raw), 1)};
#if defined(__AVX512BW__)
    else
        return {(typename Whole::Raw)_mm512_inserti64x4(_mm512_castsi256_si512(bits(lo.raw)), bits(hi.raw), 1)};
#endif
}

}  // namespace lumcv::simd
