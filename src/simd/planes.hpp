// Several floats for each pixel, gathered from and spread to vectors of one of them each.
#pragma once

#include "simd/halves.hpp"

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
