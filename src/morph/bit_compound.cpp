// Compound morphology of 1-bit images.
#include "morph/bit_checks.hpp"
#include "morph/compound_borders.hpp"
#include "morph/compound_record.hpp"
#include "morph/size_checks.hpp"

namespace lumcv {
namespace {

enum class Compound
{
    open,
    close,
    tophat,
    blackhat
};

/// The intermediate image stands first in the scratch, what the passes need behind it.
struct Between
{
    BitPlane<Lum8u> image;
    Lum8u* scratch;

    Between(Lum8u* block, LumiSizeL size)
        : image(block, (size.width + 7) >> 3, 0), scratch(block + image.bytes.step * size.height)
    {
    }
};

void run(Compound compound, const LumiMorphBitRecord& first, const LumiMorphBitRecord& second,
         const CompoundBorders& borders, const Growth& growth, bool borderValue, BitPlane<const Lum8u> src,
         BitPlane<Lum8u> dst, LumiSizeL size, Lum8u* block)
{
    const bool opens = compound == Compound::open || compound == Compound::tophat;
    const auto one = opens ? BitOperation::erosion : BitOperation::dilation;
    const auto two = opens ? BitOperation::dilation : BitOperation::erosion;
    const LumiSizeL grown = growth.grown(size);
    const Between between(block, grown);
    bitPass(one, first, src.from(-growth.left, -growth.top), between.image, grown,
            BitBorder(one, borders.first, borderValue), between.scratch);
    bitPass(two, second, between.image.from(growth.left, growth.top), dst, size,
            BitBorder(two, borders.second, borderValue), between.scratch);
    if (compound == Compound::tophat)
        subtractBits(src, dst, dst, size, between.scratch);
    else if (compound == Compound::blackhat)
        subtractBits(dst, src, dst, size, between.scratch);
}

void runGradient(const LumiMorphBitRecord& dilating, const LumiMorphBitRecord& eroding, const Border& dilated,
                 const Border& eroded, bool borderValue, BitPlane<const Lum8u> src, BitPlane<Lum8u> dst, LumiSizeL size,
                 Lum8u* block)
{
    const Between between(block, size);
    bitPass(BitOperation::dilation, dilating, src, dst, size, BitBorder(BitOperation::dilation, dilated, borderValue),
            between.scratch);
    bitPass(BitOperation::erosion, eroding, src, between.image, size,
            BitBorder(BitOperation::erosion, eroded, borderValue), between.scratch);
    subtractBits(dst, between.image, dst, size, between.scratch);
}

// Records of lumiMorphAdvInit.

Checks borderChecks(BitOperand<const Lum8u> src, BitOperand<Lum8u> dst, LumiSize roiSize,
                    const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    const LumiSizeL size = widened(roiSize);
    return bitStepChecks(bitImageChecks(Checks{}.notNull(src.pixels, dst.pixels, pSpec, pBuffer), src, dst, size), src,
                         dst, size);
}

const LumiMorphBitRecord& recordAt(const void* record)
{
    return *static_cast<const LumiMorphBitRecord*>(record);
}

LumStatus border(Compound compound, BitOperand<const Lum8u> src, BitOperand<Lum8u> dst, LumiSize roiSize,
                 LumiBorderType borderType, Lum8u borderValue, const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    const CompoundBorders borders = ordinaryBorders(borderType, isBitMode(borderType));
    const LumStatus status =
        borderChecks(src, dst, roiSize, pSpec, pBuffer).require(borders.isAllowed, lumErrBorder).status();
    if (status != lumOk)
        return status;
    const auto& record = *alignedIn<LumiMorphCompoundSpec>(pSpec);
    run(compound, recordAt(record.pFirst), recordAt(record.pSecond), borders, Growth{}, borderValue != 0, BitPlane(src),
        BitPlane(dst), widened(roiSize), pBuffer);
    return lumOk;
}

/// Both passes read the source with the same border and the caller's element.
LumStatus gradientBorder(BitOperand<const Lum8u> src, BitOperand<Lum8u> dst, LumiSize roiSize,
                         LumiBorderType borderType, Lum8u borderValue, const LumiMorphCompoundSpec* pSpec,
                         Lum8u* pBuffer)
{
    const LumStatus status = borderChecks(src, dst, roiSize, pSpec, pBuffer)
                                 .require(isGradientBorder(borderType, isBitMode(borderType)), lumErrBorder)
                                 .require(src.pixels != dst.pixels, lumErrInPlace)
                                 .status();
    if (status != lumOk)
        return status;
    const auto& element = recordAt(alignedIn<LumiMorphCompoundSpec>(pSpec)->pFirst);
    const Border sides(borderType);
    runGradient(element, element, sides, sides, borderValue != 0, BitPlane(src), BitPlane(dst), widened(roiSize),
                pBuffer);
    return lumOk;
}

// Records of lumiMorphInit_L.

CompoundBorders bordersOf(LumiBorderType value)
{
    return largeBorders(value, isBitMode(value));
}

Checks argumentChecks(BitOperand<const Lum8u> src, BitOperand<Lum8u> dst, LumiSizeL roiSize, LumiBorderType borderType,
                      const Lum8u* borderValue, const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    const auto checks = Checks{}
                            .notNull(src.pixels, dst.pixels, pSpec, pBuffer)
                            .require(hasBorderValue(borderType, borderValue), lumErrNullPointer);
    return bitStepChecks(bitImageChecks(checks, src, dst, roiSize).within31Bits(roiSize.width, roiSize.height), src,
                         dst, roiSize)
        .require(bordersOf(borderType).isAllowed, lumErrBorder);
}

LumStatus apply(Compound compound, BitOperand<const Lum8u> src, BitOperand<Lum8u> dst, LumiSizeL roiSize,
                LumiBorderType borderType, const Lum8u* borderValue, const LumiMorphCompoundSpecL* pSpec,
                Lum8u* pBuffer)
{
    const auto checks = argumentChecks(src, dst, roiSize, borderType, borderValue, pSpec, pBuffer);
    if (checks.failed())
        return checks.status();
    const auto& record = *alignedIn<LumiMorphCompoundSpecL>(pSpec);
    const auto& second = *record.pSecond->pBits;
    const CompoundBorders borders = bordersOf(borderType);
    Growth growth;
    if (second.mode != bitModeEmpty)  // an empty element copies and looks at nothing around the ROI
        growth = Growth{second.anchorX, second.rightRadius, second.anchorY, second.bottomRadius}.where(borders.second);
    const LumStatus status = bitLimits(growth.grown(roiSize), src.step, dst.step);
    if (status == lumOk)
        run(compound, *record.pFirst->pBits, second, borders, growth, borderValue && *borderValue != 0, BitPlane(src),
            BitPlane(dst), roiSize, pBuffer);
    return status;
}

LumStatus gradient(BitOperand<const Lum8u> src, BitOperand<Lum8u> dst, LumiSizeL roiSize, LumiBorderType borderType,
                   const Lum8u* borderValue, const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    const LumStatus status = argumentChecks(src, dst, roiSize, borderType, borderValue, pSpec, pBuffer)
                                 .require(src.pixels != dst.pixels, lumErrInPlace)
                                 .then(bitLimits(roiSize, src.step, dst.step))
                                 .status();
    if (status != lumOk)
        return status;
    const auto& record = *alignedIn<LumiMorphCompoundSpecL>(pSpec);
    const CompoundBorders borders = bordersOf(borderType);
    runGradient(*record.pFirst->pBits, *record.pSecond->pBits, borders.first, borders.second,
                borderValue && *borderValue != 0, BitPlane(src), BitPlane(dst), roiSize, pBuffer);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMorphAdvGetSize_1u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pSpecSize, pBufferSize).size(roiSize).size(maskSize);
    if (checks.failed())
        return checks.status();
    const LumiSizeL roi = widened(roiSize), mask = widened(maskSize);
    const Bytes bothX = mask.width & ~int64_t{1}, bothY = mask.height & ~int64_t{1};
    return storeSizes(compoundRecordBytes(mask, bitRecordBytes(mask)), pSpecSize,
                      compoundScratchBytes(roi.width + bothX, roi.height + bothY, PixelType{sizeof(Lum8u), 1},
                                           bitScratchBytes(roi, mask)),
                      pBufferSize);
}

LumStatus lumiMorphAdvInit_1u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize, LumiMorphCompoundSpec* pSpec,
                                  Lum8u* pBuffer)
{
    const auto checks = Checks{}.notNull(pMask, pSpec, pBuffer).size(roiSize).size(maskSize);
    if (checks.failed())
        return checks.status();
    auto* const spec = alignedIn<LumiMorphCompoundSpec>(pSpec);
    const CallerMask mask{pMask, maskSize.width, maskSize.height};
    const CallerMask rotatedMask{pMask, maskSize.width, maskSize.height, true};
    const int64_t firstWidth = int64_t{roiSize.width} + maskSize.width - 1;
    LumiMorphBitRecord* const first = layBitRecord(mask, firstWidth, behindHead(spec));
    LumiMorphBitRecord* const rotated = layBitRecord(rotatedMask, roiSize.width, endOf(*first));
    *spec = {first, rotated, rotated, 0};
    return lumOk;
}

