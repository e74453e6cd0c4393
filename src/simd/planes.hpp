// Several floats for each pixel, gathered from and spread to vectors of one of them each.
#pragma once

#include "simd/convert.hpp"

namespace lumcv::simd {

/// The two 16-byte halves of eight lanes, each to its own place.
[[gnu::always_inline]] inline void storeHalves(Lum32f* low, Lum32f* high, __m256 v)
{
    _mm_storeu_ps(low, _mm256_castps256_ps128(v));
    _mm_storeu_ps(high, _mm256_extractf128_ps(v, 1));
}

/// Stores six floats for each of N pixels: a, b, c, d, e, f of the first one, then those of the next.
template <int N>
[[gnu::always_inline]] inline void storeSixes(Lum32f* p, Vec<Lum32f, N> a, Vec<Lum32f, N> b, Vec<Lum32f, N> c,
                                              Vec<Lum32f, N> d, Vec<Lum32f, N> e, Vec<Lum32f, N> f)
{
    static_assert(N == 1 || N == 8 || N == 16);
    if constexpr (N == 1) {
        store(p, a);
        store(p + 1, b);
        store(p + 2, c);
        store(p + 3, d);
        store(p + 4, e);
        store(p + 5, f);
    } else if constexpr (N == 16) {
        storeSixes(p, lowerHalf(a), lowerHalf(b), lowerHalf(c), lowerHalf(d), lowerHalf(e), lowerHalf(f));
        storeSixes(p + 48, upperHalf(a), upperHalf(b), upperHalf(c), upperHalf(d), upperHalf(e), upperHalf(f));
    } else {
        // pairs of floats, two pixels in each group of 16 bytes; three such groups make the twelve floats of two pixels
        const auto twoPixels = [](Lum32f* low, Lum32f* high, __m256 ab, __m256 cd, __m256 ef) {
            const __m256d first = (__m256d)ab, second = (__m256d)cd, third = (__m256d)ef;
            storeHalves(low, high, (__m256)_mm256_unpacklo_pd(first, second));
            storeHalves(low + 4, high + 4, (__m256)_mm256_shuffle_pd(third, first, 0xA));
            storeHalves(low + 8, high + 8, (__m256)_mm256_unpackhi_pd(second, third));
        };
        twoPixels(p, p + 24, _mm256_unpacklo_ps(a.raw, b.raw), _mm256_unpacklo_ps(c.raw, d.raw),
                  _mm256_unpacklo_ps(e.raw, f.raw));
        twoPixels(p + 12, p + 36, _mm256_unpackhi_ps(a.raw, b.raw), _mm256_unpackhi_ps(c.raw, d.raw),
                  _mm256_unpackhi_ps(e.raw, f.raw));
    }
}

/// Stores four floats for each of N pixels: a, b, c and 0 of the first one, then those of the next.
template <int N>
[[gnu::always_inline]] inline void storeQuads(Lum32f* p, Vec<Lum32f, N> a, Vec<Lum32f, N> b, Vec<Lum32f, N> c)
{
    static_assert(N == 1 || N == 8 || N == 16);
    if constexpr (N == 1) {
        store(p, a);
        store(p + 1, b);
        store(p + 2, c);
        p[3] = 0;
    } else if constexpr (N == 16) {
        storeQuads(p, lowerHalf(a), lowerHalf(b), lowerHalf(c));
        storeQuads(p + 32, upperHalf(a), upperHalf(b), upperHalf(c));
    } else {
        const auto ab01 = (__m256d)_mm256_unpacklo_ps(a.raw, b.raw), ab23 = (__m256d)_mm256_unpackhi_ps(a.raw, b.raw);
        const auto c01 = (__m256d)_mm256_unpacklo_ps(c.raw, _mm256_setzero_ps());
        const auto c23 = (__m256d)_mm256_unpackhi_ps(c.raw, _mm256_setzero_ps());
        storeHalves(p, p + 16, (__m256)_mm256_unpacklo_pd(ab01, c01));
        storeHalves(p + 4, p + 20, (__m256)_mm256_unpackhi_pd(ab01, c01));
        storeHalves(p + 8, p + 24, (__m256)_mm256_unpacklo_pd(ab23, c23));
        storeHalves(p + 12, p + 28, (__m256)_mm256_unpackhi_pd(ab23, c23));
    }
}

/// The first three of four floats for each of N pixels.
template <int N>
struct Triple
{
    Vec<Lum32f, N> a, b, c;
};

template <int N>
[[gnu::always_inline]] inline Triple<N> loadQuads(const Lum32f* p)
{
    static_assert(N == 1 || N == 8 || N == 16);
    using V = Vec<Lum32f, N>;
    if constexpr (N == 1)
        return {load<1>(p), load<1>(p + 1), load<1>(p + 2)};
    else if constexpr (N == 16) {
        const auto lo = loadQuads<8>(p);
        const auto hi = loadQuads<8>(p + 32);
        return {joined(lo.a, hi.a), joined(lo.b, hi.b), joined(lo.c, hi.c)};
    } else {
        const auto pixels = [p](int i) {
            return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(p + 4 * i)), _mm_loadu_ps(p + 4 * i + 16),
                                        1);
        };
        const __m256 q0 = pixels(0), q1 = pixels(1), q2 = pixels(2), q3 = pixels(3);
        const auto ab01 = (__m256d)_mm256_unpacklo_ps(q0, q1), ab23 = (__m256d)_mm256_unpacklo_ps(q2, q3);
        const auto c01 = (__m256d)_mm256_unpackhi_ps(q0, q1), c23 = (__m256d)_mm256_unpackhi_ps(q2, q3);
        return {V{(__m256)_mm256_unpacklo_pd(ab01, ab23)}, V{(__m256)_mm256_unpackhi_pd(ab01, ab23)},
                V{(__m256)_mm256_unpacklo_pd(c01, c23)}};
    }
}

