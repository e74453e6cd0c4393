// The two first derivatives of an image and their three products, a row at a time.
#pragma once

#include "filter/mask_steps.hpp"
#include "lumcv/types.h"

namespace lumcv {

/// Pixels that a row of products is made of at a time; the last group is a whole one, whatever lies behind the row.
inline constexpr int64_t productLanes = 16;

/// The products of n pixels, in whole groups. rows[j] is the row j of the mask at the first of them; two groups behind
/// the last pixel can be read.
template <class S>
using ProductRow = void (*)(const S* const* rows, int64_t n, Lum32f* out, int64_t pitch);

template <class S>
struct Gradient
{
    int reach;             ///< rows and columns around the pixel
    ProductRow<S> planes;  ///< dx * dx at `out`, dx * dy and dy * dy one and two `pitch` behind it
    ProductRow<S> quads;   ///< dx * dx, dx * dy, dy * dy and 0 for each pixel
    Lum32s largest;        ///< magnitude of a derivative of bytes
};

// dx and dy of floats: the steps as they are written, rows first.

template <class XAlong, class XAcross, class YAlong, class YAcross>
struct FloatGradient
{
    using Source = Lum32f;
    static constexpr int reach = XAlong::size / 2;

    template <class Step, int N>
    [[gnu::always_inline]] static auto along(const Lum32f* s)
    {
        return Step::of([s](int i) { return simd::load<N>(s + i - reach); });
    }

    template <int N, class Use>
    [[gnu::always_inline]] static void each(const Lum32f* const* rows, int64_t n, Use use)
    {
        for (int64_t x = 0; x < n; x += N)
            use(x, XAcross::of([=](int j) { return along<XAlong, N>(rows[j] + x); }),
                YAcross::of([=](int j) { return along<YAlong, N>(rows[j] + x); }));
    }
};

struct FloatCentralDifference
{
    using Source = Lum32f;
    static constexpr int reach = 1;

    template <int N, class Use>
    [[gnu::always_inline]] static void each(const Lum32f* const* rows, int64_t n, Use use)
    {
        for (int64_t x = 0; x < n; x += N)
            use(x, simd::load<N>(rows[1] + x + 1) - simd::load<N>(rows[1] + x - 1),
                simd::load<N>(rows[0] + x) - simd::load<N>(rows[2] + x));
    }
};

// dx and dy of bytes: exact in words, so columns first, which takes a step for each column and not for each tap.

/// Smooth is the step across the steps along the row (XAlong) and across the rows (YAcross).
template <class XAlong, class Smooth, class YAcross>
struct WordGradient
{
    using Source = Lum8u;
    static constexpr int reach = Smooth::size / 2;

    template <int N, class Use>
    [[gnu::always_inline]] static void each(const Lum8u* const* rows, int64_t n, Use use)
    {
        constexpr int64_t chunk = 256;
        alignas(64) Lum16s smooth[chunk + N], step[chunk + N];
        for (int64_t first = 0; first < n; first += chunk) {
            const int64_t count = n - first < chunk ? (n - first + N - 1) / N * N : chunk;
            // the column i lies at the index i + reach
            for (int64_t i = 0; i < count + 2 * reach; i += N) {
                const auto column = [=](int j) { return simd::loadWords<N>(rows[j] + first + i - reach); };
                simd::store(smooth + i, Smooth::of(column));
                simd::store(step + i, YAcross::of(column));
            }
            for (int64_t i = 0; i < count; i += N)
                use(first + i, simd::toFloat(XAlong::of([&](int t) { return simd::load<N>(smooth + i + t); })),
                    simd::toFloat(Smooth::of([&](int t) { return simd::load<N>(step + i + t); })));
        }
    }
};

struct WordCentralDifference
{
    using Source = Lum8u;
    static constexpr int reach = 1;

    template <int N, class Use>
    [[gnu::always_inline]] static void each(const Lum8u* const* rows, int64_t n, Use use)
    {
        for (int64_t x = 0; x < n; x += N)
            use(x, simd::toFloat(simd::loadWords<N>(rows[1] + x + 1) - simd::loadWords<N>(rows[1] + x - 1)),
                simd::toFloat(simd::loadWords<N>(rows[0] + x) - simd::loadWords<N>(rows[2] + x)));
    }
};

template <class Derivatives>
[[gnu::flatten]] void productPlanes(const typename Derivatives::Source* const* rows, int64_t n, Lum32f* out,
                                    int64_t pitch)
{
    Derivatives::template each<productLanes>(rows, n, [=](int64_t x, auto dx, auto dy) {
        simd::store(out + x, dx * dx);
        simd::store(out + pitch + x, dx * dy);
        simd::store(out + 2 * pitch + x, dy * dy);
    });
}

/// Stores the pixels of the row only, the last group included.
template <class Derivatives>
[[gnu::flatten]] void productQuads(const typename Derivatives::Source* const* rows, int64_t n, Lum32f* out, int64_t)
{
    Derivatives::template each<productLanes>(rows, n, [=](int64_t x, auto dx, auto dy) {
        if (x + productLanes <= n) {
            simd::storeQuads(out + 4 * x, dx * dx, dx * dy, dy * dy);
            return;
        }
        Lum32f group[4 * productLanes];
        simd::storeQuads(group, dx * dx, dx * dy, dy * dy);
        for (int64_t i = 0; x + i < n; ++i)
            simd::store(out + 4 * (x + i), simd::load<4>(group + 4 * i));
    });
}

template <class Derivatives>
constexpr Gradient<typename Derivatives::Source> gradientOf(Lum32s largest)
{
    return {Derivatives::reach, productPlanes<Derivatives>, productQuads<Derivatives>, largest};
}

// What the measures choose from.

template <class S>
struct Gradients;

template <>
struct Gradients<Lum8u>
{
    static constexpr auto sobel3 = gradientOf<WordGradient<Difference3, Smooth3, NegatedDifference3>>(4 * 255);
    static constexpr auto sobelNegated3 =
        gradientOf<WordGradient<NegatedDifference3, Smooth3, NegatedDifference3>>(4 * 255);
    static constexpr auto scharr3 =
        gradientOf<WordGradient<NegatedDifference3, ScharrSmooth3, NegatedDifference3>>(16 * 255);
    static constexpr auto sobel5 = gradientOf<WordGradient<Difference5, Smooth5, NegatedDifference5>>(48 * 255);
    static constexpr auto sobelNegated5 =
        gradientOf<WordGradient<NegatedDifference5, Smooth5, NegatedDifference5>>(48 * 255);
    static constexpr auto central = gradientOf<WordCentralDifference>(255);
};

template <>
struct Gradients<Lum32f>
{
    static constexpr auto sobel3 = gradientOf<FloatGradient<Difference3, Smooth3, Smooth3, NegatedDifference3>>(0);
    static constexpr auto sobelNegated3 =
        gradientOf<FloatGradient<NegatedDifference3, Smooth3, Smooth3, NegatedDifference3>>(0);
    static constexpr auto scharr3 =
        gradientOf<FloatGradient<NegatedDifference3, ScharrSmooth3, ScharrSmooth3, NegatedDifference3>>(0);
    static constexpr auto sobel5 = gradientOf<FloatGradient<Difference5, Smooth5, Smooth5, NegatedDifference5>>(0);
    static constexpr auto sobelNegated5 =
        gradientOf<FloatGradient<NegatedDifference5, Smooth5, Smooth5, NegatedDifference5>>(0);
    static constexpr auto central = gradientOf<FloatCentralDifference>(0);
};

}  // namespace lumcv
