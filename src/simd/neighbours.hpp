// Neighbouring elements for interpolation: pairs of them as floats, and weighted sums in 32 bits. Multiplying adjacent
// words yields the sums of every second place, so those of even places stand apart from those of odd places until they
// are words again.
#pragma once

#include "simd/gather.hpp"
#include "simd/pairs.hpp"
#include "simd/wide_sums.hpp"

namespace lumcv::simd {

/// N pairs of elements that stand in a row, as single-precision numbers.
template <int N, class T>
[[gnu::always_inline]] inline Neighbours<Lum32f, N> loadNeighbours(const T* pairs)
{
    if constexpr (std::is_same_v<T, Lum32f>) {
        const auto both = loadEvenOdd<N>(pairs);
        return {both.even, both.odd};
    } else if constexpr (std::is_same_v<T, Lum8u>) {
        const auto both = loadEvenOdd<N>(pairs);
        return {toFloat(both.even), toFloat(both.odd)};
    } else {
        static_assert(std::is_same_v<T, Lum16u>);
        if constexpr (kindOf<Lum32s, N> == Kind::pair) {
            const auto lo = loadNeighbours<N / 2>(pairs), hi = loadNeighbours<N / 2>(pairs + N);
            return {joined(lo.first, hi.first), joined(lo.second, hi.second)};
        } else {
            using V = Vec<Lum32s, N>;
            const auto both = reinterpreted<Lum32s>(load<2 * N>(pairs)).raw;
            return {toFloat(V{both & 0xffff}), toFloat(V{both >> 16 & 0xffff})};
        }
    }
}

/// Four lanes, saturated to bytes.
[[gnu::always_inline]] inline void storeFour(Lum8u* p, Vec<Lum32s, 4> v)
{
    const __m128i words = _mm_packs_epi32(bits(v.raw), bits(v.raw));
    _mm_storeu_si32(p, _mm_packus_epi16(words, words));
}

/// Four lanes, saturated to words.
[[gnu::always_inline]] inline void storeFour(Lum16u* p, Vec<Lum32s, 4> v)
{
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packus_epi32(bits(v.raw), bits(v.raw)));
}

/// N elements, and those one place further.
template <int N>
struct NeighbourWords
{
    Vec<Lum16s, N> at, next;
};

/// Bytes become words, value for value. Reads N + 1 elements.
template <int N>
[[gnu::always_inline]] inline NeighbourWords<N> loadNeighbourWords(const Lum8u* p)
{
    return {loadWords<N>(p), loadWords<N>(p + 1)};
}

/// Words less 2^15. Reads N + 1 elements.
template <int N>
[[gnu::always_inline]] inline NeighbourWords<N> loadNeighbourWords(const Lum16u* p)
{
    return {centred(load<N>(p)), centred(load<N>(p + 1))};
}

template <int N>
using NeighbourSums = WideSums<ByParity, N>;

/// p[i] * first + p[i + 1] * second for each of N places, modulo 2^32.
template <int N>
[[gnu::always_inline]] inline NeighbourSums<N> neighbourProducts(NeighbourWords<N> p, Lum16s first, Lum16s second)
{
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {neighbourProducts(NeighbourWords<N / 2>{p.at.lo, p.next.lo}, first, second),
                neighbourProducts(NeighbourWords<N / 2>{p.at.hi, p.next.hi}, first, second)};
    else if constexpr (N == 1)
        return {Vec<Lum32s, 1>{p.at.raw} * Vec<Lum32s, 1>{first} + Vec<Lum32s, 1>{p.next.raw} * Vec<Lum32s, 1>{second}};
    else {
        const auto factors = inTurn<N>(first, second);
        return {neighbourProducts(p.at, factors), neighbourProducts(p.next, factors)};
    }
}

/// The bits from `lowest` on, 16 of them, of each sum, in the order of the places.
template <int lowest, int N>
[[gnu::always_inline]] inline Vec<Lum16u, N> wordsOf(NeighbourSums<N> a)
{
    static_assert(0 <= lowest && lowest <= 16);
    using V = Vec<Lum16u, N>;
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {wordsOf<lowest>(a.lo), wordsOf<lowest>(a.hi)};
    else if constexpr (N == 1)
        return {static_cast<Lum16u>(a.sum.raw >> lowest)};
    else {
        const auto even = bits(a.first.raw >> lowest);
        const auto odd = bits(wrapping(a.second) << (16 - lowest));
        if constexpr (sizeof(V) == 16)
            return {(typename V::Raw)_mm_blend_epi16(even, odd, 0xAA)};
#if defined(__AVX2__)
        else if constexpr (sizeof(V) == 32)
            return {(typename V::Raw)_mm256_blend_epi16(even, odd, 0xAA)};
#endif
#if defined(__AVX512BW__)
        else
            return {(typename V::Raw)_mm512_mask_blend_epi16(0xAAAAAAAA, even, odd)};
#endif
    }
}

/// N bytes, and those one place further.
template <int N>
struct NeighbourBytes
{
    Vec<Lum8u, N> at, next;
};

/// factors[0] * v[2 i] + factors[1] * v[2 i + 1] for each pair of bytes, with two signed bytes in each word of factors;
/// the sums fit words.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16s, N / 2> pairProducts(Vec<Lum8u, N> v, Vec<Lum16s, N / 2> factors)
{
    using V = Vec<Lum16s, N / 2>;
    if constexpr (kindOf<Lum8u, N> == Kind::pair)
        return {pairProducts(v.lo, factors.lo), pairProducts(v.hi, factors.hi)};
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_maddubs_epi16(bits(v.raw), bits(factors.raw))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_maddubs_epi16(bits(v.raw), bits(factors.raw))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_maddubs_epi16(bits(v.raw), bits(factors.raw))};
#endif
}

/// Bytes that stand in words, those of even and those of odd places, in their order.
template <int N>
[[gnu::always_inline]] inline Vec<Lum8u, 2 * N> merged(Vec<Lum16s, N> even, Vec<Lum16s, N> odd)
{
    using V = Vec<Lum8u, 2 * N>;
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {merged(even.lo, odd.lo), merged(even.hi, odd.hi)};
    else
        return {(typename V::Raw)(wrapping(even) | wrapping(odd) << 8)};
}

}  // namespace lumcv::simd
