// Sizes, Init and modes of the compound operations.
#include "frame/checks.hpp"
#include "morph/compound_record.hpp"
#include "morph/size_checks.hpp"

namespace lumcv {
namespace {

LumStatus sizes(LumiSize roiSize, LumiSize maskSize, PixelType pixel, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pSpecSize, pBufferSize).size(roiSize).size(maskSize);
    if (checks.failed())
        return checks.status();
    const LumiSizeL roi = widened(roiSize), mask = widened(maskSize);
    const Bytes bothX = mask.width & ~int64_t{1}, bothY = mask.height & ~int64_t{1};
    return storeSizes(
        compoundRecordBytes(mask, elementRecordBytes(mask)), pSpecSize,
        compoundScratchBytes(roi.width + bothX, roi.height + bothY, pixel, scratchBytes(roi, mask, pixel)),
        pBufferSize);
}

/// The records depend on the mask alone, so all types share them.
LumStatus init(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize, LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    const auto checks = Checks{}.notNull(pMask, pSpec, pBuffer).size(roiSize).size(maskSize);
    if (checks.failed())
        return checks.status();
    auto* const spec = alignedIn<LumiMorphCompoundSpec>(pSpec);
    auto* const first = alignedIn<LumiMorphMaskRecord>(behindHead(spec));
    void* const end = layElement({pMask, maskSize.width, maskSize.height}, first);
    auto* const rotated = alignedIn<LumiMorphMaskRecord>(end);
    layElement({pMask, maskSize.width, maskSize.height, true}, rotated);
    *spec = {first, rotated, rotated, 0};
    return lumOk;
}

bool isMode(Lum32s mode)
{
    return mode == 0 || mode == 1 || mode == 4 || mode == 5;
}

template <class Spec>
LumStatus setMode(Lum32s mode, Spec* pSpec)
{
    const auto checks = Checks{}.notNull(pSpec).require(isMode(mode), lumErrMode);
    if (checks.failed())
        return checks.status();
    auto* const spec = alignedIn<Spec>(pSpec);
    spec->pSecond = mode % 2 ? spec->pFirst : spec->pRotated;
    spec->keepNegative = mode >= 4;
    return lumOk;
}

Checks& typeChecks(Checks& checks, LumDataType dataType, Lum32s numChannels)
{
    return checks.require(isMorphologyType(dataType), lumErrDataType).require(isChannelCount(numChannels), lumErrValue);
}

/// The ROI, grown on each side by twice the radius.
LumiSizeL grownTwice(LumiSizeL roi, LumiSizeL mask)
{
    return {roi.width + (mask.width >> 1) * 4, roi.height + (mask.height >> 1) * 4};
}

/// The ROI, grown on each side by the radius.
LumiSizeL grownOnce(LumiSizeL roi, LumiSizeL mask)
{
    return {roi.width + (mask.width >> 1) * 2, roi.height + (mask.height >> 1) * 2};
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMorphAdvGetSize_8u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum8u), 1}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphAdvGetSize_8u_C3R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum8u), 3}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphAdvGetSize_8u_C4R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum8u), 4}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphAdvGetSize_16u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum16u), 1}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphAdvGetSize_16s_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum16s), 1}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphAdvGetSize_32f_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum32f), 1}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphAdvGetSize_32f_C3R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum32f), 3}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphAdvGetSize_32f_C4R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum32f), 4}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphAdvInit_8u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize, LumiMorphCompoundSpec* pSpec,
                                  Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphAdvInit_8u_C3R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize, LumiMorphCompoundSpec* pSpec,
                                  Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphAdvInit_8u_C4R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize, LumiMorphCompoundSpec* pSpec,
                                  Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphAdvInit_16u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                   LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphAdvInit_16s_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                   LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphAdvInit_32f_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                   LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphAdvInit_32f_C3R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                   LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphAdvInit_32f_C4R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                   LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphGetSpecSize_L(LumiSizeL roiSize, LumiSizeL maskSize, LumDataType dataType, Lum32s numChannels,
                                 Lum64s* pSpecSize)
{
    auto checks = Checks{}
                      .notNull(pSpecSize)
                      .require(areSizes(roiSize, maskSize), lumErrSize)
                      .require(areWithin31Bits(roiSize, maskSize), lumErrSizeTooLarge);
    if (typeChecks(checks, dataType, numChannels).failed())
        return checks.status();
    const LumiSizeL odd{maskSize.width | 1, maskSize.height | 1};
    return storeSize(compoundRecordBytes(maskSize, dilateErodeSpecBytes(grownTwice(roiSize, maskSize), odd)),
                     pSpecSize);
}

LumStatus lumiMorphGetBufferSize_L(LumiSizeL roiSize, LumiSizeL maskSize, LumDataType dataType, Lum32s numChannels,
                                   Lum64s* pBufferSize)
{
    auto checks = Checks{}
                      .notNull(pBufferSize)
                      .require(areSizes(roiSize, maskSize), lumErrSize)
                      .require(areWithin31Bits(roiSize, maskSize), lumErrSizeTooLarge);
    if (typeChecks(checks, dataType, numChannels).failed())
        return checks.status();
    const PixelType pixel = pixelType(dataType, numChannels);
    const LumiSizeL grown = grownTwice(roiSize, maskSize);
    const Bytes B = std::max({dilateErodeScratchBytes(roiSize, maskSize, pixel),
                              dilateErodeScratchBytes(grownOnce(roiSize, maskSize), maskSize, pixel),
                              dilateErodeScratchBytes(grown, maskSize, pixel)});
    return storeSize(compoundScratchBytes(grown.width, grown.height, pixel, B), pBufferSize);
}

LumStatus lumiMorphInit_L(LumiSizeL roiSize, const Lum8u* pMask, LumiSizeL maskSize, LumDataType dataType,
                          Lum32s numChannels, LumiMorphCompoundSpecL* pSpec)
{
    auto checks = Checks{}
                      .notNull(pMask, pSpec)
                      .require(areWithin31Bits(roiSize, maskSize), lumErrSizeTooLarge)
                      .require(areSizes(roiSize, maskSize), lumErrSize);
    if (typeChecks(checks, dataType, numChannels).failed())
        return checks.status();
    auto* const spec = alignedIn<LumiMorphCompoundSpecL>(pSpec);
    const int64_t width = grownOnce(roiSize, maskSize).width;
    auto* const first = layDilateErodeSpec({pMask, maskSize.width, maskSize.height}, width, behindHead(spec));
    auto* const rotated =
        layDilateErodeSpec({pMask, maskSize.width, maskSize.height, true}, width, endOf(*first->pBits));
    *spec = {first, rotated, rotated, 0};
    return lumOk;
}

LumStatus lumiMorphSetMode(Lum32s mode, LumiMorphCompoundSpec* pSpec)
{
    return setMode(mode, pSpec);
}

LumStatus lumiMorphSetMode_L(Lum32s mode, LumiMorphCompoundSpecL* pSpec)
{
    return setMode(mode, pSpec);
}
