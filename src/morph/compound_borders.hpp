// What the compound operations make of a border value: what lies around the images of their two passes.
#pragma once

#include "morph/pass_checks.hpp"

namespace lumcv {

struct CompoundBorders
{
    Border first, second;
    bool isAllowed;
};

/// For records of lumiMorphAdvInit: the flags are the first pass's alone. `hasMode`: the value has a mode that its
/// image type accepts.
constexpr CompoundBorders ordinaryBorders(LumiBorderType value, bool hasMode)
{
    const bool needsNone = hasAllSidesInMemory(value) && !isMorphologyMode(value);
    return {Border(withStageFlags(value)), Border(hasMode ? value & 15 : lumBorderNeutral),
            isMorphologyRange(value) && (hasMode || needsNone)};
}

/// For records of lumiMorphInit_L: the stage flags are the first pass's alone.
constexpr CompoundBorders largeBorders(LumiBorderType value, bool hasMode)
{
    const bool needsNone = hasAllSidesInMemory(value) && !isMorphologyMode(value);
    const LumiBorderType both = (hasMode ? value & 15 : lumBorderNeutral) | (value & lumBorderInMem);
    return {Border(withStageFlags(value & ~15) | both), Border(both),
            isMorphologyRange(value) && (hasMode || needsNone)};
}

/// Gradients with a record of lumiMorphAdvInit use the whole value for both passes, and it cannot be neutral.
constexpr bool isGradientBorder(LumiBorderType value, bool hasMode)
{
    constexpr Lum32u largest = 255;
    return static_cast<Lum32u>(value) <= largest &&
           (value == lumBorderInMem || (hasMode && (value & 15) != lumBorderNeutral));
}

/// How far the first pass's image goes beyond the ROI, where that is to find pixels of its own there.
struct Growth
{
    int64_t left = 0, right = 0, top = 0, bottom = 0;

    /// The first pass covers what the second one sees of a side in memory.
    constexpr Growth where(const Border& second) const
    {
        return {second.left ? left : 0, second.right ? right : 0, second.top ? top : 0, second.bottom ? bottom : 0};
    }

    constexpr LumiSizeL grown(LumiSizeL roi) const
    {
        return {roi.width + left + right, roi.height + top + bottom};
    }
};

}  // namespace lumcv
