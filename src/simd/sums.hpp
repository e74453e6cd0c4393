// Sums of integer lanes without loss: a vector of any width becomes one register of wider sums, whose lanes stand for
// no particular pixels, and at last a number.
#pragma once

#include "simd/bit_row.hpp"
#include "simd/byte_taps.hpp"

namespace lumcv::simd {

/// One register of T.
template <class T>
using Register = Vec<T, registerLanes<T>>;

/// The sum of |a - b| over all bytes; each lane grows by at most 8 * 255 for each register of a.
template <int N>
[[gnu::always_inline]] inline Register<uint64_t> differenceSums(Vec<Lum8u, N> a, Vec<Lum8u, N> b)
{
    using Sums = Register<uint64_t>;
    if constexpr (kindOf<Lum8u, N> == Kind::pair)
        return differenceSums(a.lo, b.lo) + differenceSums(a.hi, b.hi);
    else {
        static_assert(N == registerLanes<Lum8u>);
#if defined(__AVX512BW__)
        return {(typename Sums::Raw)_mm512_sad_epu8(bits(a.raw), bits(b.raw))};
#elif defined(__AVX2__)
        return {(typename Sums::Raw)_mm256_sad_epu8(bits(a.raw), bits(b.raw))};
#else
        return {(typename Sums::Raw)_mm_sad_epu8(bits(a.raw), bits(b.raw))};
#endif
    }
}

/// The sum of all bytes; each lane grows by at most 8 * 255 for each register.
template <int N>
[[gnu::always_inline]] inline Register<uint64_t> byteSums(Vec<Lum8u, N> v)
{
    return differenceSums(v, broadcast<N>(Lum8u{0}));
}

/// a[2 i] * b[2 i] + a[2 i + 1] * b[2 i + 1] for each pair of words, all of them within 0..255.
template <int N>
[[gnu::always_inline]] inline Register<Lum32u> pairProducts(Vec<Lum16s, N> a, Vec<Lum16s, N> b)
{
    static_assert(N == registerLanes<Lum16s>);
    using Sums = Register<Lum32u>;
#if defined(__AVX512BW__)
    return {(typename Sums::Raw)_mm512_madd_epi16(bits(a.raw), bits(b.raw))};
#elif defined(__AVX2__)
    return {(typename Sums::Raw)_mm256_madd_epi16(bits(a.raw), bits(b.raw))};
#else
    return {(typename Sums::Raw)_mm_madd_epi16(bits(a.raw), bits(b.raw))};
#endif
}

/// The sum of the squares of all bytes; each lane grows by at most 4 * 255 * 255 for each register.
template <int N>
[[gnu::always_inline]] inline Register<Lum32u> byteSquares(Vec<Lum8u, N> v)
{
    if constexpr (kindOf<Lum8u, N> == Kind::pair)
        return byteSquares(v.lo) + byteSquares(v.hi);
    else {
        const auto even = pairSums<1, 0>(v);
        const auto odd = pairSums<0, 1>(v);
        return pairProducts(even, even) + pairProducts(odd, odd);
    }
}

/// The sum of all words; each lane grows by at most 2 * 65535 for each register.
template <int N>
[[gnu::always_inline]] inline Register<Lum32u> wordSums(Vec<Lum16u, N> v)
{
    if constexpr (kindOf<Lum16u, N> == Kind::pair)
        return wordSums(v.lo) + wordSums(v.hi);
    else {
        const auto pairs = reinterpreted<Lum32u>(v);
        return {(pairs.raw & 0xffff) + (pairs.raw >> 16)};
    }
}

/// The squares of words as sums of products of their bytes: 65536 * high + 512 * mixed + low.
struct WordSquares
{
    Register<Lum32u> high, mixed, low;
};

[[gnu::always_inline]] inline WordSquares operator+(WordSquares a, WordSquares b)
{
    return {a.high + b.high, a.mixed + b.mixed, a.low + b.low};
}

/// The sum of the squares of all words; each lane of each sum grows by at most 2 * 255 * 255 for each register.
template <int N>
[[gnu::always_inline]] inline WordSquares wordSquares(Vec<Lum16u, N> v)
{
    if constexpr (kindOf<Lum16u, N> == Kind::pair)
        return wordSquares(v.lo) + wordSquares(v.hi);
    else {
        const auto bytes = reinterpreted<Lum8u>(v);
        const auto low = pairSums<1, 0>(bytes);
        const auto high = pairSums<0, 1>(bytes);
        return {pairProducts(high, high), pairProducts(high, low), pairProducts(low, low)};
    }
}

// The same sums in 64-bit lanes, which are added into without end.

[[gnu::always_inline]] inline Register<uint64_t> widened(Register<uint64_t> sums)
{
    return sums;
}

[[gnu::always_inline]] inline Register<uint64_t> widened(Register<Lum32u> sums)
{
    const auto pairs = reinterpreted<uint64_t>(sums);
    return {(pairs.raw & 0xffffffff) + (pairs.raw >> 32)};
}

[[gnu::always_inline]] inline Register<uint64_t> widened(WordSquares sums)
{
    return {(widened(sums.high).raw << 16) + (widened(sums.mixed).raw << 9) + widened(sums.low).raw};
}

/// The sum of all lanes.
[[gnu::always_inline]] inline uint64_t total(Register<uint64_t> sums)
{
    uint64_t sum = 0;
    for (int i = 0; i < registerLanes<uint64_t>; ++i)
        sum += sums.raw[i];
    return sum;
}

}  // namespace lumcv::simd
