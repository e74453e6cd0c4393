// The Gaussian filter. Both passes fold the symmetric kernel: centre * t[h], then for d = 1..h the weight at distance d
// times the sum of the two pixels at that distance; each operation rounds to single precision.
#include "filter/byte_kernels.hpp"
#include "filter/gaussian_record.hpp"
#include "filter/separable_bands.hpp"
#include "frame/checks.hpp"

namespace lumcv {
namespace {

/// Folds what at(i) gives for the distances i from the centre.
template <int lanes, class Taps, class At>
[[gnu::always_inline]] inline auto folded(const Taps& taps, At at)
{
    const int64_t h = taps.count() - 1;
    auto sum = at(0) * simd::broadcast<lanes>(taps.t[h]);
    for (int64_t d = 1; d <= h; ++d)
        sum = sum + (at(-d) + at(d)) * simd::broadcast<lanes>(taps.t[h - d]);
    return sum;
}

/// A row of floats, folded along itself.
template <class Taps, class Channels>
struct RowFold
{
    Taps taps;
    const Lum32f* line;  ///< the pixels; their neighbours lie on both sides
    Channels channels;   ///< floats of a pixel

    template <class Lanes>
    [[gnu::always_inline]] auto operator()(int64_t x, Lanes lanes) const
    {
        return folded<lanes>(taps, [=, this](int64_t i) { return simd::load<lanes>(line + x + i * channels); });
    }
};

/// The rows of the ring, folded across.
template <class Taps>
struct ColumnFold;

template <int count>
struct ColumnFold<FixedTaps<count>>
{
    static constexpr int h = count - 1;
    FixedTaps<count> taps;
    RingRows<2 * h + 1> rows;

    ColumnFold(const FixedTaps<count>& kernelTaps, const RowRing& ring, int64_t firstSlot)
        : taps(kernelTaps), rows(ring, firstSlot)
    {
    }

    [[gnu::always_inline]] Lum32f* newest() const
    {
        return rows[2 * h];
    }

    template <class Lanes>
    [[gnu::always_inline]] auto operator()(int64_t x, Lanes lanes) const
    {
        return folded<lanes>(taps, [=, this](int64_t i) { return simd::load<lanes>(rows[h + i] + x); });
    }
};

template <>
struct ColumnFold<AnyTaps>
{
    AnyTaps taps;
    RowRing ring;
    int64_t centre;

    ColumnFold(const AnyTaps& kernelTaps, const RowRing& rowRing, int64_t firstSlot)
        : taps(kernelTaps), ring(rowRing), centre((firstSlot + rowRing.slots / 2) % rowRing.slots)
    {
    }

    Lum32f* newest() const
    {
        return ring.rowBehind(centre, ring.slots / 2);
    }

    template <class Lanes>
    [[gnu::always_inline]] auto operator()(int64_t x, Lanes lanes) const
    {
        const int64_t h = taps.count() - 1;
        const Lum32f* const begin = ring.rows + x;
        const Lum32f* const end = begin + ring.slots * ring.pitch;
        const Lum32f* above = begin + centre * ring.pitch;
        const Lum32f* below = above;
        auto sum = simd::load<lanes>(above) * simd::broadcast<lanes>(taps.t[h]);
        for (int64_t d = 1; d <= h; ++d) {
            above = (above == begin ? end : above) - ring.pitch;
            below = below + ring.pitch == end ? begin : below + ring.pitch;
            sum = sum + (simd::load<lanes>(above) + simd::load<lanes>(below)) * simd::broadcast<lanes>(taps.t[h - d]);
        }
        return sum;
    }
};

template <class FoldedTaps, class Channels>
struct GaussianFolds
{
    using Taps = FoldedTaps;
    Taps taps;
    Channels channels;

    int64_t width() const
    {
        return 2 * taps.count() - 1;
    }

    int64_t height() const
    {
        return width();
    }

    auto along(const Lum32f* line) const
    {
        return RowFold<Taps, Channels>{taps, line + (taps.count() - 1) * channels, channels};
    }

    auto across(const RowRing& ring, int64_t firstSlot) const
    {
        return ColumnFold<Taps>(taps, ring, firstSlot);
    }

    /// The taps sum to one.
    static Lum32f constant(Lum32f value)
    {
        return value;
    }

