// Sums of neighbouring bytes with small weights, in words. Multiplying adjacent bytes yields the sums of every second
// pixel, so those of even places stand apart from those of odd places until they are stored.
#pragma once

#include <array>

#include "simd/convert.hpp"

namespace lumcv::simd {

/// One word for each of N pixels.
template <int N>
struct SplitWords
{
    static_assert(N >= 16, "even and odd pixels are those of whole registers");
    Vec<Lum16s, N / 2> even, odd;
};

template <int N>
[[gnu::always_inline]] inline SplitWords<N> operator+(SplitWords<N> a, SplitWords<N> b)
{
    return {a.even + b.even, a.odd + b.odd};
}

template <int N>
[[gnu::always_inline]] inline SplitWords<N> operator-(SplitWords<N> a, SplitWords<N> b)
{
    return {a.even - b.even, a.odd - b.odd};
}

template <int N>
[[gnu::always_inline]] inline SplitWords<N> operator*(SplitWords<N> a, Lum16s factor)
{
    const auto factors = broadcast<N / 2>(factor);
    return {a.even * factors, a.odd * factors};
}

/// (a * factor) >> 16.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16s, N> highProduct(Vec<Lum16s, N> a, Lum16s factor)
{
    using V = Vec<Lum16s, N>;
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {highProduct(a.lo, factor), highProduct(a.hi, factor)};
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_mulhi_epi16(bits(a.raw), bits(broadcast<N>(factor).raw))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_mulhi_epi16(bits(a.raw), bits(broadcast<N>(factor).raw))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_mulhi_epi16(bits(a.raw), bits(broadcast<N>(factor).raw))};
#endif
}

/// (a * factor + 0x4000) >> 15.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16s, N> roundedProduct(Vec<Lum16s, N> a, Lum16s factor)
{
    using V = Vec<Lum16s, N>;
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {roundedProduct(a.lo, factor), roundedProduct(a.hi, factor)};
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_mulhrs_epi16(bits(a.raw), bits(broadcast<N>(factor).raw))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return {(typename V::Raw)_mm256_mulhrs_epi16(bits(a.raw), bits(broadcast<N>(factor).raw))};
#endif
#if defined(__AVX512BW__)
    else
        return {(typename V::Raw)_mm512_mulhrs_epi16(bits(a.raw), bits(broadcast<N>(factor).raw))};
#endif
}

template <int N>
[[gnu::always_inline]] inline SplitWords<N> highProduct(SplitWords<N> a, Lum16s factor)
{
    return {highProduct(a.even, factor), highProduct(a.odd, factor)};
}

template <int N>
[[gnu::always_inline]] inline SplitWords<N> roundedProduct(SplitWords<N> a, Lum16s factor)
{
    return {roundedProduct(a.even, factor), roundedProduct(a.odd, factor)};
}

/// even * v[2 i] + odd * v[2 i + 1] for each pair of bytes; both products fit a word together.
template <int even, int odd, int N>
[[gnu::always_inline]] inline Vec<Lum16s, N / 2> pairSums(Vec<Lum8u, N> v)
{
    static_assert(-128 <= even && even <= 127 && -128 <= odd && odd <= 127);
    static_assert((even < 0 ? -even : even) + (odd < 0 ? -odd : odd) <= 128, "255 * 128 fits a word");
    using V = Vec<Lum16s, N / 2>;
    if constexpr (kindOf<Lum8u, N> == Kind::pair)
        return {pairSums<even, odd>(v.lo), pairSums<even, odd>(v.hi)};
    else if constexpr (even == 1 && odd == 0)
        return {(typename V::Raw)v.raw & 0xff};
    else if constexpr (even == 0 && odd == 1) {
        typedef Lum16u Unsigned __attribute__((vector_size(sizeof(V))));
        return {(typename V::Raw)((Unsigned)v.raw >> 8)};
    } else {
        constexpr auto weights = static_cast<Lum16s>(static_cast<Lum8u>(even) | static_cast<Lum8u>(odd) << 8);
        const auto pairs = bits(broadcast<N / 2>(weights).raw);
        if constexpr (sizeof(V) == 16)
            return {(typename V::Raw)_mm_maddubs_epi16(bits(v.raw), pairs)};
#if defined(__AVX2__)
        else if constexpr (sizeof(V) == 32)
            return {(typename V::Raw)_mm256_maddubs_epi16(bits(v.raw), pairs)};
#endif
#if defined(__AVX512BW__)
        else
            return {(typename V::Raw)_mm512_maddubs_epi16(bits(v.raw), pairs)};
#endif
    }
}

/// The bytes as words.
template <int N>
[[gnu::always_inline]] inline SplitWords<N> evenOddWords(Vec<Lum8u, N> v)
{
    return {pairSums<1, 0>(v), pairSums<0, 1>(v)};
}

