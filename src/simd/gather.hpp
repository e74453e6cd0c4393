// Elements from places that do not follow each other.
#pragma once

#include "simd/convert.hpp"
#include "simd/halves.hpp"

namespace lumcv::simd {

/// Two elements from each of N places.
template <class T, int N>
struct Neighbours
{
    Vec<T, N> first, second;
};

/// p[at[i]] and p[at[i] + 1] in 32-bit lanes; T has 16 bits as an integer, or 32.
template <int N, class T>
[[gnu::always_inline]] inline auto gatherNeighbours(const T* p, const Lum32s* at)
{
    using Lane = std::conditional_t<std::is_same_v<T, Lum32f>, Lum32f, Lum32s>;
    using V = Vec<Lane, N>;
    using Result = Neighbours<Lane, N>;
    if constexpr (N == 1)
        return Result{{p[at[0]]}, {p[at[0] + 1]}};
    else if constexpr (N > 4) {
        const auto lo = gatherNeighbours<N / 2>(p, at);
        const auto hi = gatherNeighbours<N / 2>(p, at + N / 2);
        return Result{joined(lo.first, hi.first), joined(lo.second, hi.second)};
    } else if constexpr (sizeof(T) == 2) {
        const auto pair = [=](int i) {
            Lum32s both;
            __builtin_memcpy(&both, p + at[i], sizeof both);
            return both;
        };
        const __m128i pairs = _mm_setr_epi32(pair(0), pair(1), pair(2), pair(3));
        return Result{V{(typename V::Raw)_mm_srai_epi32(_mm_slli_epi32(pairs, 16), 16)},
                      V{(typename V::Raw)_mm_srai_epi32(pairs, 16)}};
    } else {
        const auto pair = [=](int i) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + at[i])); };
        const __m128 low = _mm_castsi128_ps(_mm_unpacklo_epi64(pair(0), pair(1)));
        const __m128 high = _mm_castsi128_ps(_mm_unpacklo_epi64(pair(2), pair(3)));
        return Result{V{(typename V::Raw)_mm_shuffle_ps(low, high, 0x88)},
                      V{(typename V::Raw)_mm_shuffle_ps(low, high, 0xDD)}};
    }
}

/// The sum of each vector's lanes, added from the first to the last.
[[gnu::always_inline]] inline Vec<Lum32f, 4> sumsOfLanes(Vec<Lum32f, 4> a, Vec<Lum32f, 4> b, Vec<Lum32f, 4> c,
                                                         Vec<Lum32f, 4> d)
{
    const __m128 lowAB = _mm_unpacklo_ps(a.raw, b.raw), highAB = _mm_unpackhi_ps(a.raw, b.raw);
    const __m128 lowCD = _mm_unpacklo_ps(c.raw, d.raw), highCD = _mm_unpackhi_ps(c.raw, d.raw);
    const __m128 firstTwo = _mm_add_ps(_mm_movelh_ps(lowAB, lowCD), _mm_movehl_ps(lowCD, lowAB));
    return {_mm_add_ps(_mm_add_ps(firstTwo, _mm_movelh_ps(highAB, highCD)), _mm_movehl_ps(highCD, highAB))};
}

/// The first `count` lanes, at most four; the others become -0, which adds nothing to anything.
[[gnu::always_inline]] inline Vec<Lum32f, 4> firstLanes(Vec<Lum32f, 4> v, int64_t count)
{
    static constexpr Lum32s kept[8] = {-1, -1, -1, -1, 0, 0, 0, 0};
    const __m128 mask = _mm_loadu_ps(reinterpret_cast<const float*>(kept + 4 - count));
    return {_mm_blendv_ps(_mm_set1_ps(-0.0f), v.raw, mask)};
}

}  // namespace lumcv::simd
