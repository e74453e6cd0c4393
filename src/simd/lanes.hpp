// Lanes that meet their neighbours: moves within groups of 16 bytes, and questions about all lanes of a vector.
#pragma once

#include "simd/arithmetic.hpp"

namespace lumcv::simd {

/// Lanes of T in a group of 16 bytes.
template <class T>
inline constexpr int groupLanes = 16 / static_cast<int>(sizeof(T));

/// The same bits as lanes of another type.
template <class To, class From, int N>
[[gnu::always_inline]] inline auto reinterpreted(Vec<From, N> v)
{
    using V = Vec<To, N* static_cast<int>(sizeof(From)) / static_cast<int>(sizeof(To))>;
    static_assert(kindOf<From, N> != Kind::scalar && sizeof(V) == sizeof v);
    if constexpr (kindOf<From, N> == Kind::pair)
        return V{reinterpreted<To>(v.lo), reinterpreted<To>(v.hi)};
    else
        return V{(typename V::Raw)v.raw};
}

/// Moves the lanes of each group up by d places; d lanes of `fill`, which has one value in all lanes, come in.
template <int d, class T, int N>
[[gnu::always_inline]] inline Vec<T, N> movedUp(Vec<T, N> v, Vec<T, N> fill)
{
    using V = Vec<T, N>;
    [[maybe_unused]] constexpr int shift = 16 - d * static_cast<int>(sizeof(T));
    if constexpr (kindOf<T, N> == Kind::pair)
        return {movedUp<d>(v.lo, fill.lo), movedUp<d>(v.hi, fill.hi)};
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_alignr_epi8(bits(v.raw), bits(fill.raw), shift)};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_alignr_epi8(bits(v.raw), bits(fill.raw), shift)};
#endif
#if defined(__AVX512BW__)
    else if constexpr (sizeof(V) == 64)
        return {(typename V::Raw)_mm512_alignr_epi8(bits(v.raw), bits(fill.raw), shift)};
#endif
    else if constexpr (shift == 8)
        return {(typename V::Raw)_mm256_unpacklo_pd((__m256d)fill.raw, (__m256d)v.raw)};
    else
        return {(typename V::Raw)_mm256_blend_ps(_mm256_permute_ps((__m256)v.raw, 0x90), (__m256)fill.raw, 0x11)};
}

/// Moves the lanes of each group down by d places; d lanes of `fill`, which has one value in all lanes, come in.
template <int d, class T, int N>
[[gnu::always_inline]] inline Vec<T, N> movedDown(Vec<T, N> v, Vec<T, N> fill)
{
    using V = Vec<T, N>;
    [[maybe_unused]] constexpr int shift = d * static_cast<int>(sizeof(T));
    if constexpr (kindOf<T, N> == Kind::pair)
        return {movedDown<d>(v.lo, fill.lo), movedDown<d>(v.hi, fill.hi)};
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_alignr_epi8(bits(fill.raw), bits(v.raw), shift)};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_alignr_epi8(bits(fill.raw), bits(v.raw), shift)};
#endif
#if defined(__AVX512BW__)
    else if constexpr (sizeof(V) == 64)
        return {(typename V::Raw)_mm512_alignr_epi8(bits(fill.raw), bits(v.raw), shift)};
#endif
    else if constexpr (shift == 8)
        return {(typename V::Raw)_mm256_unpackhi_pd((__m256d)v.raw, (__m256d)fill.raw)};
    else
        return {(typename V::Raw)_mm256_blend_ps(_mm256_permute_ps((__m256)v.raw, 0xF9), (__m256)fill.raw, 0x88)};
}

/// The last lane of a group in all its lanes.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> lastEverywhere(Vec<T, N> v)
{
    using V = Vec<T, N>;
    static_assert(N == groupLanes<T>);
    if constexpr (sizeof(T) == 8)
        return {(typename V::Raw)_mm_permute_pd((__m128d)v.raw, 3)};
    else if constexpr (sizeof(T) == 4)
        return {(typename V::Raw)_mm_permute_ps((__m128)v.raw, 0xFF)};
    else
        return {(typename V::Raw)_mm_shuffle_epi8(bits(v.raw),
                                                  sizeof(T) == 1 ? _mm_set1_epi8(15) : _mm_set1_epi16(0x0F0E))};
}

