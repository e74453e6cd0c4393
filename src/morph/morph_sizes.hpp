// What dilation, erosion and the compound operations ask for, in bytes. The formulas are part of the library's
// interface; sizes up to 31 bits cannot make them overflow.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/byte_counts.hpp"
#include "frame/rounding.hpp"
#include "lumcv/types.h"

namespace lumcv {

/// The pixels of an image type.
struct PixelType
{
    int elementBytes;
    int channels;

    constexpr Bytes bytes() const
    {
        return Bytes{elementBytes} * channels;
    }
};

/// A ring of rows, as many as the normalised element is high.
constexpr Bytes ringBytes(Bytes roiWidth, LumiSizeL mask, PixelType pixel)
{
    const Bytes maskWidth = mask.width | 1, maskHeight = mask.height | 1;
    return 16 * Bytes{pixel.elementBytes} + roundedUp(maskWidth * pixel.bytes(), 32) +
           maskHeight * roundedUp(roiWidth * pixel.bytes(), 32);
}

/// The pixels of the largest area that is extended by its border: a band along an edge, or the whole image where the
/// element is not smaller.
constexpr Bytes stripPixels(LumiSizeL roi, LumiSizeL mask)
{
    const Bytes bothX = mask.width & ~int64_t{1}, bothY = mask.height & ~int64_t{1};
    const Bytes right = (mask.width | 1) - 1 - (mask.width >> 1), bottom = (mask.height | 1) - 1 - (mask.height >> 1);
    if ((mask.width | 1) >= roi.width || (mask.height | 1) >= roi.height)
        return (bothY + roi.height) * (bothX + roi.width);
    return std::max<Bytes>(bottom < 1 ? 0 : (bothY + bottom) * (bothX + roi.width),
                           right < 1 ? 0 : (bothX + right) * (bothY + roi.height));
}

constexpr Bytes scratchBytes(LumiSizeL roi, LumiSizeL mask, PixelType pixel)
{
    return ringBytes(roi.width, mask, pixel) +
           roundedUp(stripPixels(roi, mask) * pixel.elementBytes * pixel.channels, 32) + 64;
}

constexpr Bytes elementRecordBytes(LumiSizeL mask)
{
    return (Bytes{mask.width | 1} * 5 + 4) * (mask.height | 1) + 136;
}

constexpr Bytes bitRecordBytes(LumiSizeL mask)
{
    return roundedUp(Bytes{mask.width} * mask.height, 16) * 3 + 144;
}

constexpr Bytes bitScratchBytes(LumiSizeL roi, LumiSizeL mask)
{
    const Bytes W = roi.width, w = mask.width, h = mask.height;
    const Bytes rows = roundedUp(h * (w - 1 + W), 32) + roundedUp(W, 32) * h + roundedUp(w, 32) + 32;
    const Bytes walks = 8 + 40 * h + (h * h + 1) * (W + 32) + 32;
    return std::max<Bytes>(
        roundedUp((W + w) * 4, 16) * h * 2 + 16,
        roundedUp(h * 16 + 64, 16) + roundedUp(h * 24, 16) + roundedUp(w * h, 16) + std::max<Bytes>(rows, walks));
}

/// The 64-bit functions' record, which serves 1-bit images too.
constexpr Bytes dilateErodeSpecBytes(LumiSizeL roi, LumiSizeL mask)
{
    return (Bytes{mask.width | 1} * 5 + 4) * (mask.height | 1) + 160 + bitScratchBytes(roi, mask) + 16;
}

constexpr Bytes dilateErodeScratchBytes(LumiSizeL roi, LumiSizeL mask, PixelType pixel)
{
    return std::max<Bytes>(scratchBytes(roi, mask, pixel), bitScratchBytes(roi, mask));
}

/// The record of a compound operation, with S for each of its elements' records.
constexpr Bytes compoundRecordBytes(LumiSizeL mask, Bytes S)
{
    return Bytes{mask.width | 1} * (mask.height | 1) + 2 * S + 64;
}

/// The intermediate image of a compound operation and B for the scratch of each pass.
constexpr Bytes compoundScratchBytes(Bytes width, Bytes height, PixelType pixel, Bytes B)
{
    return height * roundedUp(width * pixel.bytes(), 32) + 2 * B;
}

}  // namespace lumcv