LumStatus lumiMorphOpenBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                     Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize, LumiBorderType borderType,
                                     Lum8u borderValue, const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return border(Compound::open, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize, borderType,
                  borderValue, pSpec, pBuffer);
}

LumStatus lumiMorphOpen_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst, Lum64s dstStep,
                                 Lum32s dstBitOffset, LumiSizeL roiSize, LumiBorderType borderType,
                                 const Lum8u* pBorderValue, const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return apply(Compound::open, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize, borderType,
                 pBorderValue, pSpec, pBuffer);
}

LumStatus lumiMorphCloseBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                      Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize, LumiBorderType borderType,
                                      Lum8u borderValue, const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return border(Compound::close, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize, borderType,
                  borderValue, pSpec, pBuffer);
}

LumStatus lumiMorphClose_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst, Lum64s dstStep,
                                  Lum32s dstBitOffset, LumiSizeL roiSize, LumiBorderType borderType,
                                  const Lum8u* pBorderValue, const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return apply(Compound::close, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize, borderType,
                 pBorderValue, pSpec, pBuffer);
}

LumStatus lumiMorphTophatBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                       Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize, LumiBorderType borderType,
                                       Lum8u borderValue, const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return border(Compound::tophat, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize, borderType,
                  borderValue, pSpec, pBuffer);
}

