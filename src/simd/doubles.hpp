// Double precision: to and from the other types, and roots of both precisions.
#pragma once

#include "simd/convert.hpp"

namespace lumcv::simd {

/// The same numbers in double precision.
template <int N>
[[gnu::always_inline]] inline Vec<Lum64f, N> toDouble(Vec<Lum32s, N> v)
{
    if constexpr (N == 1)
        return {static_cast<Lum64f>(v.raw)};
    else if constexpr (kindOf<Lum64f, N> == Kind::pair)
        return {toDouble(lowerHalf(v)), toDouble(upperHalf(v))};
    else if constexpr (N == 4)
        return {_mm256_cvtepi32_pd(bits(v.raw))};
#if defined(__AVX512BW__)
    else
        return {_mm512_cvtepi32_pd(bits(v.raw))};
#endif
}

/// Nearest single-precision numbers.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32f, N> toSingle(Vec<Lum64f, N> v)
{
    if constexpr (N == 1)
        return {static_cast<Lum32f>(v.raw)};
    else if constexpr (kindOf<Lum64f, N> == Kind::pair)
        return joined(toSingle(v.lo), toSingle(v.hi));
    else if constexpr (N == 4)
        return {_mm256_cvtpd_ps(v.raw)};
#if defined(__AVX512BW__)
    else
        return {_mm512_cvtpd_ps(v.raw)};
#endif
}

/// The integers between the numbers and zero; what lies beyond 32 bits gives the smallest integer.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32s, N> truncated(Vec<Lum64f, N> v)
{
    using V [[maybe_unused]] = Vec<Lum32s, N>;
    if constexpr (N == 1)
        return {_mm_cvttsd_si32(_mm_set_sd(v.raw))};
    else if constexpr (kindOf<Lum64f, N> == Kind::pair)
        return joined(truncated(v.lo), truncated(v.hi));
    else if constexpr (N == 4)
        return {(typename V::Raw)_mm256_cvttpd_epi32(v.raw)};
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_cvttpd_epi32(v.raw)};
#endif
}

/// Square roots, exactly rounded.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> root(Vec<T, N> v)
{
    static_assert(std::is_floating_point_v<T>);
    if constexpr (kindOf<T, N> == Kind::pair)
        return {root(v.lo), root(v.hi)};
    else if constexpr (N == 1 && sizeof(T) == 4)
        return {__builtin_sqrtf(v.raw)};
    else if constexpr (N == 1)
        return {__builtin_sqrt(v.raw)};
    else if constexpr (sizeof v == 16)
        return {_mm_sqrt_ps(v.raw)};
    else if constexpr (sizeof v == 32 && sizeof(T) == 4)
        return {_mm256_sqrt_ps(v.raw)};
    else if constexpr (sizeof v == 32)
        return {_mm256_sqrt_pd(v.raw)};
#if defined(__AVX512BW__)
    else if constexpr (sizeof(T) == 4)
        return {_mm512_sqrt_ps(v.raw)};
    else
        return {_mm512_sqrt_pd(v.raw)};
#endif
}

}  // namespace lumcv::simd
