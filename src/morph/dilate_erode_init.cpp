// Sizes and Init of dilation and erosion.
#include "frame/checks.hpp"
#include "morph/bit_record.hpp"
#include "morph/size_checks.hpp"

namespace lumcv {
namespace {

LumStatus sizes(LumiSize roiSize, LumiSize maskSize, PixelType pixel, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pSpecSize, pBufferSize).size(roiSize).size(maskSize);
    if (checks.failed())
        return checks.status();
    return storeSizes(elementRecordBytes(widened(maskSize)), pSpecSize,
                      scratchBytes(widened(roiSize), widened(maskSize), pixel), pBufferSize);
}

/// The record depends on the mask alone, so all types share it.
LumStatus init(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize, LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    const auto checks = Checks{}.notNull(pMask, pSpec, pBuffer).size(roiSize).size(maskSize);
    if (!checks.failed())
        layElement({pMask, maskSize.width, maskSize.height}, alignedIn<LumiMorphMaskRecord>(pSpec));
    return checks.status();
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMorphologyBorderGetSize_8u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                             Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum8u), 1}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphologyBorderGetSize_8u_C3R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                             Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum8u), 3}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphologyBorderGetSize_8u_C4R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                             Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum8u), 4}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphologyBorderGetSize_16u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                              Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum16u), 1}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphologyBorderGetSize_16s_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                              Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum16s), 1}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphologyBorderGetSize_32f_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                              Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum32f), 1}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphologyBorderGetSize_32f_C3R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                              Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum32f), 3}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphologyBorderGetSize_32f_C4R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                              Lum32s* pBufferSize)
{
    return sizes(roiSize, maskSize, PixelType{sizeof(Lum32f), 4}, pSpecSize, pBufferSize);
}

LumStatus lumiMorphologyBorderInit_8u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                          LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphologyBorderInit_8u_C3R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                          LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphologyBorderInit_8u_C4R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                          LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphologyBorderInit_16u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                           LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphologyBorderInit_16s_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                           LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphologyBorderInit_32f_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                           LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphologyBorderInit_32f_C3R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                           LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiMorphologyBorderInit_32f_C4R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                           LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return init(roiSize, pMask, maskSize, pSpec, pBuffer);
}

LumStatus lumiErodeGetSpecSize_L(LumiSizeL roiSize, LumiSizeL maskSize, Lum64s* pSpecSize)
{
    const auto checks = Checks{}
                            .notNull(pSpecSize)
                            .require(areSizes(roiSize, maskSize), lumErrSize)
                            .require(areWithin31Bits(roiSize, maskSize), lumErrSizeTooLarge);
    return checks.failed() ? checks.status() : storeSize(dilateErodeSpecBytes(roiSize, maskSize), pSpecSize);
}

LumStatus lumiDilateGetSpecSize_L(LumiSizeL roiSize, LumiSizeL maskSize, Lum64s* pSpecSize)
{
    return lumiErodeGetSpecSize_L(roiSize, maskSize, pSpecSize);
}

LumStatus lumiErodeGetBufferSize_L(LumiSizeL roiSize, LumiSizeL maskSize, LumDataType dataType, Lum32s numChannels,
                                   Lum64s* pBufferSize)
{
    const auto checks = Checks{}
                            .notNull(pBufferSize)
                            .require(areSizes(roiSize, maskSize), lumErrSize)
                            .require(areWithin31Bits(roiSize, maskSize), lumErrSizeTooLarge)
                            .require(isMorphologyType(dataType), lumErrDataType)
                            .require(isChannelCount(numChannels), lumErrValue);
    return checks.failed()
               ? checks.status()
               : storeSize(dilateErodeScratchBytes(roiSize, maskSize, pixelType(dataType, numChannels)), pBufferSize);
}

LumStatus lumiDilateGetBufferSize_L(LumiSizeL roiSize, LumiSizeL maskSize, LumDataType dataType, Lum32s numChannels,
                                    Lum64s* pBufferSize)
{
    return lumiErodeGetBufferSize_L(roiSize, maskSize, dataType, numChannels, pBufferSize);
}

LumStatus lumiErodeInit_L(LumiSizeL roiSize, const Lum8u* pMask, LumiSizeL maskSize, LumiDilateErodeSpec* pSpec)
{
    const auto checks = Checks{}
                            .notNull(pMask, pSpec)
                            .require(areSizes(roiSize, maskSize), lumErrSize)
                            .require(areWithin31Bits(roiSize, maskSize), lumErrSizeTooLarge);
    if (!checks.failed())
        layDilateErodeSpec({pMask, maskSize.width, maskSize.height}, roiSize.width, pSpec);
    return checks.status();
}

LumStatus lumiDilateInit_L(LumiSizeL roiSize, const Lum8u* pMask, LumiSizeL maskSize, LumiDilateErodeSpec* pSpec)
{
    return lumiErodeInit_L(roiSize, pMask, maskSize, pSpec);
}
