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

/// (sum + 32) >> 6.
template <class S, int N>
[[gnu::always_inline]] inline simd::Vec<S, N> sixtyFourth(simd::Vec<S, N> sum)
{
    return (sum + simd::broadcast<N>(S{32})) >> 6;
}

/// The values of destination columns 2 i and 2 i + 1; s is the sum at source element i.
template <int N, class S>
[[gnu::always_inline]] inline simd::Vec<S, N> evenValues(const S* s, int channels)
{
    return sixtyFourth(evenPlace(simd::load<N>(s - channels), simd::load<N>(s), simd::load<N>(s + channels)));
}

template <int N, class S>
[[gnu::always_inline]] inline simd::Vec<S, N> oddValues(const S* s, int channels)
{
    return sixtyFourth(oddPlace(simd::load<N>(s), simd::load<N>(s + channels)));
}

template <class T, int N>
[[gnu::always_inline]] inline simd::Vec<T, N> narrowed(simd::Vec<BinomialSum<T>, N> values)
{
    if constexpr (std::is_same_v<T, Lum8u>)
        return simd::narrowOnce<Lum8u>(values);
    else
        return simd::narrow<Lum16u>(values);
}

/// One destination pixel.
template <int channels, class T>
inline void spreadPixel(const BinomialSum<T>* sums, int64_t d, T* to)
{
    for (int c = 0; c < channels; ++c) {
        const BinomialSum<T>* const s = sums + d / 2 * channels + c;
        to[d * channels + c] = static_cast<T>((d % 2 ? oddValues<1>(s, channels) : evenValues<1>(s, channels)).raw);
    }
}

/// Spreads a row of sums over n destination pixels; the sums have a pixel's margin. `apart` has room for as many pixels
/// as the source row, twice.
template <int channels, class T>
[[gnu::flatten]] inline void spreadRow(const BinomialSum<T>* sums, int64_t n, T* apart, T* to)
{
    const int64_t pairs = n / 2;
    int64_t done = 0;
    if constexpr (channels == 1) {
        constexpr int lanes = simd::registerLanes<Lum16s>;
        const auto spread = [=](int64_t i) {
            const auto even = evenValues<lanes>(sums + i, 1);
            const auto odd = oddValues<lanes>(sums + i, 1);
            if constexpr (std::is_same_v<T, Lum8u>)
                simd::storePairs(to + 2 * i, even, odd);
            else
                simd::storePairs(to + 2 * i, narrowed<T>(even), narrowed<T>(odd));
        };
        if (pairs >= lanes) {
            for (int64_t i = 0; i < pairs - lanes; i += lanes)
                spread(i);
            spread(pairs - lanes);
            done = pairs;
        }
    } else {
        T* const even = apart;
        T* const odd = apart + pairs * channels;
        simd::eachAtLeastOnce<16>(0, pairs * channels, [=](int64_t x, auto lanes) {
            simd::store(even + x, narrowed<T>(evenValues<lanes>(sums + x, channels)));
            simd::store(odd + x, narrowed<T>(oddValues<lanes>(sums + x, channels)));
        });
        // four elements at a time, of which the next pixel overwrites the last one
        for (; done + 1 < pairs; ++done) {
            __builtin_memcpy(to + 6 * done, even + 3 * done, 4 * sizeof(T));
            __builtin_memcpy(to + 6 * done + 3, odd + 3 * done, 4 * sizeof(T));
        }
    }
    for (int64_t d = 2 * done; d < n; ++d)
        spreadPixel<channels>(sums, d, to);
}

template <int channels, class T>
void binomialUp(Plane<const T> src, LumiSizeL srcRoi, Plane<T> dst, LumiSizeL dstRoi, Room room)
{
    const int64_t elements = srcRoi.width * channels;
    auto* const sums = room.take<BinomialSum<T>>(elements + 2 * channels) + channels;
    auto* const apart = room.take<T>(2 * elements);
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
        spreadRow<channels>(sums, spread, apart, to);
        for (int64_t x = spread * channels; x < dstRoi.width * channels; ++x)  // the last pixel, at a rate above 2
            to[x] = to[x - channels];
    }
}

}  // namespace lumcv
