// Pixels as operands of statistics: every element of a row or every third one, those that a mask keeps, and the first
// few where a row ends.
#pragma once

#include <array>

#include "simd/lanes.hpp"

namespace lumcv::simd {

/// For 16-byte groups of lanes of 1 or 2 bytes: takes from load `part` (0, 1, 2) of loadEveryThird() what it
/// contributes.
template <class T, int part>
[[gnu::always_inline]] inline __m128i thirdsOf(__m128i loaded)
{
    constexpr auto places = [] {
        constexpr int lanes = groupLanes<T>;
        constexpr int first[3] = {0, lanes, 2 * lanes - 2};
        std::array<uint64_t, 2> bytes{};
        for (int lane = 0; lane < lanes; ++lane) {
            const int owner = 3 * lane < lanes ? 0 : 3 * lane < 2 * lanes ? 1 : 2;
            for (int i = 0; i < static_cast<int>(sizeof(T)); ++i) {
                const int at = lane * static_cast<int>(sizeof(T)) + i;
                const int from = (3 * lane - first[part]) * static_cast<int>(sizeof(T)) + i;
                bytes[at / 8] |= static_cast<uint64_t>(owner == part ? from : 0x80) << at % 8 * 8;
            }
        }
        return bytes;
    }();
    return _mm_shuffle_epi8(loaded, _mm_set_epi64x(static_cast<int64_t>(places[1]), static_cast<int64_t>(places[0])));
}

/// The elements 0, 3, 6, ... of p: a channel of N pixels of three channels. Nothing behind the last one is read.
template <int N, class T>
[[gnu::always_inline]] inline Vec<T, N> loadEveryThird(const T* p)
{
    using V = Vec<T, N>;
    [[maybe_unused]] constexpr int behindHalf = 3 * N / 2;
    [[maybe_unused]] const auto group = [p](int64_t i) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    };
    if constexpr (N == 1)
        return {*p};
    else if constexpr (kindOf<T, N> == Kind::pair)
        return {loadEveryThird<N / 2>(p), loadEveryThird<N / 2>(p + behindHalf)};
    else if constexpr (std::is_same_v<T, Lum32f> && N == 4) {
        // lane i of the load from 2 * i on is element 3 * i
        const __m128 low = _mm_blend_ps(_mm_loadu_ps(p), _mm_loadu_ps(p + 2), 2);
        const __m128 high = _mm_blend_ps(_mm_loadu_ps(p + 4), _mm_loadu_ps(p + 6), 8);
        return V{_mm_blend_ps(low, high, 12)};
    } else if constexpr (std::is_same_v<T, Lum32f> && N == 8)
        return V{_mm256_insertf128_ps(_mm256_castps128_ps256(loadEveryThird<4>(p).raw),
                                      loadEveryThird<4>(p + behindHalf).raw, 1)};
#if defined(__AVX512BW__)
    else if constexpr (std::is_same_v<T, Lum32f>) {
        const __m512i early = _mm512_set_epi32(0, 0, 0, 0, 0, 30, 27, 24, 21, 18, 15, 12, 9, 6, 3, 0);
        const __m512i late = _mm512_set_epi32(31, 28, 25, 22, 19, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
        const __m512 first = _mm512_permutex2var_ps(_mm512_loadu_ps(p), early, _mm512_loadu_ps(p + 16));
        return V{_mm512_permutex2var_ps(first, late, _mm512_loadu_ps(p + 30))};
    } else if constexpr (sizeof(V) == 64)
        return {(typename V::Raw)_mm512_inserti64x4(_mm512_castsi256_si512(bits(loadEveryThird<N / 2>(p).raw)),
                                                    bits(loadEveryThird<N / 2>(p + behindHalf).raw), 1)};
#endif
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_set_m128i(bits(loadEveryThird<N / 2>(p + behindHalf).raw),
                                                  bits(loadEveryThird<N / 2>(p).raw))};
#endif
    else {
        const __m128i early = _mm_or_si128(thirdsOf<T, 0>(group(0)), thirdsOf<T, 1>(group(N)));
        return {(typename V::Raw)_mm_or_si128(early, thirdsOf<T, 2>(group(2 * N - 2)))};
    }
}

/// One channel of N pixels that have `channels` channels (1 or 3); p is the first one's element of that channel.
template <int N, int channels, class T>
[[gnu::always_inline]] inline Vec<T, N> loadPixels(const T* p)
{
    static_assert(channels == 1 || channels == 3);
    if constexpr (channels == 1)
        return load<N>(p);
    else
        return loadEveryThird<N>(p);
}

/// Calls body(at, std::integral_constant<int, size>) for blocks of 16, 8, 4, 2 or 1 bytes that cover a few bytes; the
/// last one may overlap the one before it.
template <class Body>
[[gnu::always_inline]] inline void eachFewBytes(int64_t bytes, Body body)
{
    const auto blocks = [=](auto size) {
        for (int64_t i = 0; i < bytes; i += size)
            body(i + size <= bytes ? i : bytes - size, size);
    };
    if (bytes >= 16)
        blocks(std::integral_constant<int, 16>{});
    else if (bytes >= 8)
        blocks(std::integral_constant<int, 8>{});
    else if (bytes >= 4)
        blocks(std::integral_constant<int, 4>{});
    else if (bytes >= 2)
        blocks(std::integral_constant<int, 2>{});
    else if (bytes == 1)
        blocks(std::integral_constant<int, 1>{});
}

[[gnu::always_inline]] inline void copyFew(void* to, const void* from, int64_t bytes)
{
    eachFewBytes(bytes, [=](int64_t at, auto size) {
        __builtin_memcpy(static_cast<char*>(to) + at, static_cast<const char*>(from) + at, size);
    });
}

