// The elements of even and of odd places, apart.
#pragma once

#include "simd/byte_taps.hpp"
#include "simd/lanes.hpp"

namespace lumcv::simd {

/// The elements 0, 2, 4, ... and 1, 3, 5, ... of 2 * N of them.
template <class T, int N>
struct EvenOdd
{
    Vec<T, N> even, odd;
};

/// Bytes become words, value for value.
template <int N>
[[gnu::always_inline]] inline EvenOdd<Lum16s, N> loadEvenOdd(const Lum8u* p)
{
    if constexpr (N == 1)
        return {{p[0]}, {p[1]}};
    else {
        const auto bytes = load<2 * N>(p);
        return {pairSums<1, 0>(bytes), pairSums<0, 1>(bytes)};
    }
}

template <int N>
[[gnu::always_inline]] inline EvenOdd<Lum16u, N> loadEvenOdd(const Lum16u* p)
{
    using V = Vec<Lum16u, N>;
    if constexpr (N == 1)
        return {{p[0]}, {p[1]}};
    else if constexpr (kindOf<Lum16u, N> == Kind::pair) {
        const auto lo = loadEvenOdd<N / 2>(p);
        const auto hi = loadEvenOdd<N / 2>(p + N);
        return {{lo.even, hi.even}, {lo.odd, hi.odd}};
    } else {
        // pairs of words as 32-bit lanes, of which packing keeps the values that fit a word
        const auto words = [](auto pairs) { return V{(typename V::Raw)pairs}; };
        const auto a = reinterpreted<Lum32s>(load<N>(p)).raw;
        const auto b = reinterpreted<Lum32s>(load<N>(p + N)).raw;
        return {words(packed<Lum16u>(bits(a & 0xffff), bits(b & 0xffff))),
                words(packed<Lum16u>(bits(a >> 16 & 0xffff), bits(b >> 16 & 0xffff)))};
    }
}

template <int N>
[[gnu::always_inline]] inline EvenOdd<Lum32f, N> loadEvenOdd(const Lum32f* p)
{
    using V = Vec<Lum32f, N>;
    if constexpr (N == 1)
        return {{p[0]}, {p[1]}};
    else if constexpr (kindOf<Lum32f, N> == Kind::pair) {
        const auto lo = loadEvenOdd<N / 2>(p);
        const auto hi = loadEvenOdd<N / 2>(p + N);
        return {{lo.even, hi.even}, {lo.odd, hi.odd}};
    } else if constexpr (N == 8) {
        const __m256 a = load<8>(p).raw;
        const __m256 b = load<8>(p + 8).raw;
        const __m256 lo = _mm256_permute2f128_ps(a, b, 0x20);
        const __m256 hi = _mm256_permute2f128_ps(a, b, 0x31);
        return {V{_mm256_shuffle_ps(lo, hi, 0x88)}, V{_mm256_shuffle_ps(lo, hi, 0xDD)}};
    }
#if defined(__AVX512BW__)
    else {
        const __m512i even = _mm512_set_epi32(30, 28, 26, 24, 22, 20, 18, 16, 14, 12, 10, 8, 6, 4, 2, 0);
        const __m512i odd = _mm512_set_epi32(31, 29, 27, 25, 23, 21, 19, 17, 15, 13, 11, 9, 7, 5, 3, 1);
        const __m512 a = load<16>(p).raw;
        const __m512 b = load<16>(p + 16).raw;
        return {V{_mm512_permutex2var_ps(a, even, b)}, V{_mm512_permutex2var_ps(a, odd, b)}};
    }
#endif
}

/// Stores the words of even and of odd places in turn.
template <int N>
[[gnu::always_inline]] inline void storePairs(Lum16u* p, Vec<Lum16u, N> even, Vec<Lum16u, N> odd)
{
    const SplitWords<2 * N> words{reinterpreted<Lum16s>(even), reinterpreted<Lum16s>(odd)};
    store(p, reinterpreted<Lum16u>(inOrder(words)));
}

/// The same as bytes; all words are within 0..255.
template <int N>
[[gnu::always_inline]] inline void storePairs(Lum8u* p, Vec<Lum16s, N> even, Vec<Lum16s, N> odd)
{
    store(p, bytesInOrder(SplitWords<2 * N>{even, odd}));
}

/// The words less 2^15, which takes all of them to signed words.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16s, N> centred(Vec<Lum16u, N> v)
{
    if constexpr (kindOf<Lum16u, N> == Kind::pair)
        return {centred(v.lo), centred(v.hi)};
    else if constexpr (N == 1)
        return {static_cast<Lum16s>(v.raw - 0x8000)};
    else
        return {(typename Vec<Lum16s, N>::Raw)(v.raw ^ static_cast<Lum16u>(0x8000))};
}

/// Undoes it.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16u, N> decentred(Vec<Lum16s, N> v)
{
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {decentred(v.lo), decentred(v.hi)};
    else if constexpr (N == 1)
        return {static_cast<Lum16u>(v.raw + 0x8000)};
    else
        return {(typename Vec<Lum16u, N>::Raw)v.raw ^ static_cast<Lum16u>(0x8000)};
}

/// Of four pixels of three bytes the first and third go to `even` and the others to `odd`, as words. Reads 16 bytes and
/// stores eight words to each, of which six are of use.
[[gnu::always_inline]] inline void separateTriples(const Lum8u* p, Lum16s* even, Lum16s* odd)
{
    const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i first = _mm_setr_epi8(0, -1, 1, -1, 2, -1, 6, -1, 7, -1, 8, -1, -1, -1, -1, -1);
    const __m128i second = _mm_setr_epi8(3, -1, 4, -1, 5, -1, 9, -1, 10, -1, 11, -1, -1, -1, -1, -1);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(even), _mm_shuffle_epi8(pixels, first));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(odd), _mm_shuffle_epi8(pixels, second));
}

}  // namespace lumcv::simd
