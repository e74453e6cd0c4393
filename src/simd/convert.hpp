// Between element types: widening loads, exact conversion to single precision, rounding back with saturation.
#pragma once

#include <limits>

#include "simd/arithmetic.hpp"
#include "simd/halves.hpp"

namespace lumcv::simd {

/// Loads N integers of 8 or 16 bits into 32-bit lanes, value for value.
template <int N, class T>
[[gnu::always_inline]] inline Vec<Lum32s, N> loadWidened(const T* p)
{
    static_assert(sizeof(T) < 4 && std::is_integral_v<T>);
    using V = Vec<Lum32s, N>;
    [[maybe_unused]] const auto narrow = reinterpret_cast<const __m128i*>(p);
    if constexpr (kindOf<Lum32s, N> == Kind::pair)
        return {loadWidened<N / 2>(p), loadWidened<N / 2>(p + N / 2)};
    else if constexpr (N == 1)
        return {*p};
    else if constexpr (N == 4) {
        if constexpr (std::is_same_v<T, Lum8u>)
            return {(typename V::Raw)_mm_cvtepu8_epi32(_mm_loadu_si32(p))};
        else if constexpr (std::is_same_v<T, Lum16u>)
            return {(typename V::Raw)_mm_cvtepu16_epi32(_mm_loadl_epi64(narrow))};
        else
            return {(typename V::Raw)_mm_cvtepi16_epi32(_mm_loadl_epi64(narrow))};
    }
#if defined(__AVX2__)
    else if constexpr (N == 8) {
        if constexpr (std::is_same_v<T, Lum8u>)
            return {(typename V::Raw)_mm256_cvtepu8_epi32(_mm_loadl_epi64(narrow))};
        else if constexpr (std::is_same_v<T, Lum16u>)
            return {(typename V::Raw)_mm256_cvtepu16_epi32(_mm_loadu_si128(narrow))};
        else
            return {(typename V::Raw)_mm256_cvtepi16_epi32(_mm_loadu_si128(narrow))};
    }
#endif
#if defined(__AVX512BW__)
    else {
        const auto wide = reinterpret_cast<const __m256i*>(p);
        if constexpr (std::is_same_v<T, Lum8u>)
            return {(typename V::Raw)_mm512_cvtepu8_epi32(_mm_loadu_si128(narrow))};
        else if constexpr (std::is_same_v<T, Lum16u>)
            return {(typename V::Raw)_mm512_cvtepu16_epi32(_mm256_loadu_si256(wide))};
        else
            return {(typename V::Raw)_mm512_cvtepi16_epi32(_mm256_loadu_si256(wide))};
    }
#endif
}

/// Nearest single-precision numbers.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32f, N> toFloat(Vec<Lum32s, N> v)
{
    using V = Vec<Lum32f, N>;
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {toFloat(v.lo), toFloat(v.hi)};
    else if constexpr (N == 1)
        return {static_cast<Lum32f>(v.raw)};
    else if constexpr (kindOf<Lum32s, N> == Kind::pair)  // floats have the wider register
        return V{
            _mm256_cvtepi32_ps(_mm256_insertf128_si256(_mm256_castsi128_si256(bits(v.lo.raw)), bits(v.hi.raw), 1))};
    else if constexpr (N == 4)
        return V{_mm_cvtepi32_ps(bits(v.raw))};
#if defined(__AVX2__)
    else if constexpr (N == 8)
        return V{_mm256_cvtepi32_ps(bits(v.raw))};
#endif
#if defined(__AVX512BW__)
    else
        return V{_mm512_cvtepi32_ps(bits(v.raw))};
#endif
}

/// Loads N bytes as words.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16s, N> loadWords(const Lum8u* p)
{
    using V = Vec<Lum16s, N>;
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {loadWords<N / 2>(p), loadWords<N / 2>(p + N / 2)};
    else if constexpr (N == 1)
        return {*p};
    else if constexpr (N == 8)
        return {(typename V::Raw)_mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)))};
#if defined(__AVX2__)
    else if constexpr (N == 16)
        return {(typename V::Raw)_mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)))};
#endif
}

/// Words as single-precision numbers, value for value.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32f, N> toFloat(Vec<Lum16s, N> v)
{
    using V = Vec<Lum32f, N>;
    if constexpr (N == 1)
        return {static_cast<Lum32f>(v.raw)};
    else if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {toFloat(lowerHalf(v)), toFloat(upperHalf(v))};
#if defined(__AVX512BW__)
    else if constexpr (N == 16)
        return V{_mm512_cvtepi32_ps(_mm512_cvtepi16_epi32(bits(v.raw)))};
#endif
#if defined(__AVX2__)
    else
        return V{_mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(bits(v.raw)))};
#else
    else {
        const __m128i low = _mm_cvtepi16_epi32(bits(v.raw));
        const __m128i high = _mm_cvtepi16_epi32(_mm_unpackhi_epi64(bits(v.raw), bits(v.raw)));
        return V{_mm256_cvtepi32_ps(_mm256_insertf128_si256(_mm256_castsi128_si256(low), high, 1))};
    }
