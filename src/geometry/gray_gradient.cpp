// Gray gradient: three channels folded into one by a norm.
#include "frame/checks.hpp"
#include "frame/elementwise.hpp"
#include "lumcv/geometry.h"

namespace lumcv {
namespace {

using simd::Vec;

/// The norms fold pixels of which the channels stand in three vectors.
struct LargestChannel
{
    template <class T, int N>
    [[gnu::always_inline]] static Vec<T, N> fold(Vec<T, N> a, Vec<T, N> b, Vec<T, N> c)
    {
        if constexpr (std::is_same_v<T, Lum32f>)
            return simd::max(simd::max(simd::magnitude(a), simd::magnitude(b)), simd::magnitude(c));
        else
            return simd::max(simd::max(a, b), c);
    }
};

/// Of integers about a third of the sum.
struct ChannelSum
{
    template <int N>
    [[gnu::always_inline]] static Vec<Lum32f, N> fold(Vec<Lum32f, N> a, Vec<Lum32f, N> b, Vec<Lum32f, N> c)
    {
        return simd::magnitude(a) + simd::magnitude(b) + simd::magnitude(c);
    }

    template <int N>
    [[gnu::always_inline]] static Vec<Lum8u, N> fold(Vec<Lum8u, N> a, Vec<Lum8u, N> b, Vec<Lum8u, N> c)
    {
        if constexpr (N == 1)
            return {static_cast<Lum8u>(((a.raw + b.raw + c.raw) * 1365 + 2048) >> 12)};
        else {
            // both factors and the rounding term eight times as large; sums of 765 leave room for it
            const auto sums = simd::evenOddWords(a) + simd::evenOddWords(b) + simd::evenOddWords(c);
            return simd::bytesInOrder(simd::roundedProduct(sums, Lum16s{8 * 1365}));
        }
    }

    template <int N>
    [[gnu::always_inline]] static Vec<Lum16u, N> fold(Vec<Lum16u, N> a, Vec<Lum16u, N> b, Vec<Lum16u, N> c)
    {
        // 32768 less in each channel makes signed words of them, and 32768 less in the result packs it
        constexpr Lum16s factor = 5461;
        constexpr Lum32s offset = 3 * 32768 * factor + 8192 - (32768 << 14);
        const auto sums = simd::products(simd::centred(a), factor, simd::centred(b), factor) +
                          simd::product(simd::centred(c), factor) + offset;
        return simd::decentred(simd::saturated(sums >> 14));
    }
};

struct RootMeanSquare
{
    static constexpr Lum32f third = 0.33333334f;

    template <int N>
    [[gnu::always_inline]] static Vec<Lum32f, N> rootOfThird(Vec<Lum32f, N> squares)
    {
        return simd::root(squares * simd::broadcast<N>(third));
    }

    template <int N>
    [[gnu::always_inline]] static Vec<Lum32f, N> fold(Vec<Lum32f, N> a, Vec<Lum32f, N> b, Vec<Lum32f, N> c)
    {
        return rootOfThird(a * a + b * b + c * c);
    }

    /// Words within 0..255.
    template <int N>
    [[gnu::always_inline]] static Vec<Lum16s, N> foldWords(Vec<Lum16s, N> a, Vec<Lum16s, N> b, Vec<Lum16s, N> c)
    {
        const auto squares = simd::squares(simd::pairs(a, b)) + simd::widened(simd::reinterpreted<Lum16u>(c * c));
        return simd::saturated(simd::eachSum(
            []<int M>(Vec<Lum32s, M> sum) { return simd::toNearest(rootOfThird(simd::toFloat(sum))); }, squares));
    }

    template <int N>
    [[gnu::always_inline]] static Vec<Lum8u, N> fold(Vec<Lum8u, N> a, Vec<Lum8u, N> b, Vec<Lum8u, N> c)
    {
        if constexpr (N == 1) {
            const auto squares = static_cast<Lum32f>(a.raw * a.raw + b.raw * b.raw + c.raw * c.raw);
            return simd::roundTo<Lum8u>(rootOfThird(Vec<Lum32f, 1>{squares}));
        } else {
            const auto x = simd::evenOddWords(a), y = simd::evenOddWords(b), z = simd::evenOddWords(c);
            return simd::bytesInOrder(
                simd::SplitWords<N>{foldWords(x.even, y.even, z.even), foldWords(x.odd, y.odd, z.odd)});
        }
    }

