// Lane arithmetic that the operators lack: extremes, magnitudes, saturation.
#pragma once

#include "simd/vec.hpp"

namespace lumcv::simd {

// How a level's instructions read their operands.

template <class Raw>
[[gnu::always_inline]] inline auto bits(Raw raw)
{
    if constexpr (sizeof(Raw) == 16)
        return (__m128i)raw;
    else if constexpr (sizeof(Raw) == 32)
        return (__m256i)raw;
#if defined(__AVX512BW__)
    else
        return (__m512i)raw;
#endif
}

/// a where a < b, otherwise b: a not-a-number on either side gives b.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32f, N> min(Vec<Lum32f, N> a, Vec<Lum32f, N> b)
{
    using V = Vec<Lum32f, N>;
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {min(a.lo, b.lo), min(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {a.raw < b.raw ? a.raw : b.raw};
    else if constexpr (N == 4)
        return V{_mm_min_ps(a.raw, b.raw)};
    else if constexpr (N == 8)
        return V{_mm256_min_ps(a.raw, b.raw)};
#if defined(__AVX512BW__)
    else
        return V{_mm512_min_ps(a.raw, b.raw)};
#endif
}

/// a where a > b, otherwise b: a not-a-number on either side gives b.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32f, N> max(Vec<Lum32f, N> a, Vec<Lum32f, N> b)
{
    using V = Vec<Lum32f, N>;
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {max(a.lo, b.lo), max(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {a.raw > b.raw ? a.raw : b.raw};
    else if constexpr (N == 4)
        return V{_mm_max_ps(a.raw, b.raw)};
    else if constexpr (N == 8)
        return V{_mm256_max_ps(a.raw, b.raw)};
#if defined(__AVX512BW__)
    else
        return V{_mm512_max_ps(a.raw, b.raw)};
#endif
}

/// a where a < b, otherwise b: a not-a-number on either side gives b.
template <int N>
[[gnu::always_inline]] inline Vec<Lum64f, N> min(Vec<Lum64f, N> a, Vec<Lum64f, N> b)
{
    using V = Vec<Lum64f, N>;
    if constexpr (kindOf<Lum64f, N> == Kind::pair)
        return {min(a.lo, b.lo), min(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {a.raw < b.raw ? a.raw : b.raw};
    else if constexpr (N == 2)
        return V{_mm_min_pd(a.raw, b.raw)};
    else if constexpr (N == 4)
        return V{_mm256_min_pd(a.raw, b.raw)};
#if defined(__AVX512BW__)
    else
        return V{_mm512_min_pd(a.raw, b.raw)};
#endif
}

/// a where a > b, otherwise b: a not-a-number on either side gives b.
template <int N>
[[gnu::always_inline]] inline Vec<Lum64f, N> max(Vec<Lum64f, N> a, Vec<Lum64f, N> b)
{
    using V = Vec<Lum64f, N>;
    if constexpr (kindOf<Lum64f, N> == Kind::pair)
        return {max(a.lo, b.lo), max(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {a.raw > b.raw ? a.raw : b.raw};
    else if constexpr (N == 2)
        return V{_mm_max_pd(a.raw, b.raw)};
    else if constexpr (N == 4)
        return V{_mm256_max_pd(a.raw, b.raw)};
#if defined(__AVX512BW__)
    else
        return V{_mm512_max_pd(a.raw, b.raw)};
#endif
}

/// The smaller one.
template <class T, int N>
requires std::is_integral_v<T>
[[gnu::always_inline]] inline Vec<T, N> min(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {min(a.lo, b.lo), min(a.hi, b.hi)};
    else  // the compilers know the instruction behind this
        return {a.raw < b.raw ? a.raw : b.raw};
}

/// The greater one.
template <class T, int N>
requires std::is_integral_v<T>
[[gnu::always_inline]] inline Vec<T, N> max(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {max(a.lo, b.lo), max(a.hi, b.hi)};
    else
        return {a.raw > b.raw ? a.raw : b.raw};
}

/// Clears the sign bit, of a not-a-number too.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32f, N> magnitude(Vec<Lum32f, N> a)
{
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {magnitude(a.lo), magnitude(a.hi)};
    else if constexpr (N == 1)
        return {__builtin_fabsf(a.raw)};
    else {
        typedef Lum32s Bits __attribute__((vector_size(N * sizeof(Lum32s))));
        return {(typename Vec<Lum32f, N>::Raw)((Bits)a.raw & 0x7fffffff)};
    }
}

/// The magnitude of words, of which the smallest has 32768.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16u, N> magnitude(Vec<Lum16s, N> a)
{
    using V = Vec<Lum16u, N>;
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {magnitude(a.lo), magnitude(a.hi)};
    else if constexpr (N == 1)
        return {static_cast<Lum16u>(a.raw < 0 ? -a.raw : a.raw)};
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_abs_epi16(bits(a.raw))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_abs_epi16(bits(a.raw))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_abs_epi16(bits(a.raw))};
#endif
}

/// a + b, or the greatest value where that is more, for unsigned lanes.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> addSaturated(Vec<T, N> a, Vec<T, N> b)
{
    static_assert(std::is_same_v<T, Lum8u> || std::is_same_v<T, Lum16u>);
    constexpr bool bytes = sizeof(T) == 1;
    using V = Vec<T, N>;
    if constexpr (kindOf<T, N> == Kind::pair)
        return {addSaturated(a.lo, b.lo), addSaturated(a.hi, b.hi)};
    else if constexpr (N == 1) {
        constexpr T greatest = static_cast<T>(-1);
        return {static_cast<T>(a.raw > greatest - b.raw ? greatest : a.raw + b.raw)};
    } else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)(bytes ? _mm_adds_epu8(bits(a.raw), bits(b.raw))
                                        : _mm_adds_epu16(bits(a.raw), bits(b.raw)))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)(bytes ? _mm256_adds_epu8(bits(a.raw), bits(b.raw))
                                        : _mm256_adds_epu16(bits(a.raw), bits(b.raw)))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)(bytes ? _mm512_adds_epu8(bits(a.raw), bits(b.raw))
                                        : _mm512_adds_epu16(bits(a.raw), bits(b.raw)))};
#endif
}

/// a - b, or 0 where that is negative, for unsigned lanes.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> subtractSaturated(Vec<T, N> a, Vec<T, N> b)
{
    static_assert(std::is_same_v<T, Lum8u> || std::is_same_v<T, Lum16u>);
    constexpr bool bytes = sizeof(T) == 1;
    using V = Vec<T, N>;
    if constexpr (kindOf<T, N> == Kind::pair)
        return {subtractSaturated(a.lo, b.lo), subtractSaturated(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {static_cast<T>(a.raw > b.raw ? a.raw - b.raw : 0)};
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)(bytes ? _mm_subs_epu8(bits(a.raw), bits(b.raw))
                                        : _mm_subs_epu16(bits(a.raw), bits(b.raw)))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)(bytes ? _mm256_subs_epu8(bits(a.raw), bits(b.raw))
                                        : _mm256_subs_epu16(bits(a.raw), bits(b.raw)))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)(bytes ? _mm512_subs_epu8(bits(a.raw), bits(b.raw))
                                        : _mm512_subs_epu16(bits(a.raw), bits(b.raw)))};
#endif
}

/// (a * b) >> 16, of unsigned words.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16u, N> highProduct(Vec<Lum16u, N> a, Vec<Lum16u, N> b)
{
    using V = Vec<Lum16u, N>;
    if constexpr (kindOf<Lum16u, N> == Kind::pair)
        return {highProduct(a.lo, b.lo), highProduct(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {static_cast<Lum16u>(Lum32u{a.raw} * b.raw >> 16)};
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_mulhi_epu16(bits(a.raw), bits(b.raw))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_mulhi_epu16(bits(a.raw), bits(b.raw))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_mulhi_epu16(bits(a.raw), bits(b.raw))};
#endif
}

/// a - b, held at the ends of 16 bits.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16s, N> subtractSaturated(Vec<Lum16s, N> a, Vec<Lum16s, N> b)
{
    using V = Vec<Lum16s, N>;
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {subtractSaturated(a.lo, b.lo), subtractSaturated(a.hi, b.hi)};
    else if constexpr (N == 1) {
        const int difference = a.raw - b.raw;
        return {static_cast<Lum16s>(difference < -32768 ? -32768 : difference > 32767 ? 32767 : difference)};
    } else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_subs_epi16(bits(a.raw), bits(b.raw))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_subs_epi16(bits(a.raw), bits(b.raw))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_subs_epi16(bits(a.raw), bits(b.raw))};
#endif
}

/// |a - b|, exact for unsigned integers.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> absoluteDifference(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (std::is_same_v<T, Lum32f>)
        return magnitude(a - b);
    else
        return subtractSaturated(a, b) | subtractSaturated(b, a);
}

}  // namespace lumcv::simd
