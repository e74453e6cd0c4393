// The separable filter: two convolutions in single precision, by kernels of the caller.
#include <cstring>

#include "filter/byte_kernels.hpp"
#include "filter/convolution.hpp"
#include "filter/separable_bands.hpp"
#include "filter/separable_record.hpp"
#include "frame/checks.hpp"
#include "frame/rounding.hpp"

namespace lumcv {
namespace {

/// The rows of a ring of any number of slots, in the order of the image.
struct AnyRingRows
{
    RowRing ring;
    int64_t first;

    AnyRingRows(const RowRing& rowRing, int64_t firstSlot) : ring(rowRing), first(firstSlot) {}

    [[gnu::always_inline]] Lum32f* operator[](int64_t j) const
    {
        return ring.rowBehind(first, j);
    }
};

template <class Taps>
struct RowsUnder
{
    using Type = AnyRingRows;
};

template <int k>
struct RowsUnder<FixedTaps<k>>
{
    using Type = RingRows<k>;
};

template <class Taps>
struct ColumnConvolution
{
    Taps taps;
    typename RowsUnder<Taps>::Type rows;

    [[gnu::always_inline]] Lum32f* newest() const
    {
        return rows[taps.count() - 1];
    }

    template <class Lanes>
    [[gnu::always_inline]] auto operator()(int64_t x, Lanes lanes) const
    {
        return sumOfProducts<lanes>(taps, [=, this](int64_t j) { return simd::load<lanes>(rows[j] + x); });
    }
};

/// The caller's kernels as floats.
struct Coefficients
{
    const Lum32f* x;  ///< with the scale
    int64_t width;
    const Lum32f* y;
    int64_t height;
    Lum32f sumX;  ///< without the scale
    Lum32f scale;

    /// What becomes of a row that is constant.
    Lum32f constant(Lum32f value) const
    {
        return sumX * value * scale;
    }
};

template <class ConvolutionTaps, class Channels>
struct Convolutions
{
    using Taps = ConvolutionTaps;
    Taps x, y;
    Channels channels;
    Coefficients coefficients;

    int64_t width() const
    {
        return x.count();
    }

    int64_t height() const
    {
        return y.count();
    }

    auto along(const Lum32f* line) const
    {
        return RowConvolution<Taps, Channels>{x, line, channels};
    }

    auto across(const RowRing& ring, int64_t firstSlot) const
    {
        return ColumnConvolution<Taps>{y, {ring, firstSlot}};
    }

    Lum32f constant(Lum32f value) const
    {
        return coefficients.constant(value);
    }

    template <class D, class Sums>
    [[gnu::always_inline]] static auto stored(Sums sums)
    {
        return simd::saturateTo<D>(sums);
    }
};

/// Both convolutions of bytes by kernels of so many taps, in a single pass.
template <int k, class D>
struct ConvolutionMask
{
    static constexpr int size = k;
    using RowSteps = Steps<WeightedStep>;

    FixedTaps<k> x, y;
    Lum32f constant;

    template <class Pixels>
    [[gnu::always_inline]] auto along(Pixels at) const
    {
        return sumOfProducts<WeightedBytes::lanes>(x, [at](int64_t i) { return at(i - k / 2); });
    }