/// The three bytes of each of N pixels, as floats.
template <int N>
[[gnu::always_inline]] inline Triple<N> loadTriples(const Lum8u* p)
{
    static_assert(N == 1 || N == 8 || N == 16);
    using V = Vec<Lum32f, N>;
    if constexpr (N == 1)
        return {toFloat(loadWidened<1>(p)), toFloat(loadWidened<1>(p + 1)), toFloat(loadWidened<1>(p + 2))};
    else if constexpr (N == 16) {
        const auto lo = loadTriples<8>(p);
        const auto hi = loadTriples<8>(p + 24);
        return {joined(lo.a, hi.a), joined(lo.b, hi.b), joined(lo.c, hi.c)};
    } else {
        // four pixels each; the second four are the last 12 of 16 bytes
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i last = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8));
        const auto channel = [=](int c) {
            const __m128i places = _mm_add_epi32(_mm_setr_epi32(0, 3, 6, 9), _mm_set1_epi32(c - 256));
            const __m128i low = _mm_shuffle_epi8(first, places);
            const __m128i high = _mm_shuffle_epi8(last, _mm_add_epi32(places, _mm_set1_epi32(4)));
            return V{_mm256_cvtepi32_ps(_mm256_insertf128_si256(_mm256_castsi128_si256(low), high, 1))};
        };
        return {channel(0), channel(1), channel(2)};
    }
}

/// Stores three bytes for each of N pixels, a, b and c, whose lanes are rounded as by roundTo().
template <int N>
[[gnu::always_inline]] inline void storeTriples(Lum8u* p, Vec<Lum32f, N> a, Vec<Lum32f, N> b, Vec<Lum32f, N> c)
{
    static_assert(N == 1 || N == 8 || N == 16);
    if constexpr (N == 1) {
        store(p, roundTo<Lum8u>(a));
        store(p + 1, roundTo<Lum8u>(b));
        store(p + 2, roundTo<Lum8u>(c));
    } else if constexpr (N == 16) {
        storeTriples(p, lowerHalf(a), lowerHalf(b), lowerHalf(c));
        storeTriples(p + 24, upperHalf(a), upperHalf(b), upperHalf(c));
    } else {
        const __m256i wideA = _mm256_cvtps_epi32(a.raw), wideB = _mm256_cvtps_epi32(b.raw);
        const __m256i wideC = _mm256_cvtps_epi32(c.raw);
        const auto fourPixels = [](Lum8u* to, __m128i fromA, __m128i fromB, __m128i fromC) {
            const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(fromA, fromB), _mm_packs_epi32(fromC, fromC));
            const __m128i order = _mm_setr_epi8(0, 4, 8, 1, 5, 9, 2, 6, 10, 3, 7, 11, -1, -1, -1, -1);
            const __m128i inOrder = _mm_shuffle_epi8(bytes, order);
            _mm_storel_epi64(reinterpret_cast<__m128i*>(to), inOrder);
            _mm_storeu_si32(to + 8, _mm_srli_si128(inOrder, 8));
        };
        fourPixels(p, _mm256_castsi256_si128(wideA), _mm256_castsi256_si128(wideB), _mm256_castsi256_si128(wideC));
        fourPixels(p + 12, _mm256_extractf128_si256(wideA, 1), _mm256_extractf128_si256(wideB, 1),
                   _mm256_extractf128_si256(wideC, 1));
    }
}

/// Stores N lanes as bytes, rounded as by roundTo().
template <int N>
[[gnu::always_inline]] inline void storeBytes(Lum8u* p, Vec<Lum32f, N> v)
{
    static_assert(N == 1 || N == 8 || N == 16);
    if constexpr (N == 8) {
        const __m256i wide = _mm256_cvtps_epi32(v.raw);
        const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(wide), _mm256_extractf128_si256(wide, 1));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packus_epi16(words, words));
    } else
        store(p, roundTo<Lum8u>(v));
}

/// Two floats for each of N pixels.
template <int N>
struct Couple
{
    Vec<Lum32f, N> a, b;
};

template <int N>
[[gnu::always_inline]] inline Couple<N> loadCouples(const Lum32f* p)
{
    static_assert(N == 1 || N == 8 || N == 16);
    using V = Vec<Lum32f, N>;
    if constexpr (N == 1)
        return {load<1>(p), load<1>(p + 1)};
    else if constexpr (N == 16) {
        const auto lo = loadCouples<8>(p);
        const auto hi = loadCouples<8>(p + 16);
        return {joined(lo.a, hi.a), joined(lo.b, hi.b)};
    } else {
        const auto pixels = [p](int i) {
            return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(p + i)), _mm_loadu_ps(p + i + 8), 1);
        };
        const __m256 q0 = pixels(0), q1 = pixels(4);
        return {V{_mm256_shuffle_ps(q0, q1, 0x88)}, V{_mm256_shuffle_ps(q0, q1, 0xDD)}};
    }
}

}  // namespace lumcv::simd