LumStatus lumiMorphTophat_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst, Lum64s dstStep,
                                   Lum32s dstBitOffset, LumiSizeL roiSize, LumiBorderType borderType,
                                   const Lum8u* pBorderValue, const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return apply(Compound::tophat, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize, borderType,
                 pBorderValue, pSpec, pBuffer);
}

LumStatus lumiMorphBlackhatBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                         Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize,
                                         LumiBorderType borderType, Lum8u borderValue,
                                         const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return border(Compound::blackhat, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize, borderType,
                  borderValue, pSpec, pBuffer);
}

LumStatus lumiMorphBlackhat_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                     Lum64s dstStep, Lum32s dstBitOffset, LumiSizeL roiSize, LumiBorderType borderType,
                                     const Lum8u* pBorderValue, const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return apply(Compound::blackhat, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize, borderType,
                 pBorderValue, pSpec, pBuffer);
}

LumStatus lumiMorphGradientBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                         Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize,
                                         LumiBorderType borderType, Lum8u borderValue,
                                         const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return gradientBorder({pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize, borderType,
                          borderValue, pSpec, pBuffer);
}

LumStatus lumiMorphGradient_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                     Lum64s dstStep, Lum32s dstBitOffset, LumiSizeL roiSize, LumiBorderType borderType,
                                     const Lum8u* pBorderValue, const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return gradient({pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize, borderType, pBorderValue,
                    pSpec, pBuffer);
}
