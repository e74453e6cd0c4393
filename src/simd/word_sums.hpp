// Sums in 32 bits of products of words. Their lanes stand in the order in which interleaving two registers of words
// leaves them, which packing undoes; so nothing is ever reordered.
#pragma once

#include "simd/convert.hpp"
#include "simd/halves.hpp"
#include "simd/wide_sums.hpp"

namespace lumcv::simd {

template <int N>
using WordSums = WideSums<ByHalves, N>;

/// The lanes of two vectors side by side, in the order of the sums that they go into.
template <int N, Kind kind = kindOf<Lum16s, N>>
struct WordPairs;

template <>
struct WordPairs<1, Kind::scalar>
{
    Vec<Lum16s, 1> first, second;
};

template <int N>
struct WordPairs<N, Kind::native>
{
    Vec<Lum16s, N> low, high;
};

template <int N>
struct WordPairs<N, Kind::pair>
{
    WordPairs<N / 2> lo, hi;
};

template <int N>
[[gnu::always_inline]] inline WordPairs<N> pairs(Vec<Lum16s, N> a, Vec<Lum16s, N> b)
{
    using V [[maybe_unused]] = Vec<Lum16s, N>;
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {pairs(a.lo, b.lo), pairs(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {a, b};
    else if constexpr (sizeof(V) == 16)
        return {V{(typename V::Raw)_mm_unpacklo_epi16(bits(a.raw), bits(b.raw))},
                V{(typename V::Raw)_mm_unpackhi_epi16(bits(a.raw), bits(b.raw))}};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {V{(typename V::Raw)_mm256_unpacklo_epi16(bits(a.raw), bits(b.raw))},
                V{(typename V::Raw)_mm256_unpackhi_epi16(bits(a.raw), bits(b.raw))}};
#endif
#if defined(__AVX512BW__)
    else
        return {V{(typename V::Raw)_mm512_unpacklo_epi16(bits(a.raw), bits(b.raw))},
                V{(typename V::Raw)_mm512_unpackhi_epi16(bits(a.raw), bits(b.raw))}};
#endif
}

/// a * ka + b * kb of pairs (a, b), modulo 2^32.
template <int N>
[[gnu::always_inline]] inline WordSums<N> products(WordPairs<N> p, Lum16s ka, Lum16s kb)
{
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {products(p.lo, ka, kb), products(p.hi, ka, kb)};
    else if constexpr (N == 1)
        return {Vec<Lum32s, 1>{p.first.raw} * Vec<Lum32s, 1>{ka} + Vec<Lum32s, 1>{p.second.raw} * Vec<Lum32s, 1>{kb}};
    else {
        const auto factors = inTurn<N>(ka, kb);
        return {neighbourProducts(p.low, factors), neighbourProducts(p.high, factors)};
    }
}

/// a * ka + b * kb, modulo 2^32.
template <int N>
[[gnu::always_inline]] inline WordSums<N> products(Vec<Lum16s, N> a, Lum16s ka, Vec<Lum16s, N> b, Lum16s kb)
{
    return products(pairs(a, b), ka, kb);
}

/// a * k.
template <int N>
[[gnu::always_inline]] inline WordSums<N> product(Vec<Lum16s, N> a, Lum16s k)
{
    return products(a, k, broadcast<N>(Lum16s{0}), Lum16s{0});
}

/// a * a + b * b of pairs (a, b), modulo 2^32.
template <int N>
[[gnu::always_inline]] inline WordSums<N> squares(WordPairs<N> p)
{
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {squares(p.lo), squares(p.hi)};
    else if constexpr (N == 1)
        return {Vec<Lum32s, 1>{p.first.raw} * Vec<Lum32s, 1>{p.first.raw} +
                Vec<Lum32s, 1>{p.second.raw} * Vec<Lum32s, 1>{p.second.raw}};
    else
        return {neighbourProducts(p.low, p.low), neighbourProducts(p.high, p.high)};
}

/// Unsigned words, value for value.
template <int N>
[[gnu::always_inline]] inline WordSums<N> widened(Vec<Lum16u, N> v)
{
    if constexpr (kindOf<Lum16u, N> == Kind::pair)
        return {widened(v.lo), widened(v.hi)};
    else if constexpr (N == 1)
        return {Vec<Lum32s, 1>{v.raw}};
    else {
        const auto withZeros = pairs(reinterpreted<Lum16s>(v), broadcast<N>(Lum16s{0}));
        return {reinterpreted<Lum32s>(withZeros.low), reinterpreted<Lum32s>(withZeros.high)};
    }
}

/// The sums as words, saturated.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16s, N> saturated(WordSums<N> a)
{
    using V = Vec<Lum16s, N>;
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {saturated(a.lo), saturated(a.hi)};
    else if constexpr (N == 1)
        return {clampTo<Lum16s>(a.sum.raw)};
    else
        return {(typename V::Raw)grouped<Lum16s>(bits(a.first.raw), bits(a.second.raw))};
}

/// The sums in the order of their words.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32s, N> inOrder(WordSums<N> a)
{
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {inOrder(a.lo), inOrder(a.hi)};
    else if constexpr (N == 1)
        return a.sum;
    else if constexpr (sizeof a.first == 16)
        return joined(a.first, a.second);
    else {
        using Half = Vec<Lum32s, N / 2>;
        [[maybe_unused]] const auto half = [](auto raw) { return Half{(typename Half::Raw)raw}; };
        [[maybe_unused]] const auto low = bits(a.first.raw);
        [[maybe_unused]] const auto high = bits(a.second.raw);
#if defined(__AVX2__)
        if constexpr (sizeof a.first == 32)
            return joined(half(_mm256_permute2x128_si256(low, high, 0x20)),
                          half(_mm256_permute2x128_si256(low, high, 0x31)));
#endif
#if defined(__AVX512BW__)
        if constexpr (sizeof a.first == 64) {
            const auto first = _mm512_set_epi64(11, 10, 3, 2, 9, 8, 1, 0);
            const auto second = _mm512_set_epi64(15, 14, 7, 6, 13, 12, 5, 4);
            return joined(half(_mm512_permutex2var_epi64(low, first, high)),
                          half(_mm512_permutex2var_epi64(low, second, high)));
        }
#endif
    }
}

/// a * a + b * b for each of N pairs of words, in their order and modulo 2^32.
template <int N>
[[gnu::always_inline]] inline Vec<Lum32s, N> squareSums(const Lum16s* a, const Lum16s* b)
{
    using V = Vec<Lum32s, N>;
    if constexpr (kindOf<Lum32s, N> == Kind::pair)
        return {squareSums<N / 2>(a, b), squareSums<N / 2>(a + N / 2, b + N / 2)};
    else if constexpr (N == 1)
        return Vec<Lum32s, 1>{*a} * Vec<Lum32s, 1>{*a} + Vec<Lum32s, 1>{*b} * Vec<Lum32s, 1>{*b};
    else if constexpr (N == 4) {
        const __m128i pairs = _mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(a)),
                                                 _mm_loadl_epi64(reinterpret_cast<const __m128i*>(b)));
        return {(typename V::Raw)_mm_madd_epi16(pairs, pairs)};
    }
#if defined(__AVX2__)
    else if constexpr (N == 8) {
        const auto loaded = [](const Lum16s* p) {
            return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
        };
        const __m256i pairs = _mm256_or_si256(loaded(a), _mm256_slli_epi32(loaded(b), 16));
        return {(typename V::Raw)_mm256_madd_epi16(pairs, pairs)};
    }
#endif
#if defined(__AVX512BW__)
    else {
        const auto loaded = [](const Lum16s* p) {
            return _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
        };
        const __m512i pairs = _mm512_or_si512(loaded(a), _mm512_slli_epi32(loaded(b), 16));
        return {(typename V::Raw)_mm512_madd_epi16(pairs, pairs)};
    }
#endif
}

}  // namespace lumcv::simd
