// The next larger level at rate 2 under the kernel 1, 4, 6, 4, 1: even places see the taps 1, 6, 1, odd ones 4, 4.
//
// The pixel before the first one is the second one, and the last one repeats itself: so every place of an axis follows
// the same rule. Columns come first, into a row of sums with a pixel's margin at both ends.
#pragma once

#include <algorithm>

#include "frame/image.hpp"
#include "pyramid/layer_room.hpp"
#include "simd/simd.hpp"

namespace lumcv {

/// Eight times a byte fits a word, also 64 times; 16-bit pixels take 32 bits.
template <class T>
using BinomialSum = std::conditional_t<std::is_same_v<T, Lum8u>, Lum16s, Lum32s>;

template <int N, class T>
[[gnu::always_inline]] inline simd::Vec<BinomialSum<T>, N> loadForSum(const T* p)
{
    if constexpr (std::is_same_v<T, Lum8u>)
        return simd::loadWords<N>(p);
    else
        return simd::loadWidened<N>(p);
}

/// A whole multiple of a vector: shifts to the left are additions.
template <class V>
[[gnu::always_inline]] inline V fourTimes(V v)
{
    const auto twice = v + v;
    return twice + twice;
}

template <class V>
[[gnu::always_inline]] inline V evenPlace(V before, V at, V after)
{
    return before + after + fourTimes(at) + at + at;
}

template <class V>
[[gnu::always_inline]] inline V oddPlace(V at, V after)
{
    return fourTimes(at + after);
}

/// The eight-fold values of a destination row y before its columns are spread, for n elements.
template <class T>
[[gnu::flatten]] inline void sumColumns(const T* before, const T* at, const T* after, bool isOdd, int64_t n,
                                        BinomialSum<T>* sums)
{
    const auto loop = [=](auto combine) {
        simd::eachAtLeastOnce<16>(0, n, [=](int64_t x, auto lanes) {
            simd::store(sums + x, combine(loadForSum<lanes>(before + x), loadForSum<lanes>(at + x),
                                          loadForSum<lanes>(after + x)));
        });
    };
    if (isOdd)
        loop([](auto, auto b, auto c) { return oddPlace(b, c); });
    else
        loop([](auto a, auto b, auto c) { return evenPlace(a, b, c); });
}

/// (sum + 32) >> 6 as pixels.
template <class T, int N>
[[gnu::always_inline]] inline simd::Vec<T, N> sixtyFourth(simd::Vec<BinomialSum<T>, N> sum)
{
    const auto pixels = (sum + simd::broadcast<N>(BinomialSum<T>{32})) >> 6;
    if constexpr (std::is_same_v<T, Lum8u>)
        return simd::narrowOnce<Lum8u>(pixels);
    else
        return simd::narrow<Lum16u>(pixels);
}

/// Spreads a row of sums over n destination pixels; the sums have a pixel's margin.
template <int channels, class T>
[[gnu::flatten]] inline void spreadRow(const BinomialSum<T>* sums, int64_t n, T* to)
{
    for (int64_t x = 0; x < n * channels; ++x) {
        const int64_t d = x / channels;
        const BinomialSum<T>* const s = sums + d / 2 * channels + x % channels;
        const auto at = simd::load<1>(s);
        const auto after = simd::load<1>(s + channels);
        simd::store(to + x,
                    sixtyFourth<T>(d % 2 ? oddPlace(at, after) : evenPlace(simd::load<1>(s - channels), at, after)));
    }
}

template <int channels, class T>
void binomialUp(Plane<const T> src, LumiSizeL srcRoi, Plane<T> dst, LumiSizeL dstRoi, Room room)
{
    const int64_t elements = srcRoi.width * channels;
    auto* const sums = room.take<BinomialSum<T>>(elements + 2 * channels) + channels;
    const auto row = [=](int64_t i) {
        const int64_t mirrored = i < 0 ? 1 : i;
        return src.row(std::min(mirrored, srcRoi.height - 1));
    };
    for (int64_t y = 0; y < dstRoi.height; ++y) {
        const int64_t i = y / 2;
        sumColumns(row(i - 1), row(i), row(i + 1), y % 2 != 0, elements, sums);
        const int64_t second = srcRoi.width > 1 ? channels : 0;
        for (int c = 0; c < channels; ++c) {
            sums[c - channels] = sums[c + second];
            sums[elements + c] = sums[elements - channels + c];
        }
        const int64_t spread = std::min(dstRoi.width, 2 * srcRoi.width);
        T* const to = dst.row(y);
        spreadRow<channels>(sums, spread, to);
        for (int64_t x = spread * channels; x < dstRoi.width * channels; ++x)  // the last pixel, at a rate above 2
            to[x] = to[x - channels];
    }
}

}  // namespace lumcv
