// The separable filter's sizes and records.
#include "filter/separable_record.hpp"

#include <cstring>

#include "frame/checks.hpp"

namespace lumcv {

Bytes separableScratch(int64_t width, LumiSize kernelSize, int64_t elementSize, int64_t channels)
{
    const Bytes kw = kernelSize.width;
    const Bytes kh = kernelSize.height;
    const Bytes ring = (kw + width - 1) * kh;
    return (kw * elementSize + ring) * 4 * channels + 256 * kw + 8 * kh;
}

namespace {

constexpr bool isKernelType(LumDataType type)
{
    return type == lumType16s || type == lumType32f;
}

constexpr int64_t kernelElementSize(LumDataType type)
{
    return type == lumType16s ? sizeof(Lum16s) : sizeof(Lum32f);
}

template <class Count>
LumStatus specSize(LumiSize kernelSize, LumDataType dataType, Lum32s numChannels, Count* pSpecSize)
{
    const auto checks = Checks{}
                            .size(kernelSize)
                            .notNull(pSpecSize)
                            .require(isKernelType(dataType), lumErrDataType)
                            .require(isChannelCount(numChannels), lumErrValue);
    if (checks.failed())
        return checks.status();
    return storeSize((Bytes{kernelSize.width} + kernelSize.height) * kernelElementSize(dataType) + 127, pSpecSize);
}

template <class Count>
LumStatus bufferSize(LumiSizeL roiSize, LumiSize kernelSize, LumDataType dataType, LumDataType kernelType,
                     Lum32s numChannels, Count* pBufferSize)
{
    const auto checks = Checks{}
                            .notNull(pBufferSize)
                            .size(roiSize)
                            .size(kernelSize)
                            .within31Bits(roiSize.width, roiSize.height)
                            .require(dataType == lumType8u || dataType == lumType16u || dataType == lumType16s ||
                                         dataType == lumType32f,
                                     lumErrDataType)
                            .require(isKernelType(kernelType), lumErrDataType)
                            .require(isChannelCount(numChannels), lumErrValue);
    if (checks.failed())
        return checks.status();
    return storeSize(separableScratch(roiSize.width, kernelSize, kernelElementSize(kernelType), numChannels),
                     pBufferSize);
}

template <class K>
LumStatus init(const K* pKernelX, const K* pKernelY, SeparableHeader header, bool isDataType,
               LumFilterSeparableSpec* pSpec)
{
    const LumStatus status = Checks{}
                                 .notNull(pKernelX, pKernelY, pSpec)
                                 .size(LumiSize{header.kernelWidth, header.kernelHeight})
                                 .require(isDataType, lumErrDataType)
                                 .require(isChannelCount(header.numChannels), lumErrValue)
                                 .require(header.divisor != 0, lumErrDivisor)
                                 .status();
    if (status != lumOk)
        return status;
    const auto block = reinterpret_cast<Lum8u*>(pSpec);
    Lum8u* const kernelX = block + sizeof header;
    Lum8u* const kernelY = kernelX + header.kernelWidth * sizeof(K);
    header.pKernelX = kernelX;
    header.pKernelY = kernelY;
    std::memcpy(block, &header, sizeof header);
    std::memcpy(kernelX, pKernelX, header.kernelWidth * sizeof(K));
    std::memcpy(kernelY, pKernelY, header.kernelHeight * sizeof(K));
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiFilterSeparableGetSpecSize(LumiSize kernelSize, LumDataType dataType, Lum32s numChannels,
                                         Lum32s* pSpecSize)
{
    return specSize(kernelSize, dataType, numChannels, pSpecSize);
}

LumStatus lumiFilterSeparableGetSpecSize_L(LumiSize kernelSize, LumDataType dataType, Lum32s numChannels,
                                           Lum64s* pSpecSize)
{
    return specSize(kernelSize, dataType, numChannels, pSpecSize);
}

LumStatus lumiFilterSeparableGetBufferSize(LumiSize roiSize, LumiSize kernelSize, LumDataType dataType,
                                           LumDataType kernelType, Lum32s numChannels, Lum32s* pBufferSize)
{
    return bufferSize(widened(roiSize), kernelSize, dataType, kernelType, numChannels, pBufferSize);
}

LumStatus lumiFilterSeparableGetBufferSize_L(LumiSizeL roiSize, LumiSize kernelSize, LumDataType dataType,
                                             LumDataType kernelType, Lum32s numChannels, Lum64s* pBufferSize)
{
    return bufferSize(roiSize, kernelSize, dataType, kernelType, numChannels, pBufferSize);
}

LumStatus lumiFilterSeparableInit_16s(const Lum16s* pKernelX, const Lum16s* pKernelY, LumiSize kernelSize,
                                      Lum32s divisor, Lum32s scaleFactor, LumDataType dataType, Lum32s numChannels,
                                      LumFilterSeparableSpec* pSpec)
{
    return lumiFilterSeparableInit_16s_L(pKernelX, pKernelY, kernelSize, divisor, scaleFactor, dataType, numChannels,
                                         pSpec);
}

LumStatus lumiFilterSeparableInit_16s_L(const Lum16s* pKernelX, const Lum16s* pKernelY, LumiSize kernelSize,
                                        Lum32s divisor, Lum32s scaleFactor, LumDataType dataType, Lum32s numChannels,
                                        LumFilterSeparableSpec* pSpec)
{
    SeparableHeader header{};
    header.kernelType = kernelOfWords;
    header.kernelWidth = kernelSize.width;
    header.kernelHeight = kernelSize.height;
    header.divisor = divisor;
    header.scaleFactor = scaleFactor;
    header.numChannels = numChannels;
    return init(pKernelX, pKernelY, header, dataType == lumType8u || dataType == lumType16s, pSpec);
}

LumStatus lumiFilterSeparableInit_32f(const Lum32f* pKernelX, const Lum32f* pKernelY, LumiSize kernelSize,
                                      LumDataType dataType, Lum32s numChannels, LumFilterSeparableSpec* pSpec)
{
    return lumiFilterSeparableInit_32f_L(pKernelX, pKernelY, kernelSize, dataType, numChannels, pSpec);
}

LumStatus lumiFilterSeparableInit_32f_L(const Lum32f* pKernelX, const Lum32f* pKernelY, LumiSize kernelSize,
                                        LumDataType dataType, Lum32s numChannels, LumFilterSeparableSpec* pSpec)
{
    SeparableHeader header{};
    header.kernelType = kernelOfFloats;
    header.kernelWidth = kernelSize.width;
    header.kernelHeight = kernelSize.height;
    header.divisor = 1;
    header.numChannels = numChannels;
    return init(pKernelX, pKernelY, header, dataType == lumType8u || dataType == lumType16u || dataType == lumType32f,
                pSpec);
}
