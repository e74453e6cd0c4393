// Double precision: to and from the other types, and roots of both precisions.
#pragma once

#include "simd/convert.hpp"

namespace lumcv::simd {

/// The lower half of the lanes.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32s, N / 2> lowerHalf(Vec<Lum32s, N> v)
{
    using Half = Vec<Lum32s, N / 2>;
    if constexpr (kindOf<Lum32s, N> == Kind::pair)
        return v.lo;
    else if constexpr (N == 8)
        return {(typename Half::Raw)_mm256_castsi256_si128(bits(v.raw))};
#if defined(__AVX512BW__)
    else
        return {(typename Half::Raw)_mm512_castsi512_si256(bits(v.raw))};
#endif
}

/// The upper half of the lanes.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32s, N / 2> upperHalf(Vec<Lum32s, N> v)
{
    using Half [[maybe_unused]] = Vec<Lum32s, N / 2>;
    if constexpr (kindOf<Lum32s, N> == Kind::pair)
        return v.hi;
#if defined(__AVX2__)
    else if constexpr (N == 8)
        return {(typename Half::Raw)_mm256_extracti128_si256(bits(v.raw), 1)};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename Half::Raw)_mm512_extracti64x4_epi64(bits(v.raw), 1)};
#endif
}

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
    else if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {toSingle(v.lo), toSingle(v.hi)};
    else if constexpr (kindOf<Lum64f, N> == Kind::pair) {
        const auto low = toSingle(v.lo).raw, high = toSingle(v.hi).raw;
        if constexpr (N == 8)
            return {_mm256_insertf128_ps(_mm256_castps128_ps256(low), high, 1)};
#if defined(__AVX512BW__)
        else
            return {_mm512_insertf32x8(_mm512_castps256_ps512(low), high, 1)};
#endif
    } else if constexpr (N == 4)
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
    else if constexpr (kindOf<Lum32s, N> == Kind::pair)
        return {truncated(v.lo), truncated(v.hi)};
#if defined(__AVX2__)
    else if constexpr (kindOf<Lum64f, N> == Kind::pair) {
        const auto low = bits(truncated(v.lo).raw), high = bits(truncated(v.hi).raw);
        if constexpr (N == 8)
            return {(typename V::Raw)_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1)};
#if defined(__AVX512BW__)
        else
            return {(typename V::Raw)_mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1)};
#endif
    }
#endif
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
