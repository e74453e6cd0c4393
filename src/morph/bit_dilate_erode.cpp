// Dilation and erosion of 1-bit images: sizes, Init and both generations of apply.
#include "morph/bit_checks.hpp"
#include "morph/size_checks.hpp"

namespace lumcv {
namespace {

LumStatus border(BitOperation operation, BitOperand<const Lum8u> src, BitOperand<Lum8u> dst, LumiSize roiSize,
                 LumiBorderType borderType, Lum8u borderValue, const LumiMorphBitRecord* pSpec, Lum8u* pBuffer)
{
    const LumiSizeL size = widened(roiSize);
    auto checks = bitImageChecks(Checks{}.notNull(src.pixels, dst.pixels, pSpec, pBuffer), src, dst, size);
    const LumStatus status = bitStepChecks(checks, src, dst, size)
                                 .require(isMorphologyRange(borderType), lumErrBorder)
                                 .require(borderType == lumBorderInMem || isBitMode(borderType), lumErrBorder)
                                 .require(src.pixels != dst.pixels, lumErrInPlace)
                                 .status();
    if (status == lumOk)
        bitPass(operation, *alignedIn<LumiMorphBitRecord>(pSpec), BitPlane(src), BitPlane(dst), size,
                BitBorder(operation, Border(borderType), borderValue != 0), pBuffer);
    return status;
}

LumStatus apply(BitOperation operation, BitOperand<const Lum8u> src, BitOperand<Lum8u> dst, LumiSizeL roiSize,
                LumiBorderType borderType, const Lum8u* borderValue, const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer)
{
    const LumiBorderType effective = withStageFlags(borderType);
    auto checks = bitImageChecks(Checks{}.notNull(src.pixels, dst.pixels, pSpec, pBuffer), src, dst, roiSize)
                      .within31Bits(roiSize.width, roiSize.height);
    const LumStatus status = bitStepChecks(checks, src, dst, roiSize)
                                 .require(isMorphologyRange(borderType), lumErrBorder)
                                 .require(effective == lumBorderInMem || isBitMode(effective), lumErrBorder)
                                 .require(src.pixels != dst.pixels, lumErrInPlace)
                                 .then(bitLimits(roiSize, src.step, dst.step))
                                 .require(hasBorderValue(borderType, borderValue), lumErrNullPointer)
                                 .status();
    if (status == lumOk)
        bitPass(operation, *alignedIn<LumiDilateErodeSpec>(pSpec)->pBits, BitPlane(src), BitPlane(dst), roiSize,
                BitBorder(operation, Border(effective), borderValue && *borderValue != 0), pBuffer);
    return status;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMorphologyBorderGetSize_1u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                             Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pSpecSize, pBufferSize).size(roiSize).size(maskSize);
    if (checks.failed())
        return checks.status();
    return storeSizes(bitRecordBytes(widened(maskSize)), pSpecSize,
                      bitScratchBytes(widened(roiSize), widened(maskSize)), pBufferSize);
}

LumStatus lumiMorphologyBorderInit_1u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                          LumiMorphBitRecord* pSpec, Lum8u* pBuffer)
{
    const LumStatus status = Checks{}.notNull(pMask, pSpec, pBuffer).size(roiSize).size(maskSize).status();
    if (status == lumOk)
        layBitRecord({pMask, maskSize.width, maskSize.height}, roiSize.width, pSpec);
    return status;
}

LumStatus lumiDilateBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst, Lum32s dstStep,
                                  Lum32s dstBitOffset, LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                  const LumiMorphBitRecord* pSpec, Lum8u* pBuffer)
{
    return border(BitOperation::dilation, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize,
                  borderType, borderValue, pSpec, pBuffer);
}

LumStatus lumiErodeBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst, Lum32s dstStep,
                                 Lum32s dstBitOffset, LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                 const LumiMorphBitRecord* pSpec, Lum8u* pBuffer)
{
    return border(BitOperation::erosion, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize,
                  borderType, borderValue, pSpec, pBuffer);
}

LumStatus lumiDilate_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst, Lum64s dstStep,
                              Lum32s dstBitOffset, LumiSizeL roiSize, LumiBorderType borderType,
                              const Lum8u* pBorderValue, const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer)
{
    return apply(BitOperation::dilation, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize,
                 borderType, pBorderValue, pSpec, pBuffer);
}

LumStatus lumiErode_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst, Lum64s dstStep,
                             Lum32s dstBitOffset, LumiSizeL roiSize, LumiBorderType borderType,
                             const Lum8u* pBorderValue, const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer)
{
    return apply(BitOperation::erosion, {pSrc, srcStep, srcBitOffset}, {pDst, dstStep, dstBitOffset}, roiSize,
                 borderType, pBorderValue, pSpec, pBuffer);
}
