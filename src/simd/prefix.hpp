// Running totals along a row, of bytes or their squares.
//
// Bytes are taken in groups of four, whose own totals need no neighbours; what came before is added to a whole group.
#pragma once

#include "simd/convert.hpp"
#include "simd/lanes.hpp"

namespace lumcv::simd {

/// Sums of bytes, and what a register of groups is made of: lane i of group g is the sum of the bytes 4 g to 4 g + i.
struct ByteSum
{
    static Lum32s of(Lum8u byte)
    {
        return byte;
    }

    template <int group>
    [[gnu::always_inline]] static __m128i groups(__m128i bytes)
    {
        const __m128i taken = _mm_set_epi32(0x01010101, 0x00010101, 0x00000101, 0x00000001);
        return _mm_madd_epi16(_mm_maddubs_epi16(_mm_shuffle_epi32(bytes, 0x55 * group), taken), _mm_set1_epi16(1));
    }

#if defined(__AVX2__)
    template <int group>
    [[gnu::always_inline]] static __m256i groups(__m256i bytesTwice)
    {
        const __m256i taken =
            _mm256_broadcastsi128_si256(_mm_set_epi32(0x01010101, 0x00010101, 0x00000101, 0x00000001));
        const __m256i spread =
            _mm256_shuffle_epi8(bytesTwice, _mm256_set_m128i(_mm_set1_epi32(0x03020100 + 0x04040404 * (group + 1)),
                                                             _mm_set1_epi32(0x03020100 + 0x04040404 * group)));
        return _mm256_madd_epi16(_mm256_maddubs_epi16(spread, taken), _mm256_set1_epi16(1));
    }
#endif
#if defined(__AVX512BW__)
    [[gnu::always_inline]] static __m512i groups(__m512i bytesFourTimes)
    {
        const __m512i taken = _mm512_broadcast_i32x4(_mm_set_epi32(0x01010101, 0x00010101, 0x00000101, 0x00000001));
        const __m512i spread = _mm512_shuffle_epi8(
            bytesFourTimes, _mm512_set_epi32(0x0f0e0d0c, 0x0f0e0d0c, 0x0f0e0d0c, 0x0f0e0d0c, 0x0b0a0908, 0x0b0a0908,
                                             0x0b0a0908, 0x0b0a0908, 0x07060504, 0x07060504, 0x07060504, 0x07060504,
                                             0x03020100, 0x03020100, 0x03020100, 0x03020100));
        return _mm512_madd_epi16(_mm512_maddubs_epi16(spread, taken), _mm512_set1_epi16(1));
    }
#endif
};

/// Sums of squares of bytes: the first two of a group and the last two are squared and added at a time.
struct ByteSquareSum
{
    static Lum32s of(Lum8u byte)
    {
        return byte * byte;
    }

    template <int group>
    [[gnu::always_inline]] static __m128i groups(__m128i bytes)
    {
        const __m128i first = _mm_shuffle_epi8(bytes, _mm_add_epi8(firstPair(), _mm_set1_epi8(4 * group)));
        const __m128i second = _mm_shuffle_epi8(bytes, _mm_add_epi8(secondPair(), _mm_set1_epi8(4 * group)));
        return _mm_add_epi32(_mm_madd_epi16(first, first), _mm_madd_epi16(second, second));
    }

#if defined(__AVX2__)
    template <int group>
    [[gnu::always_inline]] static __m256i groups(__m256i bytesTwice)
    {
        const __m256i start = _mm256_set_m128i(_mm_set1_epi8(4 * group + 4), _mm_set1_epi8(4 * group));
        const __m256i first =
            _mm256_shuffle_epi8(bytesTwice, _mm256_add_epi8(_mm256_broadcastsi128_si256(firstPair()), start));
        const __m256i second =
            _mm256_shuffle_epi8(bytesTwice, _mm256_add_epi8(_mm256_broadcastsi128_si256(secondPair()), start));
        return _mm256_add_epi32(_mm256_madd_epi16(first, first), _mm256_madd_epi16(second, second));
    }
#endif
#if defined(__AVX512BW__)
    [[gnu::always_inline]] static __m512i groups(__m512i bytesFourTimes)
    {
        const __m512i start = _mm512_set_epi64(0x0c0c0c0c0c0c0c0c, 0x0c0c0c0c0c0c0c0c, 0x0808080808080808,
                                               0x0808080808080808, 0x0404040404040404, 0x0404040404040404, 0, 0);
        const __m512i first =
            _mm512_shuffle_epi8(bytesFourTimes, _mm512_add_epi8(_mm512_broadcast_i32x4(firstPair()), start));
        const __m512i second =
            _mm512_shuffle_epi8(bytesFourTimes, _mm512_add_epi8(_mm512_broadcast_i32x4(secondPair()), start));
        return _mm512_add_epi32(_mm512_madd_epi16(first, first), _mm512_madd_epi16(second, second));
    }
#endif