    template <class Results>
    [[gnu::always_inline]] auto across(Results r) const
    {
        return simd::clampedAbove<D>(sumOfProducts<WeightedBytes::lanes>(y, [r](int64_t j) { return r(0, j); }));
    }
};

/// Reads n coefficients of a record, which may stand at any address.
template <class K>
void readKernel(const Lum8u* from, int64_t n, Lum32f scale, Lum32f* to)
{
    for (int64_t i = 0; i < n; ++i) {
        K coefficient;
        std::memcpy(&coefficient, from + i * static_cast<int64_t>(sizeof(K)), sizeof(K));
        to[i] = static_cast<Lum32f>(coefficient) * scale;
    }
}

void readKernel(const SeparableHeader& header, const Lum8u* from, int64_t n, Lum32f scale, Lum32f* to)
{
    if (header.kernelType == kernelOfWords)
        readKernel<Lum16s>(from, n, scale, to);
    else
        readKernel<Lum32f>(from, n, scale, to);
}

/// Lays the coefficients at `to`, which has room for all of them.
Coefficients readKernels(const SeparableHeader& header, Lum32f* to)
{
    const int64_t width = header.kernelWidth;
    const int64_t height = header.kernelHeight;
    const Lum32f scale = 1.0f / static_cast<Lum32f>(header.divisor);
    readKernel(header, header.pKernelX, width, 1.0f, to);
    Lum32f sumX = to[0];
    for (int64_t i = 1; i < width; ++i)
        sumX += to[i];
    readKernel(header, header.pKernelX, width, scale, to);
    readKernel(header, header.pKernelY, height, 1.0f, to + width);
    return {to, width, to + width, height, sumX, scale};
}

/// The scratch of apply, which works in a block of the queried size: an address can count it.
int64_t scratchOf(const SeparableHeader& header, int64_t width, int channels)
{
    const int64_t elementSize = header.kernelType == kernelOfWords ? sizeof(Lum16s) : sizeof(Lum32f);
    return static_cast<int64_t>(
        separableScratch(width, {header.kernelWidth, header.kernelHeight}, elementSize, channels));
}

/// Whether kernels of 3x3 and 5x5 work in a single pass. It pays where a register is as wide as a line of the cache,
/// and loads of neighbours always cross two lines.
template <class S, int channels>
inline constexpr bool isInOnePass = simd::registerBytes<Lum32f> == 64 && std::is_same_v<S, Lum8u>&& channels == 1;

template <int k, class D>
[[gnu::noinline]] void filterImage(const SeparableImages<Lum8u, D, 1>& images, const SeparableHeader& header,
                                   Lum8u* buffer)
{
    Lum32f coefficients[2 * k];
    const Coefficients c = readKernels(header, coefficients);
    filterBytes(images, buffer, scratchOf(header, images.roiSize.width, 1), [&](Lum32f borderValue) {
        return ConvolutionMask<k, D>{FixedTaps<k>(c.x), FixedTaps<k>(c.y), c.constant(borderValue)};
    });
}

/// The scratch, in this order: ring and line of a band, coefficients. The formula gives the ring the width of the whole
/// image and no room of its own to the line; so bands may have to be narrower than the first-level cache would allow,
/// but a column of pixels always fits.
template <class S, class D, int channels>
[[gnu::noinline]] void filterImage(const SeparableImages<S, D, channels>& images, const SeparableHeader& header,
                                   Lum8u* buffer)
{
    constexpr int64_t alignment = 64;
    constexpr int64_t floatSize = sizeof(Lum32f);
    constexpr int64_t lineFloats = alignment / floatSize;
    const int64_t width = images.roiSize.width;
    const int64_t rows = header.kernelHeight;
    const int64_t neighbours = int64_t{header.kernelWidth - 1} * channels;
    Lum8u* const aligned = alignedUp(buffer, alignment);
    const int64_t floats = (scratchOf(header, width, channels) - (aligned - buffer)) / floatSize;

    int64_t room = (floats - neighbours - header.kernelWidth - rows) / (rows + 1);  // of a row
    if (room > lineFloats)
        room -= room % lineFloats;
    const int64_t cached = cachedColumns(rows, channels);
    const int64_t columns = separableBands(width, cached < room / channels ? cached : room / channels);
    const int64_t rounded = roundedUp(columns * channels, lineFloats);
    const RowRing ring{reinterpret_cast<Lum32f*>(aligned), rounded < room ? rounded : room, rows};
    Lum32f* const line = ring.slot(rows);
    const BandSpace space{ring, line, columns};
    const Coefficients k = readKernels(header, line + columns * channels + neighbours);

    const auto run = [&](auto x, auto y) {
        filterBands(images, Convolutions<decltype(x), ChannelCount<channels>>{x, y, channelCount<channels>(), k},
                    space);
    };
    if constexpr (!isInOnePass<S, channels>) {
        if (k.width == 3 && k.height == 3)
            return run(FixedTaps<3>(k.x), FixedTaps<3>(k.y));
        if (k.width == 5 && k.height == 5)
            return run(FixedTaps<5>(k.x), FixedTaps<5>(k.y));
    }
    run(AnyTaps{k.x, k.width}, AnyTaps{k.y, k.height});
}

/// The checks that follow those of the sizes, which are not the same in the ordinary and the 64-bit entries.
template <int channels, class S, class D>
LumStatus filter(Checks checks, Plane<const S> src, Plane<D> dst, LumiSizeL roiSize, LumiBorderType borderType,
                 const S* borderValue, const LumFilterSeparableSpec* pSpec, Lum8u* buffer)
{
    if (checks.failed())
        return checks.status();
    SeparableHeader header;
    std::memcpy(&header, pSpec, sizeof header);
    checks.notNull(header.pKernelX, header.pKernelY)
        .require(isFilterBorder(borderType), lumErrBorder)
        .alignment(src)
        .alignment(dst);
    if (checks.failed())
        return checks.status();
    const SeparableImages<S, D, channels> images{src, dst, roiSize, Border(borderType), borderValue};
    if constexpr (isInOnePass<S, channels>) {
        switch (header.kernelWidth == header.kernelHeight ? header.kernelWidth : 0) {
            case 3:
                filterImage<3>(images, header, buffer);
                return lumOk;
            case 5:
                filterImage<5>(images, header, buffer);
                return lumOk;
            default:
                break;
        }
    }
    filterImage(images, header, buffer);
    return lumOk;
}

/// The pointers of a call. A single channel's border value has an address of its own.
template <class S, class D>
Checks pointerChecks(Plane<const S> src, Plane<D> dst, LumiBorderType borderType, const S* borderValue,
                     const LumFilterSeparableSpec* pSpec, const Lum8u* buffer)
{
    return Checks{}
        .notNull(src.pixels, dst.pixels, pSpec, buffer)
        .require(hasBorderValue(borderType, borderValue), lumErrNullPointer);
}

template <int channels, class S, class D>
LumStatus separable(Plane<const S> src, Plane<D> dst, LumiSize roiSize, LumiBorderType borderType, const S* borderValue,
                    const LumFilterSeparableSpec* pSpec, Lum8u* buffer)
{
    const simd::DenormalsMasked masked;
    const auto checks = pointerChecks(src, dst, borderType, borderValue, pSpec, buffer)
                            .size(roiSize)
                            .step(src, rowElements(roiSize.width, channels))
                            .step(dst, rowElements(roiSize.width, channels));
    return filter<channels>(checks, src, dst, widened(roiSize), borderType, borderValue, pSpec, buffer);
}

template <int channels, class S, class D>
LumStatus separableL(Plane<const S> src, Plane<D> dst, LumiSizeL roiSize, LumiBorderType borderType,
                     const S* borderValue, const LumFilterSeparableSpec* pSpec, Lum8u* buffer)
{
    const simd::DenormalsMasked masked;
    const auto checks = pointerChecks(src, dst, borderType, borderValue, pSpec, buffer)
                            .within31Bits(roiSize.width, roiSize.height, src.step, dst.step)
                            .size(roiSize)
                            .rowFits(src, roiSize.width, channels)
                            .rowFits(dst, roiSize.width, channels);
    return filter<channels>(checks, src, dst, roiSize, borderType, borderValue, pSpec, buffer);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiFilterSeparable_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, Lum8u borderValue, const LumFilterSeparableSpec* pSpec,
                                     Lum8u* pBuffer)
{
    return separable<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const Lum8u borderValue[3],
                                     const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const Lum8u borderValue[4],
                                     const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_8u16s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                        LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_8u16s_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                        LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[3],
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_8u16s_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                        LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[4],
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                      const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, const Lum16s borderValue[3],
                                      const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_16s_C4R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, const Lum16s borderValue[4],
                                      const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                      const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, const Lum16u borderValue[3],
                                      const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_16u_C4R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, const Lum16u borderValue[4],
                                      const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                      const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[3],
                                      const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[4],
                                      const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separable<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiFilterSeparable_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, Lum8u borderValue,
                                       const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum8u borderValue[3],
                                       const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum8u borderValue[4],
                                       const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_8u16s_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                          LumiSizeL roiSize, LumiBorderType borderType, Lum8u borderValue,
                                          const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_8u16s_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                          LumiSizeL roiSize, LumiBorderType borderType, const Lum8u borderValue[3],
                                          const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_8u16s_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                          LumiSizeL roiSize, LumiBorderType borderType, const Lum8u borderValue[4],
                                          const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, Lum16s borderValue,
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_16s_C3R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum16s borderValue[3],
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_16s_C4R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum16s borderValue[4],
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, Lum16u borderValue,
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_16u_C3R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum16u borderValue[3],
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_16u_C4R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum16u borderValue[4],
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, Lum32f borderValue,
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum32f borderValue[3],
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiFilterSeparable_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum32f borderValue[4],
                                        const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
{
    return separableL<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}
