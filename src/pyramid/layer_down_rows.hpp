// Rows of a layer on the way down: the two passes of the kernel, and the sampling of the smoothed image.
//
// Integers are convolved as words, which 16u pixels become by subtracting 2^15; their sums are formed in 32 bits and
// wrap. Floats are added in the order of the taps.
#pragma once

#include "pyramid/layer_kernel.hpp"
#include "simd/simd.hpp"

namespace lumcv {

/// What the pixels of a source row become before they meet the taps.
template <class T>
using RowInput = std::conditional_t<std::is_same_v<T, Lum32f>, Lum32f, Lum16s>;

/// A sample of a row, and of the smoothed image: words with 5 and then 3 fractional bits from bytes.
template <class T>
using Smoothed =
    std::conditional_t<std::is_same_v<T, Lum32f>, Lum32f, std::conditional_t<std::is_same_v<T, Lum8u>, Lum16s, Lum32s>>;

/// A vector of words has at least the lanes of the rests.
inline constexpr int downLanes = simd::registerLanes<Lum16s> > 16 ? simd::registerLanes<Lum16s> : 16;

/// Calls with the number of taps as a constant, where it is a small one; 0 stands for any.
template <class Body>
void withTapCount(Lum32s kernelSize, Body body)
{
    if (kernelSize == 3)
        body(std::integral_constant<int, 3>{});
    else if (kernelSize == 5)
        body(std::integral_constant<int, 5>{});
    else
        body(std::integral_constant<int, 0>{});
}

template <int lanes, class T>
[[gnu::always_inline]] inline void convertLanes(const T* from, RowInput<T>* to)
{
    if constexpr (std::is_same_v<T, Lum8u>)
        simd::store(to, simd::loadWords<lanes>(from));
    else if constexpr (std::is_same_v<T, Lum16u>)
        simd::store(to, simd::centred(simd::load<lanes>(from)));
    else
        simd::store(to, simd::load<lanes>(from));
}

/// Converts n elements to what the taps take.
template <class T>
[[gnu::flatten]] inline void convertRow(const T* from, int64_t n, RowInput<T>* to)
{
    simd::eachAtLeastOnce<32>(0, n, [=](int64_t x, auto lanes) { convertLanes<lanes>(from + x, to + x); });
}

/// The same of n pairs of one-channel pixels: the first ones go to `even`, the second ones to `odd`.
template <class T>
[[gnu::flatten]] inline void convertPairs(const T* from, int64_t n, RowInput<T>* even, RowInput<T>* odd)
{
    simd::eachAtLeastOnce<32>(0, n, [=](int64_t x, auto lanes) {
        const auto halves = simd::loadEvenOdd<lanes>(from + 2 * x);
        if constexpr (std::is_same_v<T, Lum16u>) {
            simd::store(even + x, simd::centred(halves.even));
            simd::store(odd + x, simd::centred(halves.odd));
        } else {
            simd::store(even + x, halves.even);
            simd::store(odd + x, halves.odd);
        }
    });
}

/// Where the elements begin that the taps of a row meet: those of even taps and of odd ones `step` apart each.
template <class Element>
struct TapSources
{
    Element *even, *odd;
    int64_t step;

