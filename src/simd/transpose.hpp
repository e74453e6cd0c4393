// Square blocks of lanes turned over their diagonal, and lanes that move on by one.
#pragma once

#include "simd/lanes.hpp"

namespace lumcv::simd {

/// N vectors of N lanes: lane j of vector i becomes lane i of vector j.
template <class T, int N>
using Square = Vec<T, N>[N];

/// Vectors of 16 bytes: lane by lane from the lower or upper halves of both, in pieces of `bytes`.
template <int bytes>
[[gnu::always_inline]] inline __m128i interleavedLow(__m128i a, __m128i b)
{
    if constexpr (bytes == 1)
        return _mm_unpacklo_epi8(a, b);
    else if constexpr (bytes == 2)
        return _mm_unpacklo_epi16(a, b);
    else if constexpr (bytes == 4)
        return _mm_unpacklo_epi32(a, b);
    else
        return _mm_unpacklo_epi64(a, b);
}

template <int bytes>
[[gnu::always_inline]] inline __m128i interleavedHigh(__m128i a, __m128i b)
{
    if constexpr (bytes == 1)
        return _mm_unpackhi_epi8(a, b);
    else if constexpr (bytes == 2)
        return _mm_unpackhi_epi16(a, b);
    else if constexpr (bytes == 4)
        return _mm_unpackhi_epi32(a, b);
    else
        return _mm_unpackhi_epi64(a, b);
}

/// Turns 16 vectors of bytes or 8 of words.
template <class T, int N>
requires std::is_integral_v<T>
[[gnu::always_inline]] inline void transpose(Vec<T, N> (&square)[N])
{
    static_assert(N == groupLanes<T>);
    // interleaving the vectors i and i + N / 2 rotates the places of lanes, of which log2(N) steps turn the square
    for (int step = 1; step < N; step *= 2) {
        Square<T, N> turned;
        for (int i = 0; i < N / 2; ++i) {
            const auto a = bits(square[i].raw), b = bits(square[i + N / 2].raw);
            turned[2 * i] = {(typename Vec<T, N>::Raw)interleavedLow<sizeof(T)>(a, b)};
            turned[2 * i + 1] = {(typename Vec<T, N>::Raw)interleavedHigh<sizeof(T)>(a, b)};
        }
        for (int i = 0; i < N; ++i)
            square[i] = turned[i];
    }
}

/// Turns 8 vectors of floats.
[[gnu::always_inline]] inline void transpose(Square<Lum32f, 8>& square)
{
    __m256 fours[8];
    for (int i = 0; i < 4; ++i) {  // vectors i and i + 4 share registers: their halves are apart afterwards
        const __m256 a = square[i].raw, b = square[i + 4].raw;
        fours[i] = _mm256_permute2f128_ps(a, b, 0x20);
        fours[i + 4] = _mm256_permute2f128_ps(a, b, 0x31);
    }
    for (int half = 0; half < 8; half += 4) {
        const auto ab01 = (__m256d)_mm256_unpacklo_ps(fours[half], fours[half + 1]);
        const auto ab23 = (__m256d)_mm256_unpackhi_ps(fours[half], fours[half + 1]);
        const auto cd01 = (__m256d)_mm256_unpacklo_ps(fours[half + 2], fours[half + 3]);
        const auto cd23 = (__m256d)_mm256_unpackhi_ps(fours[half + 2], fours[half + 3]);
        square[half] = {(__m256)_mm256_unpacklo_pd(ab01, cd01)};
        square[half + 1] = {(__m256)_mm256_unpackhi_pd(ab01, cd01)};
        square[half + 2] = {(__m256)_mm256_unpacklo_pd(ab23, cd23)};
        square[half + 3] = {(__m256)_mm256_unpackhi_pd(ab23, cd23)};
    }
}

/// Moves all lanes up by one; the element at `first` comes in.
[[gnu::always_inline]] inline Vec<Lum8u, 16> movedOn(Vec<Lum8u, 16> v, const Lum8u* first)
{
    return {(Vec<Lum8u, 16>::Raw)_mm_insert_epi8(_mm_slli_si128(bits(v.raw), 1), *first, 0)};
}

[[gnu::always_inline]] inline Vec<Lum16u, 8> movedOn(Vec<Lum16u, 8> v, const Lum16u* first)
{
    return {(Vec<Lum16u, 8>::Raw)_mm_insert_epi16(_mm_slli_si128(bits(v.raw), 2), *first, 0)};
}

[[gnu::always_inline]] inline Vec<Lum32f, 8> movedOn(Vec<Lum32f, 8> v, const Lum32f* first)
{
    const __m256 rotated = _mm256_permute_ps(v.raw, 0x93);
    const __m256 lower = _mm256_permute2f128_ps(rotated, _mm256_broadcast_ss(first), 0x02);
    return {_mm256_blend_ps(rotated, lower, 0x11)};
}

}  // namespace lumcv::simd
