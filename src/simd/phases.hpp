// Bytes as single-precision numbers in four phases: those of the places 0, 4, 8, ..., then those of 1, 5, 9, ... and so
// on. The lowest byte of 32 bits needs no shuffling to become a number, and the neighbours of one phase are the others.
#pragma once

#include "simd/byte_taps.hpp"
#include "simd/word_sums.hpp"

namespace lumcv::simd {

/// The lanes for which each phase is a register.
inline constexpr int phasedLanes = 4 * registerLanes<Lum32f>;

/// Reads N + 3 bytes.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32f, N> loadPhases(const Lum8u* p)
{
    static_assert(N == phasedLanes);
    const auto phase = [p](int i) {
        using Phase = Vec<Lum32f, N / 4>;
#if defined(__AVX512BW__)
        return Phase{_mm512_cvtepi32_ps(_mm512_and_si512(_mm512_loadu_si512(p + i), _mm512_set1_epi32(255)))};
#else
        const __m256 lowest = _mm256_castsi256_ps(_mm256_set1_epi32(255));
        const __m256 units = _mm256_loadu_ps(reinterpret_cast<const Lum32f*>(p + i));
        return Phase{_mm256_cvtepi32_ps(_mm256_castps_si256(_mm256_and_ps(units, lowest)))};
#endif
    };
    return {{phase(0), phase(1)}, {phase(2), phase(3)}};
}

/// Four phases, saturated to bytes in the order of their places.
template <int M>
[[gnu::always_inline]] inline Vec<Lum8u, 4 * M> bytesOfPhases(Vec<Lum32s, M> a, Vec<Lum32s, M> b, Vec<Lum32s, M> c,
                                                              Vec<Lum32s, M> d)
{
    if constexpr (kindOf<Lum32s, M> == Kind::pair)
        return {bytesOfPhases(a.lo, b.lo, c.lo, d.lo), bytesOfPhases(a.hi, b.hi, c.hi, d.hi)};
    else {
        using V = Vec<Lum8u, 4 * M>;
        // each 16-byte group holds four bytes of a phase, then four of the next
        const auto packed =
            grouped<Lum8u>(grouped<Lum16s>(bits(a.raw), bits(b.raw)), grouped<Lum16s>(bits(c.raw), bits(d.raw)));
        const __m128i places = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
        if constexpr (sizeof(V) == 16)
            return {(typename V::Raw)_mm_shuffle_epi8(packed, places)};
#if defined(__AVX2__)
        else if constexpr (sizeof(V) == 32)
            return {(typename V::Raw)_mm256_shuffle_epi8(packed, _mm256_broadcastsi128_si256(places))};
#endif
#if defined(__AVX512BW__)
        else
            return {(typename V::Raw)_mm512_shuffle_epi8(packed, _mm512_broadcast_i32x4(places))};
#endif
    }
}

/// Four phases, saturated to words; two phases each are those of even and of odd places.
template <int M>
[[gnu::always_inline]] inline SplitWords<4 * M> wordsOfPhases(Vec<Lum32s, M> a, Vec<Lum32s, M> b, Vec<Lum32s, M> c,
                                                              Vec<Lum32s, M> d)
{
    if constexpr (kindOf<Lum32s, M> == Kind::pair) {
        const auto lo = wordsOfPhases(a.lo, b.lo, c.lo, d.lo), hi = wordsOfPhases(a.hi, b.hi, c.hi, d.hi);
        return {joined(lo.even, hi.even), joined(lo.odd, hi.odd)};
    } else {
        using Words = Vec<Lum16s, 2 * M>;
        const auto both = pairs(Words{(typename Words::Raw)grouped<Lum16s>(bits(a.raw), bits(b.raw))},
                                Words{(typename Words::Raw)grouped<Lum16s>(bits(c.raw), bits(d.raw))});
        return {both.low, both.high};
    }
}

/// Rounds to nearest, ties to even, saturates to T, and restores the order. The numbers lie within 32 bits.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> roundPhasesTo(Vec<Lum32f, N> v)
{
    static_assert(N == phasedLanes);
    const auto a = toNearest(v.lo.lo), b = toNearest(v.lo.hi), c = toNearest(v.hi.lo), d = toNearest(v.hi.hi);
    if constexpr (sizeof(T) == 1)
        return bytesOfPhases(a, b, c, d);
    else
        return inOrder(wordsOfPhases(a, b, c, d));
}

}  // namespace lumcv::simd
