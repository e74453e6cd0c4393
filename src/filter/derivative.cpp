// First derivatives: the fixed masks of the families that stand on them.
#include "filter/derivative.hpp"

#include "filter/mask_bands.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/rounding.hpp"

namespace lumcv {

int64_t derivativeScratch(LumiSizeL roiSize, LumiMaskSize mask, LumDataType srcType)
{
    const auto [width, height] = roiSize;
    const bool isSmall = mask == lumMask3x3;
    const int64_t sides = isSmall ? 1 : 2;
    const int64_t rows = (isSmall ? 3 : 7) * ((width > height ? width : height) + (isSmall ? 2 : 4));
    const int64_t elementBytes = srcType == lumType16s ? 2 : 4;
    const int64_t bytes = srcType == lumType8u
                              ? rows
                              : roundedUp(rows * elementBytes, 32) + roundedUp(4 * width, 32) * 2 * sides +
                                    roundedUp((width + height) * 2 * sides * elementBytes, 32);
    return roundedUp(bytes, 32) + 32;
}

namespace {

// What a code selects, for each mask.
using SobelX3 = MaskProduct<Difference3, Smooth3>;
using SobelY3 = MaskProduct<Smooth3, NegatedDifference3>;
using ScharrX3 = MaskProduct<NegatedDifference3, ScharrSmooth3>;
using ScharrY3 = MaskProduct<ScharrSmooth3, NegatedDifference3>;
using SobelXNeg3 = MaskProduct<NegatedDifference3, Smooth3>;
using SobelX5 = MaskProduct<Difference5, Smooth5>;
using SobelY5 = MaskProduct<Smooth5, NegatedDifference5>;
using SobelXNeg5 = MaskProduct<NegatedDifference5, Smooth5>;

constexpr bool isMaskOf(LumDerivCode code, LumiMaskSize mask)
{
    const bool isScharr = code == lumDerivScharrX || code == lumDerivScharrY;
    return mask == lumMask3x3 || (mask == lumMask5x5 && !isScharr);
}

template <class S, class D>
LumStatus derivative(Plane<const S> src, Plane<D> dst, LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                     S borderValue, Lum8u* pBuffer, LumDerivCode code)
{
    const LumStatus status = Checks{}
                                 .notNull(src.pixels, dst.pixels, pBuffer)
                                 .size(roiSize)
                                 .alignment(src)
                                 .alignment(dst)
                                 .require(isMaskOf(code, mask), lumErrMaskSize)
                                 .require(isFilterBorder(borderType), lumErrBorder)
                                 .status();
    if (status != lumOk)
        return status;
    const MaskImages<S, D> images{src, dst, widened(roiSize), Border(borderType), borderValue, false};
    LineSpace<Lum8u> space(pBuffer, derivativeScratch(images.roiSize, mask, sizeof(S) == 1 ? lumType8u : lumType32f));
    const bool isSmall = mask == lumMask3x3;
    switch (code) {
        case lumDerivSobelX:
            isSmall ? filterByMask<SobelX3>(images, space) : filterByMask<SobelX5>(images, space);
            break;
        case lumDerivSobelY:
            isSmall ? filterByMask<SobelY3>(images, space) : filterByMask<SobelY5>(images, space);
            break;
        case lumDerivScharrX:
            filterByMask<ScharrX3>(images, space);
            break;
        case lumDerivScharrY:
            filterByMask<ScharrY3>(images, space);
            break;
        case lumDerivSobelXNeg:
            isSmall ? filterByMask<SobelXNeg3>(images, space) : filterByMask<SobelXNeg5>(images, space);
            break;
    }
    return lumOk;
}

}  // namespace

LumStatus lumDerivFilter_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                             LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer,
                             LumDerivCode code)
{
    return derivative(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, mask, borderType, borderValue,
                      pBuffer, code);
}

LumStatus lumDerivFilter_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                               LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer,
                               LumDerivCode code)
{
    return derivative(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, mask, borderType, borderValue,
                      pBuffer, code);
}

LumStatus lumDerivSobelX_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                             LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer)
{
    return lumDerivFilter_32f(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer,
                              lumDerivSobelX);
}

LumStatus lumDerivSobelY_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                             LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer)
{
    return lumDerivFilter_32f(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer,
                              lumDerivSobelY);
}

LumStatus lumDerivScharrX_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                              LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer)
{
    return lumDerivFilter_32f(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer,
                              lumDerivScharrX);
}

LumStatus lumDerivScharrY_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                              LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer)
{
    return lumDerivFilter_32f(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer,
                              lumDerivScharrY);
}

LumStatus lumDerivSobelXNeg_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer)
{
    return lumDerivFilter_32f(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer,
                              lumDerivSobelXNeg);
}

LumStatus lumDerivSobelX_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                               LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer)
{
    return lumDerivFilter_8u16s(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer,
                                lumDerivSobelX);
}

LumStatus lumDerivSobelY_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                               LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer)
{
    return lumDerivFilter_8u16s(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer,
                                lumDerivSobelY);
}

LumStatus lumDerivScharrX_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                                LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer)
{
    return lumDerivFilter_8u16s(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer,
                                lumDerivScharrX);
}

LumStatus lumDerivScharrY_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                                LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer)
{
    return lumDerivFilter_8u16s(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer,
                                lumDerivScharrY);
}

LumStatus lumDerivSobelXNeg_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer)
{
    return lumDerivFilter_8u16s(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer,
                                lumDerivSobelXNeg);
}

LumStatus lumDerivGetBufferSize(LumiSize roiSize, LumiMaskSize mask, LumDataType srcType, LumDataType dstType,
                                Lum32s numChannels, Lum32s* pBufferSize)
{
    const bool areTypes = (dstType == lumType32f && srcType == lumType32f) ||
                          (dstType == lumType16s && (srcType == lumType8u || srcType == lumType16s));
    auto checks = Checks{}
                      .notNull(pBufferSize)
                      .size(roiSize)
                      .require(isMask(mask), lumErrMaskSize)
                      .require(areTypes, lumErrDataType)
                      .require(numChannels == 1, lumErrChannels);
    if (checks.failed())
        return checks.status();
    return storeSize(derivativeScratch(widened(roiSize), mask, srcType), pBufferSize);
}

LumStatus lumDerivSobelXGetBufferSize(LumiSize roiSize, LumiMaskSize mask, LumDataType srcType, LumDataType dstType,
                                      Lum32s numChannels, Lum32s* pBufferSize)
{
    if (srcType == lumType16s)
        return lumErrDataType;
    return lumDerivGetBufferSize(roiSize, mask, srcType, dstType, numChannels, pBufferSize);
}

LumStatus lumDerivScharrGetBufferSize(LumiSize roiSize, LumiMaskSize mask, LumDataType srcType, LumDataType dstType,
                                      Lum32s numChannels, Lum32s* pBufferSize)
{
    if (mask != lumMask3x3)
        return lumErrMaskSize;
    return lumDerivGetBufferSize(roiSize, mask, srcType, dstType, numChannels, pBufferSize);
}

}  // namespace lumcv
