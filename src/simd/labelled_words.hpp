// Pixels with their labels on top, one word each: a byte of each in 16 bits; in 32 bits three bytes and one, or a byte
// and a label of 16 bits. And what is seen in a plane of such words from one of them: its eight neighbours as lanes, in
// the order left, right, up, down, up-left, up-right, down-left, down-right.
#pragma once

#include "simd/lanes.hpp"

namespace lumcv::simd {

/// How many words are laid at a time.
template <int channels, class Label>
inline constexpr int laidWords = channels == 3        ? 4
                                 : sizeof(Label) == 1 ? 16
                                                      : 8;

/// How many pixels must be there to lay them: of three channels more are read than are laid.
template <int channels, class Label>
inline constexpr int readForWords = channels == 3 ? 6 : laidWords<channels, Label>;

template <int channels>
[[gnu::always_inline]] inline void layWords(Lum32u* words, const Lum8u* pixels, const Lum8u* labels)
{
    static_assert(channels == 3);
    const __m128i triples = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
    const __m128i apart =
        _mm_shuffle_epi8(triples, _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1));
    const __m128i tops = _mm_slli_epi32(_mm_cvtepu8_epi32(_mm_loadu_si32(labels)), 24);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words), _mm_or_si128(apart, tops));
}

template <int channels>
[[gnu::always_inline]] inline void layWords(Lum16u* words, const Lum8u* pixels, const Lum8u* labels)
{
    static_assert(channels == 1);
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(labels));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words), _mm_unpacklo_epi8(low, high));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words + 8), _mm_unpackhi_epi8(low, high));
}

template <int channels>
[[gnu::always_inline]] inline void layWords(Lum32u* words, const Lum8u* pixels, const Lum16u* labels)
{
    static_assert(channels == 1);
    const __m128i low = _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels)));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(labels));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words), _mm_unpacklo_epi16(low, high));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words + 4), _mm_unpackhi_epi16(low, high));
}

/// The labels of eight words.
[[gnu::always_inline]] inline void storeLabels(Lum8u* labels, const Lum16u* words)
{
    const __m128i tops = _mm_srli_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(words)), 8);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(labels), _mm_packus_epi16(tops, tops));
}

/// Shifted down, eight words of 32 bits become words of 16.
template <int places>
[[gnu::always_inline]] inline __m128i topsOf(__m128i first, __m128i second)
{
    return _mm_packus_epi32(_mm_srli_epi32(first, places), _mm_srli_epi32(second, places));
}

[[gnu::always_inline]] inline void storeLabels(Lum8u* labels, const Lum32u* words)
{
    const auto* const p = reinterpret_cast<const __m128i*>(words);
    const __m128i tops = topsOf<24>(_mm_loadu_si128(p), _mm_loadu_si128(p + 1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(labels), _mm_packus_epi16(tops, tops));
}

[[gnu::always_inline]] inline void storeLabels(Lum16u* labels, const Lum32u* words)
{
    const auto* const p = reinterpret_cast<const __m128i*>(words);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(labels), topsOf<16>(_mm_loadu_si128(p), _mm_loadu_si128(p + 1)));
}

/// Word by word, as each has been stored: a wide load would wait until words stored just before have reached the cache.
[[gnu::always_inline]] inline __m128i surroundingWords(const Lum16u* p, int64_t rowWords)
{
    const Lum16u* const above = p - rowWords;
    const Lum16u* const below = p + rowWords;
    __m128i words = _mm_cvtsi32_si128(p[-1]);
    words = _mm_insert_epi16(words, p[1], 1);
    words = _mm_insert_epi16(words, above[0], 2);
    words = _mm_insert_epi16(words, below[0], 3);
    words = _mm_insert_epi16(words, above[-1], 4);
    words = _mm_insert_epi16(words, above[1], 5);
    words = _mm_insert_epi16(words, below[-1], 6);
    return _mm_insert_epi16(words, below[1], 7);
}

struct SurroundingWords
{
    __m128i edges, corners;
};

[[gnu::always_inline]] inline SurroundingWords surroundingWords(const Lum32u* p, int64_t rowWords)
{
    const auto four = [](Lum32u a, Lum32u b, Lum32u c, Lum32u d) {
        __m128i words = _mm_cvtsi32_si128(static_cast<int>(a));
        words = _mm_insert_epi32(words, static_cast<int>(b), 1);
        words = _mm_insert_epi32(words, static_cast<int>(c), 2);
        return _mm_insert_epi32(words, static_cast<int>(d), 3);
    };
    const Lum32u* const above = p - rowWords;
    const Lum32u* const below = p + rowWords;
    return {four(p[-1], p[1], above[0], below[0]), four(above[-1], above[1], below[-1], below[1])};
}

/// The neighbours' labels, of a byte in 16-bit words and of 16 bits in wider ones.
[[gnu::always_inline]] inline Vec<Lum16u, 8> neighbourLabels(const Lum16u* p, int64_t rowWords)
{
    return {(Vec<Lum16u, 8>::Raw)_mm_srli_epi16(surroundingWords(p, rowWords), 8)};
}

[[gnu::always_inline]] inline Vec<Lum16u, 8> neighbourLabels(const Lum32u* p, int64_t rowWords)
{
    const SurroundingWords words = surroundingWords(p, rowWords);
    return {(Vec<Lum16u, 8>::Raw)topsOf<16>(words.edges, words.corners)};
}

/// The neighbours' labels, of a byte, and their differences from the pixel; of three channels the largest.
struct NeighbourSteps
{
    Vec<Lum16u, 8> differences, labels;
};

[[gnu::always_inline]] inline NeighbourSteps neighbourSteps(const Lum16u* p, int64_t rowWords)
{
    using V = Vec<Lum16u, 8>;
    const __m128i words = surroundingWords(p, rowWords);
    const __m128i pixels = _mm_and_si128(words, _mm_set1_epi16(0xff));
    const __m128i differences = _mm_abs_epi16(_mm_sub_epi16(pixels, _mm_set1_epi16(static_cast<short>(*p & 0xff))));
    return {V{(V::Raw)differences}, V{(V::Raw)_mm_srli_epi16(words, 8)}};
}

[[gnu::always_inline]] inline NeighbourSteps neighbourSteps(const Lum32u* p, int64_t rowWords)
{
    using V = Vec<Lum16u, 8>;
    const SurroundingWords words = surroundingWords(p, rowWords);
    const __m128i own = _mm_set1_epi32(static_cast<int>(*p));
    const auto largest = [own](__m128i pixels) {
        const __m128i d = _mm_or_si128(_mm_subs_epu8(pixels, own), _mm_subs_epu8(own, pixels));
        const __m128i all = _mm_max_epu8(_mm_max_epu8(d, _mm_srli_epi32(d, 8)), _mm_srli_epi32(d, 16));
        return _mm_and_si128(all, _mm_set1_epi32(0xff));
    };
    return {V{(V::Raw)_mm_packus_epi32(largest(words.edges), largest(words.corners))},
            V{(V::Raw)topsOf<24>(words.edges, words.corners)}};
}

struct LeastLane
{
    Lum32u value, lane;
};

/// The least lane, the first of several.
[[gnu::always_inline]] inline LeastLane leastLane(Vec<Lum16u, 8> v)
{
    const auto found = static_cast<Lum32u>(_mm_cvtsi128_si32(_mm_minpos_epu16(bits(v.raw))));
    return {found & 0xffff, found >> 16};
}

}  // namespace lumcv::simd
