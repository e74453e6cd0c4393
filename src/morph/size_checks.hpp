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

/// 1-bit images count one byte a pixel.
constexpr PixelType pixelType(LumDataType type, Lum32s channels)
{
    return {type == lumType32f ? 4 : type == lumType16u || type == lumType16s ? 2 : 1, channels};
}

}  // namespace lumcv
