// What a border value says, read once: which sides lie in memory, and how the others are synthesised.
#pragma once

#include <cstdint>

#include "lumcv/types.h"

namespace lumcv {

struct Border
{
    Lum32s mode = lumBorderReplicate;
    bool top = false, bottom = false, left = false, right = false;  ///< these sides lie in memory

    constexpr explicit Border(LumiBorderType value)
        : mode(value & 15),
          top(value & lumBorderInMemTop),
          bottom(value & lumBorderInMemBottom),
          left(value & lumBorderInMemLeft),
          right(value & lumBorderInMemRight)
    {
    }
};

/// The largest border value of the filter families.
inline constexpr Lum32u largestFilterBorder = 255;

/// Replicate, mirror or constant. Bit 1 tells replicate from mirror, so the mask leaves it out.
constexpr bool isFilterMode(LumiBorderType value)
{
    return (value & 13) == lumBorderReplicate || (value & 15) == lumBorderConstant;
}

constexpr bool hasAllSidesInMemory(LumiBorderType value)
{
    return (value & lumBorderInMem) == lumBorderInMem;
}

/// Whether a filter family accepts the value. It is compared as unsigned, so a negative one is too large.
constexpr bool isFilterBorder(LumiBorderType value)
{
    return static_cast<Lum32u>(value) <= largestFilterBorder && (value == lumBorderInMem || isFilterMode(value));
}

/// The same of the operations that do not know mirror.
constexpr bool isUnmirroredBorder(LumiBorderType value)
{
    return isFilterBorder(value) && (value & 15) != lumBorderMirror;
}

/// A value is needed for each channel where the mode is constant.
template <class T>
constexpr bool hasBorderValue(LumiBorderType borderType, const T* borderValue)
{
    return (borderType & 15) != lumBorderConstant || borderValue;
}

/// The index within [0, n) that replicate or mirror put at index i. Mirror bounces off both ends, about the edge
/// element.
constexpr int64_t borderIndex(int64_t i, int64_t n, Lum32s mode)
{
    if (mode == lumBorderReplicate || n == 1)
        return i < 0 ? 0 : i >= n ? n - 1 : i;
    const int64_t period = 2 * (n - 1);
    if (i < -(n - 1) || i >= 2 * n - 1)  // beyond one reflection
        i = (i % period + period) % period;
    return i < 0 ? -i : i >= n ? period - i : i;
}

/// What an operation finds in row r, counted from the first of the ROI.
struct SourceRow
{
    bool isConstant;  ///< the row lies beyond a constant border: it holds the border value
    int64_t index;    ///< otherwise the image's row; outside [0, height) only on a side in memory
};

constexpr SourceRow sourceRow(int64_t r, int64_t height, const Border& border)
{
    const bool isInMemory = r < 0 ? border.top : r < height || border.bottom;
    const bool isConstant = !isInMemory && border.mode == lumBorderConstant;
    return {isConstant, isInMemory || isConstant ? r : borderIndex(r, height, border.mode)};
}

}  // namespace lumcv
