// What the queries and Inits of dilation, erosion and the compound operations have in common.
#pragma once

#include <limits>

#include "morph/morph_sizes.hpp"

namespace lumcv {

constexpr bool areSizes(LumiSizeL roi, LumiSizeL mask)
{
    return roi.width >= 1 && roi.height >= 1 && mask.width >= 1 && mask.height >= 1;
}

constexpr bool areWithin31Bits(LumiSizeL roi, LumiSizeL mask)
{
    constexpr int64_t largest = std::numeric_limits<Lum32s>::max();
    return roi.width <= largest && roi.height <= largest && mask.width <= largest && mask.height <= largest;
}

/// Type code 0 stands for 1-bit images.
constexpr bool isMorphologyType(LumDataType type)
{
    return type == 0 || type == lumType8u || type == lumType16u || type == lumType16s || type == lumType32f;
}

constexpr bool isMorphologyChannels(Lum32s channels)
{
    return channels == 1 || channels == 3 || channels == 4;
}

/// 1-bit images count one byte a pixel.
constexpr PixelType pixelType(LumDataType type, Lum32s channels)
{
    return {type == lumType32f ? 4 : type == lumType16u || type == lumType16s ? 2 : 1, channels};
}

template <class Size>
constexpr bool fits(Bytes bytes)
{
    return bytes <= std::numeric_limits<Size>::max();
}

inline LumStatus storeSize(Bytes bytes, Lum64s* pSize)
{
    if (!fits<Lum64s>(bytes))
        return lumErrSizeTooLarge;
    *pSize = static_cast<Lum64s>(bytes);
    return lumOk;
}

inline LumStatus storeSizes(Bytes specBytes, Lum32s* pSpecSize, Bytes bufferBytes, Lum32s* pBufferSize)
{
    if (!fits<Lum32s>(specBytes) || !fits<Lum32s>(bufferBytes))
        return lumErrSizeTooLarge;
    *pSpecSize = static_cast<Lum32s>(specBytes);
    *pBufferSize = static_cast<Lum32s>(bufferBytes);
    return lumOk;
}

}  // namespace lumcv