#endif
}

/// Nearest integers, ties to even; what lies beyond 32 bits gives the smallest integer.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32s, N> toNearest(Vec<Lum32f, N> v)
{
    using V = Vec<Lum32s, N>;
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {toNearest(v.lo), toNearest(v.hi)};
    else if constexpr (N == 1)
        return {_mm_cvtss_si32(_mm_set_ss(v.raw))};
    else if constexpr (kindOf<Lum32s, N> == Kind::pair)  // floats have the wider register
    {
        using Half = Vec<Lum32s, N / 2>;
        const __m256i wide = _mm256_cvtps_epi32(v.raw);
        return V{Half{(typename Half::Raw)_mm256_castsi256_si128(wide)},
                 Half{(typename Half::Raw)_mm256_extractf128_si256(wide, 1)}};
    } else if constexpr (N == 4)
        return {(typename V::Raw)_mm_cvtps_epi32(v.raw)};
#if defined(__AVX2__)
    else if constexpr (N == 8)
        return {(typename V::Raw)_mm256_cvtps_epi32(v.raw)};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_cvtps_epi32(v.raw)};
#endif
}

/// The integers between the numbers and zero; what lies beyond 32 bits gives the smallest integer.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32s, N> truncated(Vec<Lum32f, N> v)
{
    using V = Vec<Lum32s, N>;
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {truncated(v.lo), truncated(v.hi)};
    else if constexpr (N == 1)
        return {_mm_cvttss_si32(_mm_set_ss(v.raw))};
    else if constexpr (kindOf<Lum32s, N> == Kind::pair)  // floats have the wider register
    {
        using Half = Vec<Lum32s, N / 2>;
        const __m256i wide = _mm256_cvttps_epi32(v.raw);
        return V{Half{(typename Half::Raw)_mm256_castsi256_si128(wide)},
                 Half{(typename Half::Raw)_mm256_extractf128_si256(wide, 1)}};
    } else if constexpr (N == 4)
        return {(typename V::Raw)_mm_cvttps_epi32(v.raw)};
#if defined(__AVX2__)
    else if constexpr (N == 8)
        return {(typename V::Raw)_mm256_cvttps_epi32(v.raw)};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_cvttps_epi32(v.raw)};
#endif
}

/// The nearest value that T can hold.
template <class T>
[[gnu::always_inline]] inline T clampTo(Lum32s value)
{
    constexpr Lum32s lowest = std::is_signed_v<T> ? -(1 << (8 * sizeof(T) - 1)) : 0;
    constexpr Lum32s highest = lowest + (1 << (8 * sizeof(T))) - 1;
    return static_cast<T>(value < lowest ? lowest : value > highest ? highest : value);
}

// packed<T>(a, b): the lanes of a, then those of b, each saturated to T, which has half their width.
// The wide forms pack within 16-byte groups; `grouped` stops there, and its caller restores the order.

template <class T>
[[gnu::always_inline]] inline __m128i packed(__m128i a, __m128i b)
{
    if constexpr (std::is_same_v<T, Lum16s>)
        return _mm_packs_epi32(a, b);
    else if constexpr (std::is_same_v<T, Lum16u>)
        return _mm_packus_epi32(a, b);
    else if constexpr (std::is_same_v<T, Lum8u>)
        return _mm_packus_epi16(a, b);
    else
        return _mm_packs_epi16(a, b);
}

template <class T>
[[gnu::always_inline]] inline __m128i grouped(__m128i a, __m128i b)
{
    return packed<T>(a, b);
}

#if defined(__AVX2__)
template <class T>
[[gnu::always_inline]] inline __m256i grouped(__m256i a, __m256i b)
{
    if constexpr (std::is_same_v<T, Lum16s>)
        return _mm256_packs_epi32(a, b);
    else if constexpr (std::is_same_v<T, Lum16u>)
        return _mm256_packus_epi32(a, b);
    else if constexpr (std::is_same_v<T, Lum8u>)
        return _mm256_packus_epi16(a, b);
    else
        return _mm256_packs_epi16(a, b);
}

template <class T>
[[gnu::always_inline]] inline __m256i packed(__m256i a, __m256i b)
{
    return _mm256_permute4x64_epi64(grouped<T>(a, b), 0xD8);
}

/// The halves of one register, packed into a register of half its width.
template <class T>
[[gnu::always_inline]] inline __m128i packedHalves(__m256i a)
{
    return packed<T>(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1));
}
#endif

#if defined(__AVX512BW__)
template <class T>
[[gnu::always_inline]] inline __m512i grouped(__m512i a, __m512i b)
{
    if constexpr (std::is_same_v<T, Lum16s>)
        return _mm512_packs_epi32(a, b);
    else if constexpr (std::is_same_v<T, Lum16u>)
        return _mm512_packus_epi32(a, b);
    else if constexpr (std::is_same_v<T, Lum8u>)
        return _mm512_packus_epi16(a, b);
    else
        return _mm512_packs_epi16(a, b);
}

