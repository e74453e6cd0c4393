// What the functions of dilation and erosion accept, and in which order they test it. The differences between them are
// part of the interface.
#pragma once

#include "frame/border.hpp"
#include "frame/checks.hpp"
#include "morph/area.hpp"

namespace lumcv {

/// The largest border value of morphology.
inline constexpr Lum32u largestMorphologyBorder = 4095;

/// The largest width, height and stride of the 64-bit functions.
inline constexpr int64_t largestLength = 0x7FFFFFFE;

/// The value is compared as unsigned, so a negative one is too large.
constexpr bool isMorphologyRange(LumiBorderType value)
{
    return static_cast<Lum32u>(value) <= largestMorphologyBorder;
}

constexpr bool isMorphologyMode(LumiBorderType value)
{
    const LumiBorderType mode = value & 15;
    return mode == lumBorderReplicate || mode == lumBorderMirror || mode == lumBorderNeutral ||
           mode == lumBorderConstant;
}

/// The flags of the first stage, added to those of the same sides.
constexpr LumiBorderType withStageFlags(LumiBorderType value)
{
    return (value & 0xFF) | (value >> 4 & lumBorderInMem);
}

template <class Operation, class T, int channels>
struct PassRules
{
    static constexpr bool isDilation = std::is_same_v<Operation, Maximum>;

    static constexpr bool refusesInPlace = std::is_same_v<T, Lum16s> || (std::is_same_v<T, Lum16u> && !isDilation);

    /// Whether first-stage flags count in the 32-bit function.
    static constexpr bool heedsStageFlags = isDilation && std::is_same_v<T, Lum8u> && channels == 1;

    /// Whether sizes and strides above the 64-bit functions' limit have statuses of their own.
    static constexpr bool tellsLimitsApart = isDilation ? channels == 1 : std::is_same_v<T, Lum8u> && channels < 4;

    /// The upper limits of the 64-bit functions.
    static LumStatus limits(LumiSizeL roi, int64_t srcStep, int64_t dstStep)
    {
        return Checks{}
            .require(roi.width <= largestLength && roi.height <= largestLength,
                     tellsLimitsApart ? lumErrSize : lumErrSizeTooLarge)
            .require(srcStep <= largestLength && dstStep <= largestLength,
                     tellsLimitsApart ? lumErrStep : lumErrSizeTooLarge)
            .status();
    }
};

}  // namespace lumcv
