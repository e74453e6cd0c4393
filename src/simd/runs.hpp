// Runs of neighbouring lanes, told by bits: how the bits of a row are made, and values spread over the runs.
#pragma once

#include <array>

#include "simd/masks.hpp"
#include "simd/row.hpp"

namespace lumcv::simd {

/// The bits of the places x to x + 63, those from `end` on 0. bitsOf(x, lanes) gives the bits of `lanes` places.
template <int N, class Bits>
[[gnu::always_inline]] inline uint64_t bitWord(int64_t x, int64_t end, Bits bitsOf)
{
    static_assert(16 <= N && N <= 64);
    const auto whole = [=](int64_t first) {
        uint64_t word = 0;
        for (int i = 0; i < 64; i += N)
            word |= bitsOf(first + i, Lanes<N>{}) << i;
        return word;
    };
    if (x + 64 <= end)
        return whole(x);
    if (x >= end)
        return 0;
    if (end >= 64)
        return whole(end - 64) >> (x + 64 - end);
    uint64_t word = 0;
    int i = 0;
    for (; i + restLanes <= end - x; i += restLanes)
        word |= bitsOf(x + i, Lanes<restLanes>{}) << i;
    for (; i < end - x; ++i)
        word |= bitsOf(x + i, Lanes<1>{}) << i;
    return word;
}

/// For each byte of bits: how many of them are set up to each of its places.
inline constexpr auto countsUpTo = [] {
    std::array<std::array<Lum8u, 8>, 256> counts{};
    for (int bits = 0; bits < 256; ++bits)
        for (int i = 0, count = 0; i < 8; ++i) {
            count += bits >> i & 1;
            counts[bits][i] = static_cast<Lum8u>(count);
        }
    return counts;
}();

/// The lanes of 16 bytes of which the bits are set.
template <class T, int N>
[[gnu::always_inline]] inline Mask<T, N> laneMask(Lum32u set)
{
    using M = Mask<T, N>;
    static_assert(N == groupLanes<T>);
    const __m128i places = _mm_set1_epi64x(static_cast<int64_t>(0x8040201008040201));
    if constexpr (sizeof(T) == 1) {
        const __m128i spread =
            _mm_shuffle_epi8(_mm_cvtsi32_si128(static_cast<int>(set)), _mm_set_epi64x(0x0101010101010101, 0));
        return M{(typename M::Raw)_mm_cmpeq_epi8(_mm_and_si128(spread, places), places)};
    } else if constexpr (sizeof(T) == 2) {
        const __m128i each = _mm_cvtepu8_epi16(places);
        return M{(typename M::Raw)_mm_cmpeq_epi16(_mm_and_si128(_mm_set1_epi16(static_cast<Lum16s>(set)), each), each)};
    } else {
        const __m128i each = _mm_cvtepu8_epi32(places);
        return M{(typename M::Raw)_mm_cmpeq_epi32(_mm_and_si128(_mm_set1_epi32(static_cast<int>(set)), each), each)};
    }
}

/// The lanes that the next function fills at once.
template <class T>
inline constexpr int spreadLanes = groupLanes<T>;

/// Lane i is values[k], with k the number of bits of `starts` up to place i, where the bit of `inside` is set, and 0
/// elsewhere. No two starts are neighbours. Reads as many values as there are lanes.
template <class T>
[[gnu::always_inline]] inline Vec<T, spreadLanes<T>> spreadOverRuns(const T* values, Lum32u starts, Lum32u inside)
{
    using V = Vec<T, spreadLanes<T>>;
    const auto countsOf = [](Lum32u set) {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(countsUpTo[set & 255].data()));
    };
    const __m128i loaded = bits(load<spreadLanes<T>>(values).raw);
    const __m128i mask = bits(laneMask<T, spreadLanes<T>>(inside).raw);
    if constexpr (sizeof(T) == 1) {
        const __m128i before = _mm_set_epi64x(__builtin_popcount(starts & 255) * 0x0101010101010101, 0);
        const __m128i counts = _mm_add_epi8(_mm_unpacklo_epi64(countsOf(starts), countsOf(starts >> 8)), before);
        return {(typename V::Raw)_mm_and_si128(_mm_shuffle_epi8(loaded, counts), mask)};
    } else if constexpr (sizeof(T) == 2) {
        const __m128i twice = _mm_add_epi8(countsOf(starts), countsOf(starts));
        const __m128i control = _mm_add_epi8(_mm_unpacklo_epi8(twice, twice), _mm_set1_epi16(0x0100));
        return {(typename V::Raw)_mm_and_si128(_mm_shuffle_epi8(loaded, control), mask)};
    } else {
        const __m128i control = _mm_cvtepu8_epi32(countsOf(starts & 15));
        return {(typename V::Raw)_mm_and_si128((__m128i)_mm_permutevar_ps((__m128)loaded, control), mask)};
    }
}

}  // namespace lumcv::simd
