// Laplacian, lowpass and Sobel cross: fixed masks of 3x3 and 5x5 pixels.
#include "filter/mask_bands.hpp"
#include "filter/pipeline_sizes.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/large_image.hpp"
#include "lumcv/filter.h"

namespace lumcv {
namespace {

struct Laplacian3
{
    static constexpr int size = 3;
    using RowSteps = Steps<Neighbours3, EightfoldCentre3>;

    template <class Results>
    [[gnu::always_inline]] static auto across(Results r)
    {
        return times<2>(r(0, 0) + r(0, 2)) - r(1, 1);
    }
};

/// The same for words. Of the rows above, what the next one adds to is carried on, and what the one after it will begin
/// with: half of what their results would take.
struct WordLaplacian3
{
    static constexpr int size = 3;
    using RowSteps = Steps<TwofoldNeighbours3, EightfoldCentre3>;
    static constexpr int rows = 2;
    static constexpr bool hasRing = false;
    static constexpr int kept = 2;

    template <class Kept, class Value>
    [[gnu::always_inline]] static std::array<Value, 2> advance(Kept k, Value neighbours, Value centre,
                                                               Value nextNeighbours, Value nextCentre)
    {
        const Value above = k.load(0), below = k.load(1);
        k.store(0, neighbours - nextCentre);
        k.store(1, nextNeighbours);
        return {above + neighbours, below - centre + nextNeighbours};
    }
};

/// Two products in one pass: the second derivative of smoothed rows, and smoothing of the rows' second derivatives.
struct Laplacian5
{
    static constexpr int size = 5;
    using RowSteps = Steps<Smooth5, SecondDifference5>;

    template <class Results>
    [[gnu::always_inline]] static auto across(Results r)
    {
        return SecondDifference5::of([&](int j) { return r(0, j); }) + Smooth5::of([&](int j) { return r(1, j); });
    }
};

/// ((sum + 5) * 7280) >> 16 for each sum of nine bytes, which is the nearest integer to the mean, in one operation.
constexpr Lum16s ninth = 3641;
static_assert([] {
    for (int sum = 0; sum <= 9 * 255; ++sum)
        if ((sum * ninth + 0x4000) >> 15 != ((sum + 5) * 7280) >> 16)
            return false;
    return true;
}());

/// The mean of 9 or 25 elements from their sum. At most 25 * 255 = 6375, so the words stay positive.
template <int count, int N>
[[gnu::always_inline]] inline auto mean(simd::SplitWords<N> sum)
{
    return count == 9 ? simd::roundedProduct(sum, ninth) : simd::highProduct(sum, 2621);
}

template <int count, int N>
[[gnu::always_inline]] inline auto mean(simd::Vec<Lum32f, N> sum)
{
    return sum * simd::broadcast<N>(count == 9 ? 0.11111111f : 0.04f);
}

template <class Sum>
struct Lowpass
{
    static constexpr int size = Sum::size;
    using RowSteps = Steps<Sum>;

    template <class Results>
    [[gnu::always_inline]] static auto across(Results r)
    {
        return mean<size * size>(Sum::of([&](int j) { return r(0, j); }));
    }
};

/// Two neighbouring windows of three rows have two of them in common.
struct WordLowpass3
{
    static constexpr int size = 3;
    using RowSteps = Steps<Sum3>;
    static constexpr int rows = 2;
    static constexpr bool hasRing = false;
    static constexpr int kept = 2;

    template <class Kept, class Value>
    [[gnu::always_inline]] static std::array<Value, 2> advance(Kept k, Value first, Value second)
    {
        const Value common = k.load(1) + first;
        const Value above = k.load(0);
        k.store(0, first);
        k.store(1, second);
        return {mean<size * size>(above + common), mean<size * size>(common + second)};
    }
};

/// The sum of 25 words is cheaper kept than formed.
struct WordLowpass5
{
    static constexpr int size = 5;
    using RowSteps = Steps<Sum5>;
    static constexpr int rows = 1;
    static constexpr bool hasRing = true;
    static constexpr int kept = 1;