  private:
    // The words of each lane of the first group, as places of bytes; 0x80 and more is a zero. 0x80 leaves room for the
    // places of the other groups.
    [[gnu::always_inline]] static __m128i firstPair()
    {
        return _mm_set_epi32(0x80018000, 0x80018000, 0x80018000, 0x80808000);
    }

    [[gnu::always_inline]] static __m128i secondPair()
    {
        return _mm_set_epi32(0x80038002, 0x80808002, 0x80808080, 0x80808080);
    }
};

/// How many lanes hold the total between steps of N pixels, all of them the same.
template <int N>
inline constexpr int totalLanes = N < registerLanes<Lum32s> ? N : registerLanes<Lum32s>;

template <int N>
using Total = Vec<Lum32s, totalLanes<N>>;

/// Its value.
template <int N>
[[gnu::always_inline]] inline Lum32s valueOf(Vec<Lum32s, N> total)
{
    if constexpr (N == 1)
        return total.raw;
    else
        return total.raw[0];
}

/// Lane i is the total with the terms of p[0] to p[i] added, modulo 2^32. The total becomes the last lane. N is 1, 4 or
/// 16.
template <class Term, int N>
[[gnu::always_inline]] inline Vec<Lum32s, N> runningTotals(const Lum8u* p, Total<N>& total)
{
    if constexpr (N == 1) {
        total = total + Vec<Lum32s, 1>{Term::of(*p)};
        return total;
    } else if constexpr (N == 4) {
        using V = Vec<Lum32s, 4>;
        const __m128i sums = _mm_add_epi32(Term::template groups<0>(_mm_loadu_si32(p)), bits(total.raw));
        total = {(V::Raw)_mm_shuffle_epi32(sums, 0xFF)};
        return {(V::Raw)sums};
    } else {
        static_assert(N == 16);
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
#if defined(__AVX512BW__)
        using V = Vec<Lum32s, 16>;
        const __m512i groups = Term::groups(_mm512_broadcast_i32x4(bytes));
        // the totals of the groups one, two and three before
        const __m512i one = _mm512_maskz_permutexvar_epi32(
            0xfff0, _mm512_set_epi32(11, 11, 11, 11, 7, 7, 7, 7, 3, 3, 3, 3, 0, 0, 0, 0), groups);
        const __m512i two = _mm512_maskz_permutexvar_epi32(
            0xff00, _mm512_set_epi32(7, 7, 7, 7, 3, 3, 3, 3, 0, 0, 0, 0, 0, 0, 0, 0), groups);
        const __m512i three = _mm512_maskz_permutexvar_epi32(0xf000, _mm512_set1_epi32(3), groups);
        const __m512i within = _mm512_add_epi32(_mm512_add_epi32(groups, one), _mm512_add_epi32(two, three));
        const __m512i sums = _mm512_add_epi32(within, bits(total.raw));
        total = {(V::Raw)_mm512_permutexvar_epi32(_mm512_set1_epi32(15), sums)};
        return {(V::Raw)sums};
#elif defined(__AVX2__)
        using V = Vec<Lum32s, 8>;
        const __m256i twice = _mm256_broadcastsi128_si256(bytes);
        const auto step = [&](__m256i groups) {
            const __m256i totals = _mm256_shuffle_epi32(groups, 0xFF);
            const __m256i within = _mm256_add_epi32(groups, _mm256_permute2x128_si256(totals, totals, 0x08));
            const __m256i sums = _mm256_add_epi32(within, bits(total.raw));
            total = {(V::Raw)_mm256_permutevar8x32_epi32(sums, _mm256_set1_epi32(7))};
            return V{(V::Raw)sums};
        };
        const V low = step(Term::template groups<0>(twice));
        return {low, step(Term::template groups<2>(twice))};
#else
        using V = Vec<Lum32s, 4>;
        const auto step = [&](__m128i groups) {
            const __m128i sums = _mm_add_epi32(groups, bits(total.raw));
            total = {(V::Raw)_mm_shuffle_epi32(sums, 0xFF)};
            return V{(V::Raw)sums};
        };
        const V a = step(Term::template groups<0>(bytes));
        const V b = step(Term::template groups<1>(bytes));
        const V c = step(Term::template groups<2>(bytes));
        return {{a, b}, {c, step(Term::template groups<3>(bytes))}};
#endif
    }
}

/// The same of floats, in the order of float integral images: of four pixels the first sums are formed by themselves,
/// and the total, the same in every lane, is added last.
[[gnu::always_inline]] inline Vec<Lum32f, 4> runningSums(Vec<Lum32f, 4> pixels, Vec<Lum32f, 4>& total)
{
    const auto zero = broadcast<4>(0.0f);
    const auto pairs = pixels + movedUp<1>(pixels, zero);
    const auto sums = pairs + movedUp<2>(pairs, zero) + total;
    total = lastEverywhere(sums);
    return sums;
}

}  // namespace lumcv::simd