    Element* operator()(int64_t j) const
    {
        return (j % 2 ? odd : even) + j / 2 * step;
    }
    TapSources from(int64_t j) const
    {
        return {(*this)(j), (*this)(j + 1), step};
    }
};

/// The sum over `count` (or, for 0, kernelSize) taps of tap j times the elements from source(j) on; of words in 32
/// bits.
template <int count, int lanes, class Tap, class Source>
[[gnu::always_inline]] inline auto tapSum(const Tap* taps, Lum32s kernelSize, int64_t x, Source source)
{
    const Lum32s k = count ? count : kernelSize;
    const auto elements = [=](Lum32s j) { return simd::load<lanes>(source(j) + x); };
    if constexpr (std::is_same_v<Tap, Lum16s>) {
        auto sum = simd::products(elements(0), taps[0], elements(1), taps[1]);
        for (Lum32s j = 2; j + 1 < k; j += 2)
            sum = sum + simd::products(elements(j), taps[j], elements(j + 1), taps[j + 1]);
        return sum + simd::product(elements(k - 1), taps[k - 1]);
    } else {
        auto sum = elements(0) * simd::broadcast<lanes>(taps[0]);
        for (Lum32s j = 1; j < k; ++j)
            sum = sum + elements(j) * simd::broadcast<lanes>(taps[j]);
        return sum;
    }
}

/// The row pass: n elements, of which tap j meets those from source(j) on.
template <class T, int count>
[[gnu::flatten]] inline void rowPass(const LayerTap<T>* taps, Lum32s kernelSize, TapSources<RowInput<T>> source,
                                     int64_t n, Smoothed<T>* to)
{
    Lum32u centre = 0;  // what the words lack
    if constexpr (std::is_same_v<T, Lum16u>)
        for (Lum32s j = 0; j < kernelSize; ++j)
            centre += static_cast<Lum32u>(taps[j]) << 15;
    simd::eachAtLeastOnce<downLanes>(0, n, [=](int64_t x, auto lanes) {
        const auto sum = tapSum<count, lanes>(taps, kernelSize, x, source);
        if constexpr (std::is_same_v<T, Lum8u>)
            simd::store(to + x, simd::saturated(sum >> 8));
        else if constexpr (std::is_same_v<T, Lum16u>)
            simd::store(to + x, simd::inOrder((sum + static_cast<Lum32s>(centre)) >> 11));
        else
            simd::store(to + x, sum);
    });
}

/// Smoothed samples as pixels.
template <class T, int N>
[[gnu::always_inline]] inline simd::Vec<T, N> asPixels(simd::Vec<Smoothed<T>, N> v)
{
    if constexpr (std::is_same_v<T, Lum8u>)  // (v + 4) >> 3, without the carry that could be lost
        return simd::narrowOnce<Lum8u>(((v >> 2) + simd::broadcast<N>(Lum16s{1})) >> 1);
    else if constexpr (std::is_same_v<T, Lum16u>)
        return simd::narrow<Lum16u>(v);
    else
        return v;
}

/// What the column pass makes of its sums.
enum class ColumnResult
{
    Smoothed,  ///< samples of the smoothed image
    Pixels,    ///< the pixels of these samples
    Direct     ///< pixels in a single step
};

/// The column pass over n elements of kernelSize rows.
template <class T, int count, ColumnResult result, class Out>
[[gnu::flatten]] inline void columnPass(const LayerTap<T>* taps, Lum32s kernelSize, const Smoothed<T>* const* rows,
                                        int64_t n, Out* to)
{
    simd::eachAtLeastOnce<downLanes>(0, n, [=](int64_t x, auto lanes) {
        const auto finish = [=](auto smoothed) {
            if constexpr (result == ColumnResult::Smoothed)
                simd::store(to + x, smoothed);
            else
                simd::store(to + x, asPixels<T>(smoothed));
        };
        if constexpr (std::is_same_v<T, Lum16u>) {
            const Lum32s centre = count ? count / 2 : kernelSize / 2;
            const auto elements = [=](Lum32s j) { return simd::load<lanes>(rows[j] + x); };
            const auto tap = [=](Lum32s j) { return simd::broadcast<lanes>(Lum32s{taps[j]}); };
            auto sum = elements(centre) * tap(centre) + simd::broadcast<lanes>(Lum32s{1 << 14});
            for (Lum32s j = 0; j < centre; ++j)  // the order is free modulo 2^32
                sum = sum + (elements(j) + elements(2 * centre - j)) * tap(j);
            finish(sum >> 15);
        } else {
            const auto sum = tapSum<count, lanes>(taps, kernelSize, x, [=](Lum32s j) { return rows[j]; });
            if constexpr (std::is_same_v<T, Lum32f>)
                finish(sum);
            else if constexpr (result == ColumnResult::Direct)
                simd::store(to + x, simd::narrowOnce<Lum8u>(simd::saturated((sum + (1 << 17)) >> 18)));
            else
                finish(simd::saturated((sum + (1 << 14)) >> 15));
        }
    });
}

/// w * b + (1 - w) * a.
template <int N>
[[gnu::always_inline]] inline simd::Vec<Lum32f, N> mixed(simd::Vec<Lum32f, N> a, simd::Vec<Lum32f, N> b,
                                                         simd::Vec<Lum32f, N> w)
{
    return w * b + (simd::broadcast<N>(1.0f) - w) * a;
}

/// The sample between two, in lanes of 32 bits; of integers, truncated after adding a half.
template <class T, class Lane, int N>
[[gnu::always_inline]] inline simd::Vec<Smoothed<T>, N> between(simd::Vec<Lane, N> a, simd::Vec<Lane, N> b,
                                                                simd::Vec<Lum32f, N> w)
{
    if constexpr (std::is_same_v<T, Lum32f>)
        return mixed(a, b, w);
    else {
        const auto value = simd::truncated(mixed(simd::toFloat(a), simd::toFloat(b), w) + simd::broadcast<N>(0.5f));
        if constexpr (std::is_same_v<T, Lum8u>)
            return simd::narrowOnce<Lum16s>(value);
        else
            return value;
    }
}

/// Samples in lanes of 32 bits.
template <int N, class Sample>
[[gnu::always_inline]] inline auto loadWide(const Sample* p)
{
    if constexpr (sizeof(Sample) == 2)
        return simd::loadWidened<N>(p);
    else
        return simd::load<N>(p);
}

/// Where a destination coordinate falls between two samples.
struct Between
{
    int64_t index;
    Lum32f weight;

    Between(int64_t coordinate, Lum32f rate, int64_t side)
    {
        const Lum32f place = static_cast<Lum32f>(coordinate) * rate;
        const auto whole = static_cast<int64_t>(place);
        weight = place - static_cast<Lum32f>(whole);
        index = whole < side ? whole : side - 1;
    }
};

}  // namespace lumcv
