// Sums over lanes: exact ones of integers and of their squares in wider lanes, and pixels as doubles.
// The order of integer lanes does not matter, so the sums stand in whatever lanes come cheapest.
#pragma once

#include "simd/bit_row.hpp"
#include "simd/convert.hpp"
#include "simd/pixels.hpp"

namespace lumcv::simd {

/// The lanes of T that hold sums over N elements of elementBytes: those of a register, or of N elements if that is
/// less.
template <class T, int N, int elementBytes>
using Sums = Vec<T, (N * elementBytes < integerRegisterBytes ? N * elementBytes : integerRegisterBytes) /
                        static_cast<int>(sizeof(T))>;

/// Sums of |a - b| of bytes: up to 8 of each register in a lane.
template <int N>
[[gnu::always_inline]] inline Sums<uint64_t, N, 1> sumsOfDifferences(Vec<Lum8u, N> a, Vec<Lum8u, N> b)
{
    using V = Sums<uint64_t, N, 1>;
    if constexpr (kindOf<Lum8u, N> == Kind::pair)
        return sumsOfDifferences(a.lo, b.lo) + sumsOfDifferences(a.hi, b.hi);
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_sad_epu8(bits(a.raw), bits(b.raw))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_sad_epu8(bits(a.raw), bits(b.raw))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_sad_epu8(bits(a.raw), bits(b.raw))};
#endif
}

/// Sums of bytes: up to 8 of each register in a lane.
template <int N>
[[gnu::always_inline]] inline Sums<uint64_t, N, 1> sumsOf(Vec<Lum8u, N> v)
{
    return sumsOfDifferences(v, broadcast<N>(Lum8u{0}));
}

/// a[0] * b[0] + a[1] * b[1] and so on: the products of two neighbours, added in 32 bits.
template <int N>
[[gnu::always_inline]] inline Sums<Lum32s, N, 2> neighbourProducts(Vec<Lum16s, N> a, Vec<Lum16s, N> b)
{
    using V = Sums<Lum32s, N, 2>;
    static_assert(kindOf<Lum16s, N> == Kind::native);
    if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_madd_epi16(bits(a.raw), bits(b.raw))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_madd_epi16(bits(a.raw), bits(b.raw))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_madd_epi16(bits(a.raw), bits(b.raw))};
#endif
}

/// Sums of the squares of bytes: 4 of each register in a lane, at most 4 * 65025 for each register of v.
template <int N>
[[gnu::always_inline]] inline Sums<Lum32s, N, 1> squareSumsOf(Vec<Lum8u, N> v)
{
    if constexpr (kindOf<Lum8u, N> == Kind::pair)
        return squareSumsOf(v.lo) + squareSumsOf(v.hi);
    else {
        const auto words = reinterpreted<Lum16u>(v);
        const Vec<Lum16u, N / 2> odd{words.raw >> 8};
        const auto even = reinterpreted<Lum16s>(words & broadcast<N / 2>(Lum16u{255}));
        return neighbourProducts(even, even) +
               neighbourProducts(reinterpreted<Lum16s>(odd), reinterpreted<Lum16s>(odd));
    }
}

/// Sums of words: 2 of each register in a lane.
template <int N>
[[gnu::always_inline]] inline Sums<Lum32s, N, 2> sumsOf(Vec<Lum16s, N> v)
{
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return sumsOf(v.lo) + sumsOf(v.hi);
    else
        return neighbourProducts(v, broadcast<N>(Lum16s{1}));
}

/// Two neighbours, taken as unsigned, added in 64 bits.
template <int N>
[[gnu::always_inline]] inline Vec<uint64_t, N / 2> widenedUnsigned(Vec<Lum32s, N> v)
{
    const auto pairs = reinterpreted<uint64_t>(v);
    return Vec<uint64_t, N / 2>{pairs.raw & 0xFFFFFFFFu} + Vec<uint64_t, N / 2>{pairs.raw >> 32};
}

/// Two neighbours, with their signs, added in 64 bits.
template <int N>
[[gnu::always_inline]] inline Vec<uint64_t, N / 2> widenedSigned(Vec<Lum32s, N> v)
{
    // 2^31 more makes them unsigned
    return widenedUnsigned(v + broadcast<N>(INT32_MIN)) - broadcast<N / 2>(uint64_t{1} << 32);
}

/// Sums of the squares of words: 4 of each register in a lane. Two squares of -32768 make 2^31, which is why the
/// products are unsigned.
template <int N>
[[gnu::always_inline]] inline Sums<uint64_t, N, 2> squareSumsOf(Vec<Lum16s, N> v)
{
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return squareSumsOf(v.lo) + squareSumsOf(v.hi);
    else
        return widenedUnsigned(neighbourProducts(v, v));
}

/// How many of N mask bytes are not zero.
template <int N>
[[gnu::always_inline]] inline Sums<uint64_t, N, 1> countsOf(const Lum8u* mask)
{
    return sumsOf(min(load<N>(mask), broadcast<N>(Lum8u{1})));
}

/// The sum of all lanes: the upper half is added to the lower one until a single lane is left.
template <class T, int N>
[[gnu::always_inline]] inline T total(Vec<T, N> v)
{
    std::array<T, N> lanes;
    store(lanes.data(), v);
    for (int half = N / 2; half > 0; half /= 2)
        for (int i = 0; i < half; ++i)
            lanes[i] = lanes[i] + lanes[i + half];
    return lanes[0];
}

/// One channel of N pixels in double precision; the conversions read memory.
template <int N, int channels>
[[gnu::always_inline]] inline Vec<Lum64f, N> loadDoubles(const Lum32f* p)
{
    if constexpr (kindOf<Lum64f, N> == Kind::pair)
        return {loadDoubles<N / 2, channels>(p), loadDoubles<N / 2, channels>(p + N / 2 * channels)};
    else
        return toDouble(loadPixels<N, channels>(p));
}

/// sum + v * v for lanes that have been single precision: their squares are exact in double precision, so that it makes
/// no difference whether the product is rounded before it is added.
template <int N>
[[gnu::always_inline]] inline Vec<Lum64f, N> addExactSquare(Vec<Lum64f, N> sum, Vec<Lum64f, N> v)
{
    if constexpr (kindOf<Lum64f, N> == Kind::pair)
        return {addExactSquare(sum.lo, v.lo), addExactSquare(sum.hi, v.hi)};
#if defined(__FMA__)
    else if constexpr (N == 4)
        return {_mm256_fmadd_pd(v.raw, v.raw, sum.raw)};
#endif
#if defined(__AVX512BW__)
    else if constexpr (N == 8)
        return {_mm512_fmadd_pd(v.raw, v.raw, sum.raw)};
#endif
    else
        return sum + v * v;
}

}  // namespace lumcv::simd