template <class T>
[[gnu::always_inline]] inline __m512i packed(__m512i a, __m512i b)
{
    return _mm512_permutexvar_epi64(_mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0), grouped<T>(a, b));
}

template <class T>
[[gnu::always_inline]] inline __m256i packedHalves(__m512i a)
{
    return packed<T>(_mm512_castsi512_si256(a), _mm512_extracti64x4_epi64(a, 1));
}
#endif

/// Saturates lanes to T, which has half their width.
template <class T, class Wide, int N>
[[gnu::always_inline]] inline Vec<T, N> narrowOnce(Vec<Wide, N> v)
{
    static_assert(sizeof(Wide) == 2 * sizeof(T));
    using V = Vec<T, N>;
    if constexpr (N == 1)
        return {clampTo<T>(v.raw)};
    else if constexpr (kindOf<T, N> == Kind::pair)
        return {narrowOnce<T>(v.lo), narrowOnce<T>(v.hi)};
    else if constexpr (kindOf<Wide, N> == Kind::pair)
        return {(typename V::Raw)packed<T>(bits(v.lo.raw), bits(v.hi.raw))};
    else
        return {(typename V::Raw)packedHalves<T>(bits(v.raw))};
}

#if defined(__AVX512BW__)
/// Undoes what packing four registers in 16-byte groups has done to the order of the 4-byte units.
[[gnu::always_inline]] inline __m512i unitsInOrder(__m512i units)
{
    return _mm512_permutexvar_epi32(_mm512_set_epi32(15, 11, 7, 3, 14, 10, 6, 2, 13, 9, 5, 1, 12, 8, 4, 0), units);
}
#elif defined(__AVX2__)
/// Undoes what packing four registers in 16-byte groups has done to the order of the 4-byte units.
[[gnu::always_inline]] inline __m256i unitsInOrder(__m256i units)
{
    return _mm256_permutevar8x32_epi32(units, _mm256_set_epi32(7, 3, 6, 2, 5, 1, 4, 0));
}
#endif

/// Saturates 32-bit lanes to T.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> narrow(Vec<Lum32s, N> v)
{
    if constexpr (N == 1)
        return {clampTo<T>(v.raw)};
    else if constexpr (sizeof(T) == 2)
        return narrowOnce<T>(v);
#if defined(__AVX2__)
    else if constexpr (N == registerBytes<Lum32s>) {
        // four registers into one: packing in groups twice leaves 4-byte units to put in order once
        const auto low = grouped<Lum16s>(bits(v.lo.lo.raw), bits(v.lo.hi.raw));
        const auto high = grouped<Lum16s>(bits(v.hi.lo.raw), bits(v.hi.hi.raw));
        return {(typename Vec<T, N>::Raw)unitsInOrder(grouped<T>(low, high))};
    }
#endif
    else
        return narrowOnce<T>(narrowOnce<Lum16s>(v));
}

/// Loads N elements as single-precision numbers.
template <int N, class T>
[[gnu::always_inline]] inline Vec<Lum32f, N> loadFloat(const T* p)
{
    if constexpr (std::is_same_v<T, Lum32f>)
        return load<N>(p);
    else
        return toFloat(loadWidened<N>(p));
}

/// Rounds to nearest, ties to even, and saturates to T. The lanes lie within 32 bits, or T is Lum32f, which takes them
/// as they are.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> roundTo(Vec<Lum32f, N> v)
{
    if constexpr (std::is_same_v<T, Lum32f>)
        return v;
    else
        return narrow<T>(toNearest(v));
}

/// What makes numbers of any size fit for it. Beyond 32 bits a conversion gives the smallest integer, which is right at
/// the lower end; so only the upper one is clamped.
template <class T, int N>
[[gnu::always_inline]] inline Vec<Lum32f, N> clampedAbove(Vec<Lum32f, N> v)
{
    return min(v, broadcast<N>(static_cast<Lum32f>(std::numeric_limits<T>::max())));
}

/// The same for numbers of any size.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> saturateTo(Vec<Lum32f, N> v)
{
    if constexpr (std::is_same_v<T, Lum32f>)
        return v;
    else
        return roundTo<T>(clampedAbove<T>(v));
}

/// The same numbers in double precision.
template <int N>
[[gnu::always_inline]] inline Vec<Lum64f, N> toDouble(Vec<Lum32f, N> v)
{
    if constexpr (N == 1)
        return {v.raw};
    else if constexpr (kindOf<Lum64f, N> == Kind::pair)
        return {toDouble(lowerHalf(v)), toDouble(upperHalf(v))};
    else if constexpr (N == 4)
        return {_mm256_cvtps_pd(v.raw)};
#if defined(__AVX512BW__)
    else
        return {_mm512_cvtps_pd(v.raw)};
#endif
}

/// Four lanes, saturated to words.
[[gnu::always_inline]] inline void storeWords(Lum16s* p, Vec<Lum32s, 4> v)
{
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packs_epi32(bits(v.raw), bits(v.raw)));
}

}  // namespace lumcv::simd