    /// The sum of squares has up to 34 bits. Its two parts, of 18 bits each, are exact as floats, so that their sum is
    /// the only thing that is rounded.
    template <int N>
    [[gnu::always_inline]] static Vec<Lum16u, N> fold(Vec<Lum16u, N> a, Vec<Lum16u, N> b, Vec<Lum16u, N> c)
    {
        const auto upper = simd::widened(simd::highProduct(a, a)) + simd::widened(simd::highProduct(b, b)) +
                           simd::widened(simd::highProduct(c, c));
        const auto lower = simd::widened(a * a) + simd::widened(b * b) + simd::widened(c * c);
        const auto roots = simd::eachSum(
            []<int M>(Vec<Lum32s, M> high, Vec<Lum32s, M> low) {
                const auto squares = simd::toFloat(high) * simd::broadcast<M>(65536.0f) + simd::toFloat(low);
                return simd::toNearest(rootOfThird(squares));
            },
            upper, lower);
        return simd::decentred(simd::saturated(roots + -32768));
    }
};

template <class Norm, class T>
[[gnu::flatten]] void foldChannels(Plane<const T> src, Plane<T> dst, LumiSizeL size)
{
    constexpr int lanes = simd::registerLanes<T>;
    const int64_t srcRowBytes = size.width * 3 * static_cast<int64_t>(sizeof(T));
    const int64_t dstRowBytes = size.width * static_cast<int64_t>(sizeof(T));
    const auto bytesOf = [](const auto& plane) {
        return Plane<const Lum8u>{reinterpret_cast<const Lum8u*>(plane.pixels), plane.step};
    };
    const bool oneByOne = interferes(bytesOf(dst), dstRowBytes, bytesOf(src), srcRowBytes, size.height);
    if (src.step == srcRowBytes && dst.step == dstRowBytes)
        size = {size.width * size.height, 1};  // no gaps: one long row
    for (int64_t y = 0; y < size.height; ++y) {
        const T* const from = src.row(y);
        T* const to = dst.row(y);
        const auto pixels = [=](int64_t x, auto count) {
            simd::store(to + x, Norm::fold(simd::loadEveryThird<count>(from + 3 * x),
                                           simd::loadEveryThird<count>(from + 3 * x + 1),
                                           simd::loadEveryThird<count>(from + 3 * x + 2)));
        };
        if (oneByOne)
            simd::eachOnce<1>(0, size.width, pixels);
        else
            simd::eachAtLeastOnce<lanes>(0, size.width, pixels);
    }
}

template <class T>
LumStatus colorToGray(Plane<const T> src, Plane<T> dst, LumiSize size, LumiDistanceNorm norm)
{
    const auto checks = Checks{}
                            .notNull(src.pixels, dst.pixels)
                            .size(size)
                            .step(src, rowElements(size.width, 3))
                            .step(dst, size.width)
                            .alignment(src)
                            .alignment(dst)
                            .require(norm >= lumGradNormInf && norm <= lumGradNormL2, lumErrArgument);
    if (checks.failed())
        return checks.status();
    if (norm == lumGradNormInf)
        foldChannels<LargestChannel>(src, dst, widened(size));
    else if (norm == lumGradNormL1)
        foldChannels<ChannelSum>(src, dst, widened(size));
    else
        foldChannels<RootMeanSquare>(src, dst, widened(size));
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiGradientColorToGray_8u_C3C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                           LumiSize roiSize, LumiDistanceNorm norm)
{
    return colorToGray(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, norm);
}

LumStatus lumiGradientColorToGray_16u_C3C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiDistanceNorm norm)
{
    return colorToGray(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, norm);
}

LumStatus lumiGradientColorToGray_32f_C3C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiDistanceNorm norm)
{
    return colorToGray(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, norm);
}