/// The first lane of a group in all its lanes.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> firstEverywhere(Vec<T, N> v)
{
    using V = Vec<T, N>;
    static_assert(N == groupLanes<T>);
    if constexpr (sizeof(T) == 8)
        return {(typename V::Raw)_mm_permute_pd((__m128d)v.raw, 0)};
    else if constexpr (sizeof(T) == 4)
        return {(typename V::Raw)_mm_permute_ps((__m128)v.raw, 0)};
    else
        return {(typename V::Raw)_mm_shuffle_epi8(bits(v.raw),
                                                  sizeof(T) == 1 ? _mm_setzero_si128() : _mm_set1_epi16(0x0100))};
}

/// Whether a < b in any lane, of floats or unsigned integers. A not-a-number is not less.
template <class T, int N>
[[gnu::always_inline]] inline bool anyLess(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (N == 1)
        return a.raw < b.raw;
#if defined(__AVX512BW__)
    else if constexpr (kindOf<T, N> == Kind::pair)
        return anyLess(a.lo, b.lo) || anyLess(a.hi, b.hi);
    else if constexpr (std::is_same_v<T, Lum32f> && sizeof a == 64)
        return _mm512_cmp_ps_mask(a.raw, b.raw, _CMP_LT_OQ) != 0;
    else if constexpr (std::is_same_v<T, Lum64f> && sizeof a == 64)
        return _mm512_cmp_pd_mask(a.raw, b.raw, _CMP_LT_OQ) != 0;
    else if constexpr (sizeof(T) == 1 && sizeof a == 64)
        return _mm512_cmplt_epu8_mask(bits(a.raw), bits(b.raw)) != 0;
    else if constexpr (sizeof(T) == 2 && sizeof a == 64)
        return _mm512_cmplt_epu16_mask(bits(a.raw), bits(b.raw)) != 0;
#endif
    else if constexpr (std::is_floating_point_v<T>) {
        if constexpr (kindOf<T, N> == Kind::pair)
            return anyLess(a.lo, b.lo) || anyLess(a.hi, b.hi);
        else {
            const auto less = a.raw < b.raw;
            if constexpr (sizeof less == 16)
                return _mm_movemask_epi8((__m128i)less) != 0;
            else
                return _mm256_movemask_ps((__m256)less) != 0;
        }
    } else {
        const auto excess = subtractSaturated(b, a);
        const auto any = []<int M>(const auto& self, Vec<T, M> v) {
            if constexpr (kindOf<T, M> == Kind::pair)
                return self(self, v.lo | v.hi);
            else if constexpr (sizeof v == 16)
                return !_mm_testz_si128(bits(v.raw), bits(v.raw));
            else
                return !_mm256_testz_si256(bits(v.raw), bits(v.raw));
        };
        return any(any, excess);
    }
}

/// Whether a == b in any lane, of floats or unsigned integers. A not-a-number equals nothing; zeros of both signs are
/// equal.
template <class T, int N>
[[gnu::always_inline]] inline bool anyEqual(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return anyEqual(a.lo, b.lo) || anyEqual(a.hi, b.hi);
    else if constexpr (N == 1)
        return a.raw == b.raw;
#if defined(__AVX512BW__)
    else if constexpr (sizeof a == 64) {
        if constexpr (std::is_same_v<T, Lum32f>)
            return _mm512_cmp_ps_mask(a.raw, b.raw, _CMP_EQ_OQ) != 0;
        else if constexpr (sizeof(T) == 1)
            return _mm512_cmpeq_epi8_mask(bits(a.raw), bits(b.raw)) != 0;
        else
            return _mm512_cmpeq_epi16_mask(bits(a.raw), bits(b.raw)) != 0;
    }
#endif
    else {
        const auto equal = a.raw == b.raw;
        if constexpr (sizeof equal == 16)
            return _mm_movemask_epi8((__m128i)equal) != 0;
#if defined(__AVX2__)
        else
            return _mm256_movemask_epi8((__m256i)equal) != 0;
#else
        else
            return _mm256_movemask_ps((__m256)equal) != 0;
#endif
    }
}

}  // namespace lumcv::simd