    template <class D, class Sums>
    [[gnu::always_inline]] static auto stored(Sums sums)
    {
        return simd::roundTo<D>(sums);
    }
};

/// Both folds of bytes, in a single pass.
template <int count>
struct GaussianMask
{
    static constexpr int h = count - 1;
    static constexpr int size = 2 * h + 1;
    using RowSteps = Steps<WeightedStep>;

    FixedTaps<count> taps;
    Lum32f constant;  ///< the taps sum to one

    template <class Pixels>
    [[gnu::always_inline]] auto along(Pixels at) const
    {
        return folded<WeightedBytes::lanes>(taps, at);
    }

    template <class Results>
    [[gnu::always_inline]] auto across(Results r) const
    {
        return folded<WeightedBytes::lanes>(taps, [r](int64_t i) { return r(0, h + i); });
    }
};

template <int count>
void filterImage(const SeparableImages<Lum8u, Lum8u, 1>& images, const FixedTaps<count>& taps, Lum8u* buffer)
{
    using Mask = GaussianMask<count>;
    filterBytes(images, buffer, gaussianScratch(images.roiSize.width, Mask::size, 1), [&](Lum32f borderValue) {
        return Mask{taps, borderValue};
    });
}

template <class T, int channels, class Taps>
void filterImage(const SeparableImages<T, T, channels>& images, const Taps& taps, Lum8u* buffer)
{
    // the line, a source row with both its borders, fits behind the ring: the bytes asked for beyond the rows are those
    // of its borders
    const GaussianFolds<Taps, ChannelCount<channels>> kernel{taps, channelCount<channels>()};
    const int64_t width = images.roiSize.width;
    const int64_t pitch = gaussianRingPitch(width, channels) / static_cast<int64_t>(sizeof(Lum32f));
    const auto rows = reinterpret_cast<Lum32f*>(alignedUp(buffer, 64));
    filterBands(images, kernel,
                {{rows, pitch, kernel.height()},
                 rows + kernel.height() * pitch,
                 separableBands(width, cachedColumns(kernel.height(), channels))});
}

/// The checks that the 32-bit and the 64-bit entries share, and the choice of the kernel's class.
template <int channels, class T>
LumStatus filter(Checks checks, Plane<const T> src, Plane<T> dst, LumiSizeL roiSize, LumiBorderType borderType,
                 const T* borderValue, const LumFilterGaussianSpec* pSpec, Lum8u* buffer)
{
    // strides are compared with the width in pixels, whatever a pixel's size
    checks.require(src.step >= roiSize.width && dst.step >= roiSize.width, lumErrStep)
        .size(roiSize)
        .require(static_cast<Lum32u>(borderType) <= largestFilterBorder, lumErrBorder);
    if (hasAllSidesInMemory(borderType))
        borderType = lumBorderInMem;
    checks.require(hasBorderValue(borderType, borderValue), lumErrNullPointer)
        .require(isFilterBorder(borderType), lumErrBorder);
    if (checks.failed())
        return checks.status();
    const GaussianKernel kernel = gaussianKernel(pSpec);
    if (!isGaussianKernelSize(kernel.header.kernelSize))
        return lumErrArgument;
    const auto run = [&](auto taps) {
        filterImage(SeparableImages<T, T, channels>{src, dst, roiSize, Border(borderType), borderValue}, taps, buffer);
    };
    switch (kernel.header.kernelSize) {
        case 3:
            run(FixedTaps<2>(kernel.taps));
            break;
        case 5:
            run(FixedTaps<3>(kernel.taps));
            break;
        case 7:
            run(FixedTaps<4>(kernel.taps));
            break;
        default:
            run(AnyTaps{kernel.taps, kernel.header.kernelSize / 2 + 1});
    }
    return lumOk;
}

template <int channels, class T>
LumStatus gaussian(Plane<const T> src, Plane<T> dst, LumiSize roiSize, LumiBorderType borderType, const T* borderValue,
                   const LumFilterGaussianSpec* pSpec, Lum8u* buffer)
{
    auto checks =
        Checks{}.notNull(src.pixels, dst.pixels, pSpec, buffer).require(src.step > 0 && dst.step > 0, lumErrStep);
    return filter<channels>(checks, src, dst, widened(roiSize), borderType, borderValue, pSpec, buffer);
}

template <int channels, class T>
LumStatus gaussianL(Plane<const T> src, Plane<T> dst, LumiSizeL roiSize, LumiBorderType borderType,
                    const T* borderValue, const LumFilterGaussianSpec* pSpec, Lum8u* buffer)
{
    auto checks = Checks{}
                      .notNull(src.pixels, dst.pixels, pSpec, buffer)
                      .within31Bits(roiSize.width, roiSize.height, src.step, dst.step);
    return filter<channels>(checks, src, dst, roiSize, borderType, borderValue, pSpec, buffer);
}

/// The border comes from the record, which is the one argument that must be looked at first.
template <int channels, class T>
LumStatus gaussianBorder(Plane<const T> src, Plane<T> dst, LumiSize roiSize, const T* borderValue,
                         const LumFilterGaussianSpec* pSpec, Lum8u* buffer)
{
    if (!pSpec)
        return lumErrNullPointer;
    return gaussian<channels>(src, dst, roiSize, gaussianKernel(pSpec).header.borderType, borderValue, pSpec, buffer);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiFilterGaussian_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                    LumiBorderType borderType, const Lum8u* pBorderValue,
                                    const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussian<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                       pBuffer);
}

LumStatus lumiFilterGaussian_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                    LumiBorderType borderType, const Lum8u* pBorderValue,
                                    const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussian<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                       pBuffer);
}