/// A few pixels of one value, each of pixelBytes.
template <int pixelBytes>
[[gnu::always_inline]] inline void fillFew(void* to, const void* pixel, int64_t pixels)
{
    if constexpr (16 % pixelBytes == 0) {
        char pattern[16];
        for (int i = 0; i < 16; i += pixelBytes)
            __builtin_memcpy(pattern + i, pixel, pixelBytes);
        eachFewBytes(pixels * pixelBytes,
                     [=](int64_t at, auto size) { __builtin_memcpy(static_cast<char*>(to) + at, pattern, size); });
    } else
        for (int64_t i = 0; i < pixels; ++i)
            __builtin_memcpy(static_cast<char*>(to) + i * pixelBytes, pixel, pixelBytes);
}

#if defined(__AVX512BW__)
/// A bit for each of N mask bytes: set where the byte is not zero.
template <int N>
[[gnu::always_inline]] inline auto keptBits(const Lum8u* mask)
{
    const auto m = bits(load<N>(mask).raw);
    if constexpr (N == 16)
        return _mm_test_epi8_mask(m, m);
    else if constexpr (N == 32)
        return _mm256_test_epi8_mask(m, m);
    else
        return _mm512_test_epi8_mask(m, m);
}
#endif

/// All bits of a lane set where the mask byte is zero, none elsewhere.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> droppedLanes(const Lum8u* mask)
{
    using V = Vec<T, N>;
    static_assert(kindOf<T, N> == Kind::native && sizeof(V) <= 32);
    const auto droppedBytes = [mask] {
        if constexpr (N == 16)
            return _mm_cmpeq_epi8(bits(load<16>(mask).raw), _mm_setzero_si128());
        else if constexpr (N == 8)
            return _mm_cmpeq_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(mask)), _mm_setzero_si128());
        else
            return _mm_cmpeq_epi8(_mm_loadu_si32(mask), _mm_setzero_si128());
    };
    if constexpr (sizeof(T) == 1 && N == 16)
        return {(typename V::Raw)droppedBytes()};
    else if constexpr (sizeof(T) == 2 && N == 8)
        return {(typename V::Raw)_mm_cvtepi8_epi16(droppedBytes())};
    else if constexpr (sizeof(T) == 4 && N == 4)
        return {(typename V::Raw)_mm_cvtepi8_epi32(droppedBytes())};
#if defined(__AVX2__)
    else if constexpr (sizeof(T) == 1)
        return {(typename V::Raw)_mm256_cmpeq_epi8(bits(load<32>(mask).raw), _mm256_setzero_si256())};
    else if constexpr (sizeof(T) == 2)
        return {(typename V::Raw)_mm256_cvtepi8_epi16(droppedBytes())};
    else
        return {(typename V::Raw)_mm256_cvtepi8_epi32(droppedBytes())};
#else
    else {
        const __m128i dropped = droppedBytes();
        return {(typename V::Raw)_mm256_insertf128_si256(_mm256_castsi128_si256(_mm_cvtepi8_epi32(dropped)),
                                                         _mm_cvtepi8_epi32(_mm_srli_si128(dropped, 4)), 1)};
    }
#endif
}

/// v where the mask byte is not zero; 0 elsewhere, whatever stands there.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> keepWhere(const Lum8u* mask, Vec<T, N> v)
{
    using V = Vec<T, N>;
    if constexpr (kindOf<T, N> == Kind::pair)
        return {keepWhere(mask, v.lo), keepWhere(mask + N / 2, v.hi)};
    else if constexpr (N == 1)
        return {*mask ? v.raw : T{0}};
#if defined(__AVX512BW__)
    else if constexpr (sizeof(V) == 64) {
        if constexpr (sizeof(T) == 4)
            return {(typename V::Raw)_mm512_maskz_mov_epi32(keptBits<N>(mask), bits(v.raw))};
        else if constexpr (sizeof(T) == 2)
            return {(typename V::Raw)_mm512_maskz_mov_epi16(keptBits<N>(mask), bits(v.raw))};
        else
            return {(typename V::Raw)_mm512_maskz_mov_epi8(keptBits<N>(mask), bits(v.raw))};
    }
#endif
    else {
        typedef Lum32s Bits __attribute__((vector_size(sizeof(V))));
        return {(typename V::Raw)(~(Bits)droppedLanes<T, N>(mask).raw & (Bits)v.raw)};
    }
}

/// v where the mask byte is not zero; all bits set elsewhere: the greatest unsigned integer, or a not-a-number.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> fillWhereZero(const Lum8u* mask, Vec<T, N> v)
{
    using V = Vec<T, N>;
    if constexpr (kindOf<T, N> == Kind::pair)
        return {fillWhereZero(mask, v.lo), fillWhereZero(mask + N / 2, v.hi)};
#if defined(__AVX512BW__)
    else if constexpr (sizeof(V) == 64) {
        const __m512i ones = _mm512_set1_epi32(-1);
        if constexpr (sizeof(T) == 4)
            return {(typename V::Raw)_mm512_mask_mov_epi32(ones, keptBits<N>(mask), bits(v.raw))};
        else if constexpr (sizeof(T) == 2)
            return {(typename V::Raw)_mm512_mask_mov_epi16(ones, keptBits<N>(mask), bits(v.raw))};
        else
            return {(typename V::Raw)_mm512_mask_mov_epi8(ones, keptBits<N>(mask), bits(v.raw))};
    }
#endif
    else {
        typedef Lum32s Bits __attribute__((vector_size(sizeof(V))));
        return {(typename V::Raw)((Bits)droppedLanes<T, N>(mask).raw | (Bits)v.raw)};
    }
}

}  // namespace lumcv::simd