    template <class Kept, class Value>
    [[gnu::always_inline]] static std::array<Value, 1> advance(Kept k, Value entering)
    {
        const Value total = k.load(0) + (entering - k.exchange(entering));
        k.store(0, total);
        return {mean<size * size>(total)};
    }
};

// Scratch sizes. k is the mask's width.

constexpr int64_t pipelines_8u16s(int64_t width, int64_t k)
{
    return rowScratch_8u16s_C1.bytes(k) + columnScratch_16s(width, k, 1);
}

/// Lowpass and Sobel cross of 8u.
constexpr int64_t scratch_8u(int64_t width, int64_t k)
{
    return (2 * width + 30) / 32 * 32 * maskRingRows(k) + 24 * k + 368 + pipelines_8u16s(width, k);
}

constexpr int64_t sobelCrossScratch_32f(int64_t width, int64_t k)
{
    return (4 * width + 60) / 64 * 64 * maskRingRows(k) + 24 * k + 368 + pipelines_32f(width, k);
}

constexpr int64_t laplacianScratch_8u16s(int64_t width, int64_t k)
{
    return (4 * width + 60) / 64 * 64 * maskRingRows(k) + 48 * k + 576 + pipelines_8u16s(width, k);
}

constexpr int64_t laplacianScratch_32f(int64_t width, int64_t k)
{
    return (8 * width + 120) / 128 * 128 * maskRingRows(k) + 48 * k + 576 + pipelines_32f(width, k);
}

using Scratch = int64_t (*)(int64_t width, int64_t k);

LumStatus maskSize(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize, Scratch scratch)
{
    auto checks = Checks{}.notNull(pBufferSize).size(roiSize).require(isMask(mask), lumErrMaskSize);
    if (checks.failed())
        return checks.status();
    return storeSize(scratch(roiSize.width, mask % 10), pBufferSize);
}

/// What the exports hand on.
template <class S, class D>
struct MaskCall
{
    Plane<const S> src;
    Plane<D> dst;
    LumiSize roiSize;
    LumiMaskSize mask;
    LumiBorderType borderType;
    S borderValue;
    Lum8u* buffer;
};

/// The mask comes last in the documented order.
template <class S, class D>
LumStatus check(const MaskCall<S, D>& call)
{
    return Checks{}
        .notNull(call.src.pixels, call.dst.pixels, call.buffer)
        .size(call.roiSize)
        .step(call.src, call.roiSize.width)
        .step(call.dst, call.roiSize.width)
        .alignment(call.src)
        .alignment(call.dst)
        .require(isFilterBorder(call.borderType), lumErrBorder)
        .require(isMask(call.mask), lumErrMaskSize)
        .status();
}

template <class Mask3, class Mask5, class S, class D>
LumStatus fixedMask(const MaskCall<S, D>& call, Scratch scratch)
{
    const LumStatus status = check(call);
    if (status != lumOk)
        return status;
    // an 8u lowpass of exactly that many pixels is not yet large
    constexpr bool isExclusive = sizeof(D) == 1;
    const int64_t pixels = int64_t{call.roiSize.width} * call.roiSize.height - isExclusive;
    const MaskImages<S, D> images{call.src,
                                  call.dst,
                                  widened(call.roiSize),
                                  Border(call.borderType),
                                  call.borderValue,
                                  isLargeImage(pixels, sizeof(S) == 1 ? 1 : 3)};
    LineSpace<Lum8u> space(call.buffer, scratch(call.roiSize.width, call.mask % 10));
    if (call.mask == lumMask3x3)
        filterByMask<Mask3>(images, space);
    else
        filterByMask<Mask5>(images, space);
    return lumOk;
}

template <class S, class D>
LumStatus laplacian(const MaskCall<S, D>& call, Scratch scratch)
{
    using Mask3 = std::conditional_t<std::is_same_v<S, Lum8u>, WordLaplacian3, Laplacian3>;
    return fixedMask<Mask3, Laplacian5>(call, scratch);
}

template <class S, class D>
LumStatus lowpass(const MaskCall<S, D>& call, Scratch scratch)
{
    using Lowpass3 = std::conditional_t<std::is_same_v<S, Lum8u>, WordLowpass3, Lowpass<Sum3>>;
    using Lowpass5 = std::conditional_t<std::is_same_v<S, Lum8u>, WordLowpass5, Lowpass<Sum5>>;
    return fixedMask<Lowpass3, Lowpass5>(call, scratch);
}

template <class S, class D>
LumStatus sobelCross(const MaskCall<S, D>& call, Scratch scratch)
{
    return fixedMask<MaskProduct<Difference3, Difference3>, MaskProduct<Difference5, Difference5>>(call, scratch);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiFilterLaplacianGetBufferSize_8u16s_C1R(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize)
{
    return maskSize(roiSize, mask, pBufferSize, laplacianScratch_8u16s);
}

LumStatus lumiFilterLaplacianGetBufferSize_32f_C1R(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize)
{
    return maskSize(roiSize, mask, pBufferSize, laplacianScratch_32f);
}

LumStatus lumiFilterLowpassGetBufferSize_8u_C1R(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize)
{
    return maskSize(roiSize, mask, pBufferSize, scratch_8u);
}

LumStatus lumiFilterLowpassGetBufferSize_32f_C1R(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize)
{
    return maskSize(roiSize, mask, pBufferSize, lowpassScratch_32f);
}

LumStatus lumiFilterSobelCrossGetBufferSize_8u16s_C1R(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize)
{
    return maskSize(roiSize, mask, pBufferSize, scratch_8u);
}

LumStatus lumiFilterSobelCrossGetBufferSize_32f_C1R(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize)
{
    return maskSize(roiSize, mask, pBufferSize, sobelCrossScratch_32f);
}

LumStatus lumiFilterLaplacianBorder_8u16s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                              LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                              Lum8u borderValue, Lum8u* pBuffer)
{
    return laplacian(MaskCall<Lum8u, Lum16s>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize, mask,
                                             borderType, borderValue, pBuffer},
                     laplacianScratch_8u16s);
}

LumStatus lumiFilterLaplacianBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                            Lum32f borderValue, Lum8u* pBuffer)
{
    return laplacian(MaskCall<Lum32f, Lum32f>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize, mask,
                                              borderType, borderValue, pBuffer},
                     laplacianScratch_32f);
}

LumStatus lumiFilterLowpassBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                         LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                         Lum8u borderValue, Lum8u* pBuffer)
{
    return lowpass(MaskCall<Lum8u, Lum8u>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize, mask, borderType,
                                          borderValue, pBuffer},
                   scratch_8u);
}

LumStatus lumiFilterLowpassBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                          Lum32f borderValue, Lum8u* pBuffer)
{
    return lowpass(MaskCall<Lum32f, Lum32f>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize, mask,
                                            borderType, borderValue, pBuffer},
                   lowpassScratch_32f);
}

LumStatus lumiFilterSobelCrossBorder_8u16s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                               Lum8u borderValue, Lum8u* pBuffer)
{
    return sobelCross(MaskCall<Lum8u, Lum16s>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize, mask,
                                              borderType, borderValue, pBuffer},
                      scratch_8u);
}

LumStatus lumiFilterSobelCrossBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                             LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                             Lum32f borderValue, Lum8u* pBuffer)
{
    return sobelCross(MaskCall<Lum32f, Lum32f>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize, mask,
                                               borderType, borderValue, pBuffer},
                      sobelCrossScratch_32f);
}