LumStatus lumiFilterGaussian_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const Lum16u* pBorderValue,
                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussian<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                       pBuffer);
}

LumStatus lumiFilterGaussian_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const Lum16u* pBorderValue,
                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussian<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                       pBuffer);
}

LumStatus lumiFilterGaussian_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const Lum16s* pBorderValue,
                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussian<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                       pBuffer);
}

LumStatus lumiFilterGaussian_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const Lum16s* pBorderValue,
                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussian<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                       pBuffer);
}

LumStatus lumiFilterGaussian_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const Lum32f* pBorderValue,
                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussian<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                       pBuffer);
}

LumStatus lumiFilterGaussian_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const Lum32f* pBorderValue,
                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussian<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                       pBuffer);
}

LumStatus lumiFilterGaussian_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                      LumiBorderType borderType, const Lum8u* pBorderValue,
                                      const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianL<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterGaussian_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                      LumiBorderType borderType, const Lum8u* pBorderValue,
                                      const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianL<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterGaussian_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                       const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianL<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterGaussian_16u_C3R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                       const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianL<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterGaussian_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                       const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianL<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterGaussian_16s_C3R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                       const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianL<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterGaussian_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                       const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianL<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterGaussian_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                       const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianL<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterGaussianBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                          LumiSize roiSize, Lum8u borderValue, const LumFilterGaussianSpec* pSpec,
                                          Lum8u* pBuffer)
{
    return gaussianBorder<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, &borderValue, pSpec, pBuffer);
}

LumStatus lumiFilterGaussianBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                          LumiSize roiSize, const Lum8u* pBorderValue,
                                          const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianBorder<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pBorderValue, pSpec, pBuffer);
}

LumStatus lumiFilterGaussianBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                           LumiSize roiSize, Lum16u borderValue, const LumFilterGaussianSpec* pSpec,
                                           Lum8u* pBuffer)
{
    return gaussianBorder<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, &borderValue, pSpec, pBuffer);
}

LumStatus lumiFilterGaussianBorder_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                           LumiSize roiSize, const Lum16u* pBorderValue,
                                           const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianBorder<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pBorderValue, pSpec, pBuffer);
}

LumStatus lumiFilterGaussianBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                           LumiSize roiSize, Lum16s borderValue, const LumFilterGaussianSpec* pSpec,
                                           Lum8u* pBuffer)
{
    return gaussianBorder<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, &borderValue, pSpec, pBuffer);
}

LumStatus lumiFilterGaussianBorder_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                           LumiSize roiSize, const Lum16s* pBorderValue,
                                           const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianBorder<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pBorderValue, pSpec, pBuffer);
}

LumStatus lumiFilterGaussianBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                           LumiSize roiSize, Lum32f borderValue, const LumFilterGaussianSpec* pSpec,
                                           Lum8u* pBuffer)
{
    return gaussianBorder<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, &borderValue, pSpec, pBuffer);
}

LumStatus lumiFilterGaussianBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                           LumiSize roiSize, const Lum32f* pBorderValue,
                                           const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    return gaussianBorder<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pBorderValue, pSpec, pBuffer);
}
