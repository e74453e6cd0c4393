// Comparisons of all lanes: a mask says for each lane whether they hold, in the form that suits the level.
#pragma once

#include <bit>

#include "simd/arithmetic.hpp"

namespace lumcv::simd {

/// Whether masks of such vectors are bits in registers of their own.
template <class T, int N>
inline constexpr bool hasMaskRegister = N* static_cast<int>(sizeof(T)) == 64;

template <class T, int N, Kind kind = kindOf<T, N>>
struct Mask;

template <class T>
struct Mask<T, 1, Kind::scalar>
{
    bool raw;
};

template <class T, int N>
struct Mask<T, N, Kind::native>
{
    using Bits =
        std::conditional_t<N == 64, uint64_t,
                           std::conditional_t<N == 32, uint32_t, std::conditional_t<N == 16, uint16_t, uint8_t>>>;
    /// A bit for each lane, or a lane whose bits are all alike.
    using Raw = std::conditional_t<hasMaskRegister<T, N>, Bits, typename Vec<T, N>::Raw>;
    Raw raw;
};

template <class T, int N>
struct Mask<T, N, Kind::pair>
{
    Mask<T, N / 2> lo, hi;
};

/// a > b. A not-a-number is not greater.
template <class T, int N>
[[gnu::always_inline]] inline Mask<T, N> greater(Vec<T, N> a, Vec<T, N> b)
{
    using M = Mask<T, N>;
    if constexpr (kindOf<T, N> == Kind::pair)
        return {greater(a.lo, b.lo), greater(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {a.raw > b.raw};
#if defined(__AVX512BW__)
    else if constexpr (hasMaskRegister<T, N>) {
        if constexpr (std::is_same_v<T, Lum32f>)
            return M{_mm512_cmp_ps_mask(a.raw, b.raw, _CMP_GT_OQ)};
        else if constexpr (std::is_same_v<T, Lum32s>)
            return M{_mm512_cmpgt_epi32_mask(bits(a.raw), bits(b.raw))};
        else if constexpr (std::is_same_v<T, Lum8s>)
            return M{_mm512_cmpgt_epi8_mask(bits(a.raw), bits(b.raw))};
        else {
            static_assert(std::is_same_v<T, Lum16u>);
            return M{_mm512_cmpgt_epu16_mask(bits(a.raw), bits(b.raw))};
        }
    }
#endif
    else
        return M{(typename M::Raw)(a.raw > b.raw)};
}

/// a < b. A not-a-number is not less.
template <class T, int N>
[[gnu::always_inline]] inline Mask<T, N> less(Vec<T, N> a, Vec<T, N> b)
{
    return greater(b, a);
}

/// a <= b, of floats. A not-a-number is not.
template <int N>
[[gnu::always_inline]] inline Mask<Lum32f, N> atMost(Vec<Lum32f, N> a, Vec<Lum32f, N> b)
{
    using M = Mask<Lum32f, N>;
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {atMost(a.lo, b.lo), atMost(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {a.raw <= b.raw};
#if defined(__AVX512BW__)
    else if constexpr (hasMaskRegister<Lum32f, N>)
        return M{_mm512_cmp_ps_mask(a.raw, b.raw, _CMP_LE_OQ)};
#endif
    else
        return M{(typename M::Raw)(a.raw <= b.raw)};
}

/// a == b, of integers or single-precision floats. A not-a-number equals nothing; zeros of both signs are equal.
template <class T, int N>
[[gnu::always_inline]] inline Mask<T, N> equal(Vec<T, N> a, Vec<T, N> b)
{
    static_assert(std::is_integral_v<T> || std::is_same_v<T, Lum32f>);
    using M = Mask<T, N>;
    if constexpr (kindOf<T, N> == Kind::pair)
        return {equal(a.lo, b.lo), equal(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {a.raw == b.raw};
#if defined(__AVX512BW__)
    else if constexpr (hasMaskRegister<T, N>) {
        if constexpr (std::is_floating_point_v<T>)
            return M{_mm512_cmp_ps_mask(a.raw, b.raw, _CMP_EQ_OQ)};
        else if constexpr (sizeof(T) == 1)
            return M{_mm512_cmpeq_epi8_mask(bits(a.raw), bits(b.raw))};
        else if constexpr (sizeof(T) == 2)
            return M{_mm512_cmpeq_epi16_mask(bits(a.raw), bits(b.raw))};
        else
            return M{_mm512_cmpeq_epi32_mask(bits(a.raw), bits(b.raw))};
    }
#endif
    else
        return M{(typename M::Raw)(a.raw == b.raw)};
}

/// Whether the sign bits of a and b differ, those of zeros and of what is not a number too.
template <int N>
[[gnu::always_inline]] inline Mask<Lum32f, N> differInSign(Vec<Lum32f, N> a, Vec<Lum32f, N> b)
{
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return {differInSign(a.lo, b.lo), differInSign(a.hi, b.hi)};
    else if constexpr (N == 1)
        return {__builtin_signbit(a.raw) != __builtin_signbit(b.raw)};
    else {
        typedef Lum32s Lanes __attribute__((vector_size(sizeof a)));
        constexpr Lum32s one = 0x3F800000;
        const Lanes signedOne = (((Lanes)a.raw ^ (Lanes)b.raw) & INT32_MIN) | one;
        return greater(broadcast<N>(0.0f), Vec<Lum32f, N>{(typename Vec<Lum32f, N>::Raw)signedOne});
    }
}

/// The form in which masks take bit operations.
template <class T, int N>
[[gnu::always_inline]] inline auto maskLanes(Mask<T, N> mask)
{
    if constexpr (N == 1)
        return int{mask.raw};
    else if constexpr (std::is_floating_point_v<T> && !hasMaskRegister<T, N>) {
        typedef Lum32s Lanes __attribute__((vector_size(N * sizeof(Lum32s))));
        return (Lanes)mask.raw;
    } else
        return mask.raw;
}

template <class T, int N>
[[gnu::always_inline]] inline Mask<T, N> operator&(Mask<T, N> a, Mask<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {a.lo & b.lo, a.hi & b.hi};
    else
        return {(decltype(a.raw))(maskLanes(a) & maskLanes(b))};
}

template <class T, int N>
[[gnu::always_inline]] inline Mask<T, N> operator|(Mask<T, N> a, Mask<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {a.lo | b.lo, a.hi | b.hi};
    else
        return {(decltype(a.raw))(maskLanes(a) | maskLanes(b))};
}

/// a, but not b.
template <class T, int N>
[[gnu::always_inline]] inline Mask<T, N> without(Mask<T, N> a, Mask<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {without(a.lo, b.lo), without(a.hi, b.hi)};
    else
        return {(decltype(a.raw))(maskLanes(a) & ~maskLanes(b))};
}

/// x where the mask holds, otherwise y.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> select(Mask<T, N> mask, Vec<T, N> x, Vec<T, N> y)
{
    using V = Vec<T, N>;
    if constexpr (kindOf<T, N> == Kind::pair)
        return {select(mask.lo, x.lo, y.lo), select(mask.hi, x.hi, y.hi)};
    else if constexpr (N == 1)
        return mask.raw ? x : y;
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_blendv_epi8(bits(y.raw), bits(x.raw), bits(mask.raw))};
#if defined(__AVX512BW__)
    else if constexpr (hasMaskRegister<T, N>) {
        if constexpr (sizeof(T) == 1)
            return {(typename V::Raw)_mm512_mask_blend_epi8(mask.raw, bits(y.raw), bits(x.raw))};
        else if constexpr (sizeof(T) == 2)
            return {(typename V::Raw)_mm512_mask_blend_epi16(mask.raw, bits(y.raw), bits(x.raw))};
        else
            return {(typename V::Raw)_mm512_mask_blend_epi32(mask.raw, bits(y.raw), bits(x.raw))};
    }
#endif
#if defined(__AVX2__)
    else if constexpr (std::is_integral_v<T>)
        return {(typename V::Raw)_mm256_blendv_epi8(bits(y.raw), bits(x.raw), bits(mask.raw))};
#endif
    else  // not by the blend intrinsic: without AVX2, g++ makes branches of it
        return {(typename V::Raw)_mm256_or_ps(_mm256_and_ps((__m256)mask.raw, (__m256)x.raw),
                                              _mm256_andnot_ps((__m256)mask.raw, (__m256)y.raw))};
}

/// A bit for each lane, the first one lowest.
template <class T, int N>
[[gnu::always_inline]] inline uint64_t laneBits(Mask<T, N> mask)
{
    static_assert(N <= 64);
    if constexpr (kindOf<T, N> == Kind::pair)
        return laneBits(mask.lo) | laneBits(mask.hi) << (N / 2);
    else if constexpr (N == 1 || hasMaskRegister<T, N>)
        return mask.raw;
    else if constexpr (sizeof(T) == 4) {
        if constexpr (N == 4)
            return static_cast<Lum32u>(_mm_movemask_ps((__m128)mask.raw));
        else
            return static_cast<Lum32u>(_mm256_movemask_ps((__m256)mask.raw));
    } else if constexpr (sizeof(T) == 2) {
        if constexpr (N == 8)
            return static_cast<Lum32u>(_mm_movemask_epi8(_mm_packs_epi16(bits(mask.raw), _mm_setzero_si128())));
#if defined(__AVX2__)
        else
            return static_cast<Lum32u>(_mm_movemask_epi8(
                _mm_packs_epi16(_mm256_castsi256_si128(bits(mask.raw)), _mm256_extracti128_si256(bits(mask.raw), 1))));
#endif
    } else if constexpr (N == 16)
        return static_cast<Lum32u>(_mm_movemask_epi8(bits(mask.raw)));
#if defined(__AVX2__)
    else
        return static_cast<Lum32u>(_mm256_movemask_epi8(bits(mask.raw)));
#endif
}

/// Whether the mask holds in any lane.
template <class T, int N>
[[gnu::always_inline]] inline bool any(Mask<T, N> mask)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return any(mask.lo | mask.hi);
    else if constexpr (N == 1 || hasMaskRegister<T, N>)
        return mask.raw;
    else if constexpr (sizeof mask.raw == 16)
        return _mm_movemask_epi8(bits(mask.raw)) != 0;
#if defined(__AVX2__)
    else if constexpr (sizeof(T) < 4)
        return _mm256_movemask_epi8(bits(mask.raw)) != 0;
#endif
    else
        return _mm256_movemask_ps((__m256)mask.raw) != 0;
}

/// Whether any lane is not zero, of integers.
template <class T, int N>
[[gnu::always_inline]] inline bool anyNonZero(Vec<T, N> v)
{
    static_assert(std::is_integral_v<T>);
    if constexpr (kindOf<T, N> == Kind::pair)
        return anyNonZero(v.lo | v.hi);
    else if constexpr (N == 1)
        return v.raw != 0;
    else if constexpr (sizeof v == 16)
        return !_mm_testz_si128(bits(v.raw), bits(v.raw));
#if defined(__AVX512BW__)
    else if constexpr (sizeof v == 64)
        return _mm512_test_epi32_mask(bits(v.raw), bits(v.raw)) != 0;
#endif
    else
        return !_mm256_testz_si256(bits(v.raw), bits(v.raw));
}

/// The bits in which a and b differ, of floats; those of both halves of a pair together.
template <int N>
[[gnu::always_inline]] inline auto differences(Vec<Lum32f, N> a, Vec<Lum32f, N> b)
{
    if constexpr (kindOf<Lum32f, N> == Kind::pair)
        return differences(a.lo, b.lo) | differences(a.hi, b.hi);
    else if constexpr (N == 1)
        return std::bit_cast<Lum32s>(a.raw) ^ std::bit_cast<Lum32s>(b.raw);
    else {
        typedef Lum32s Lanes __attribute__((vector_size(N * sizeof(Lum32s))));
        return (Lanes)a.raw ^ (Lanes)b.raw;
    }
}

/// Whether the bits of a and b differ in any lane, of floats.
template <int N>
[[gnu::always_inline]] inline bool anyBitDiffers(Vec<Lum32f, N> a, Vec<Lum32f, N> b)
{
    const auto d = differences(a, b);
    if constexpr (N == 1)
        return d != 0;
    else if constexpr (sizeof d == 16)
        return !_mm_testz_si128(bits(d), bits(d));
#if defined(__AVX512BW__)
    else if constexpr (sizeof d == 64)
        return _mm512_test_epi32_mask(bits(d), bits(d)) != 0;
#endif
    else
        return !_mm256_testz_si256(bits(d), bits(d));
}

/// A bit for each lane that is not zero, the first one lowest, of integers.
template <class T, int N>
[[gnu::always_inline]] inline uint64_t nonZeroBits(Vec<T, N> v)
{
    constexpr uint64_t all = ~uint64_t{0} >> (64 - N);
    return ~laneBits(equal(v, broadcast<N>(T{0}))) & all;
}

}  // namespace lumcv::simd