/// Bytes of a and of b in turn: a[0], b[0], a[1], b[1], and so on, N in all. Reads N / 2 of each.
template <int N>
[[gnu::always_inline]] inline Vec<Lum8u, N> loadInTurn(const Lum8u* a, const Lum8u* b)
{
    using V [[maybe_unused]] = Vec<Lum8u, N>;
    [[maybe_unused]] const auto wide = [](const Lum8u* p) { return reinterpret_cast<const __m128i*>(p); };
    if constexpr (kindOf<Lum8u, N> == Kind::pair)
        return {loadInTurn<N / 2>(a, b), loadInTurn<N / 2>(a + N / 4, b + N / 4)};
    else if constexpr (sizeof(V) == 16)
        return {(typename V::Raw)_mm_unpacklo_epi8(_mm_loadl_epi64(wide(a)), _mm_loadl_epi64(wide(b)))};
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32) {
        const __m128i first = _mm_loadu_si128(wide(a)), second = _mm_loadu_si128(wide(b));
        return {(typename V::Raw)_mm256_set_m128i(_mm_unpackhi_epi8(first, second), _mm_unpacklo_epi8(first, second))};
    }
#endif
#if defined(__AVX512BW__)
    else {
        const auto words = [](const Lum8u* p) { return bits(loadWords<N / 2>(p).raw); };
        return {(typename V::Raw)_mm512_or_si512(words(a), _mm512_slli_epi16(words(b), 8))};
    }
#endif
}

/// The sums of `count` neighbours of each of N pixels; s is the first pixel, and the middle weight falls on the pixel
/// itself. Reads (count - 1) / 2 pixels on both sides.
template <const auto& weights, int N>
[[gnu::always_inline]] inline SplitWords<N> tapSums(const Lum8u* s)
{
    constexpr int count = static_cast<int>(weights.size());
    static_assert(count == 3 || count == 5);
    constexpr int reach = count / 2;
    constexpr auto weight = [](int i) { return i < 0 || i >= count ? 0 : weights[static_cast<size_t>(i)]; };
    if constexpr (count == 3 && weight(0) == weight(1) && weight(1) == weight(2)) {
        // the pair that begins at the pixel itself belongs to the sums of both its pixels
        const auto both = pairSums<weight(0), weight(0)>(load<N>(s));
        return {both + pairSums<weight(0), 0>(load<N>(s - 1)), both + pairSums<0, weight(0)>(load<N>(s + 1))};
    } else {
        // a load for each pair of taps; the one behind the last tap has no weight
        const auto pair = [&]<int p>(std::integral_constant<int, p>) -> SplitWords<N> {
            const auto bytes = load<N>(s - reach + 2 * p);
            return {pairSums<weight(2 * p), weight(2 * p + 1)>(bytes),
                    pairSums<weight(2 * p - 1), weight(2 * p)>(bytes)};
        };
        const auto sums = pair(std::integral_constant<int, 0>{}) + pair(std::integral_constant<int, 1>{});
        if constexpr (count == 3)
            return sums;
        else
            return sums + pair(std::integral_constant<int, 2>{});
    }
}

/// The words in the order of their pixels.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16s, N> inOrder(SplitWords<N> a)
{
    using Half = Vec<Lum16s, N / 2>;
    if constexpr (kindOf<Lum16s, N / 2> == Kind::pair) {
        return {inOrder(SplitWords<N / 2>{a.even.lo, a.odd.lo}), inOrder(SplitWords<N / 2>{a.even.hi, a.odd.hi})};
    } else {
        const auto even = bits(a.even.raw);
        const auto odd = bits(a.odd.raw);
        const auto half = [](auto raw) { return Half{(typename Half::Raw)raw}; };
        if constexpr (sizeof(Half) == 16)
            return {half(_mm_unpacklo_epi16(even, odd)), half(_mm_unpackhi_epi16(even, odd))};
#if defined(__AVX2__)
        else if constexpr (sizeof(Half) == 32) {
            const auto low = _mm256_unpacklo_epi16(even, odd);
            const auto high = _mm256_unpackhi_epi16(even, odd);
            return {half(_mm256_permute2x128_si256(low, high, 0x20)), half(_mm256_permute2x128_si256(low, high, 0x31))};
        }
#endif
#if defined(__AVX512BW__)
        else {
            const auto low = _mm512_unpacklo_epi16(even, odd);
            const auto high = _mm512_unpackhi_epi16(even, odd);
            const auto first = _mm512_set_epi64(11, 10, 3, 2, 9, 8, 1, 0);
            const auto second = _mm512_set_epi64(15, 14, 7, 6, 13, 12, 5, 4);
            return {half(_mm512_permutex2var_epi64(low, first, high)),
                    half(_mm512_permutex2var_epi64(low, second, high))};
        }
#endif
    }
}

/// The words, all within 0..255, as bytes in the order of their pixels.
template <int N>
[[gnu::always_inline]] inline Vec<Lum8u, N> bytesInOrder(SplitWords<N> a)
{
    using V = Vec<Lum8u, N>;
    if constexpr (kindOf<Lum8u, N> == Kind::pair)
        return {bytesInOrder(SplitWords<N / 2>{a.even.lo, a.odd.lo}),
                bytesInOrder(SplitWords<N / 2>{a.even.hi, a.odd.hi})};
    else
        return {(typename V::Raw)(a.even | a.odd * broadcast<N / 2>(Lum16s{256})).raw};
}

}  // namespace lumcv::simd
