// What the functions of dilation and erosion accept, and in which order they test it. The differences between them are
// part of the interface.
#pragma once

#include "frame/checks.hpp"
#include "morph/area.hpp"

namespace lumcv {

/// The largest border value of morphology.
inline constexpr Lum32u largestMorphologyBorder = 4095;

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

/// A value is needed for each channel where the mode is constant.
template <class T>
constexpr bool hasBorderValue(LumiBorderType borderType, const T* borderValue)
{
    return (borderType & 15) != lumBorderConstant || borderValue;
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
        constexpr int64_t largest = 0x7FFFFFFE;
        return Checks{}
            .require(roi.width <= largest && roi.height <= largest, tellsLimitsApart ? lumErrSize : lumErrSizeTooLarge)
            .require(srcStep <= largest && dstStep <= largest, tellsLimitsApart ? lumErrStep : lumErrSizeTooLarge)
            .status();
    }
};

/// Strides of the 64-bit functions hold a row, in 64-bit arithmetic.
template <class T>
Checks& rowsFit(Checks& checks, Plane<const T> src, Plane<T> dst, int64_t width, int channels)
{
    // sizes above 31 bits have failed before
    const int64_t rowBytes = width <= INT_MAX ? width * channels * static_cast<int64_t>(sizeof(T)) : INT64_MAX;
    return checks.require(rowBytes <= src.step && rowBytes <= dst.step, lumErrStep);
}

}  // namespace lumcv
