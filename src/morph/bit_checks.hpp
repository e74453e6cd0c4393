// What the functions of 1-bit images accept, and in which order they test it.
#pragma once

#include "morph/bit_pass.hpp"
#include "morph/pass_checks.hpp"

namespace lumcv {

/// The modes of morphology without mirror.
constexpr bool isBitMode(LumiBorderType value)
{
    return isMorphologyMode(value) && (value & 15) != lumBorderMirror;
}

inline Checks bitImageChecks(Checks checks, BitOperand<const Lum8u> src, BitOperand<Lum8u> dst, LumiSizeL roiSize)
{
    return checks.require(src.bitOffset >= 0 && dst.bitOffset >= 0, lumErrSize).size(roiSize);
}

/// The offset does not count.
inline Checks bitStepChecks(Checks checks, BitOperand<const Lum8u> src, BitOperand<Lum8u> dst, LumiSizeL roiSize)
{
    // a width above 31 bits has failed before
    const int64_t rowBytes = roiSize.width <= INT_MAX ? (roiSize.width + 7) >> 3 : INT_MAX;
    return checks.require(rowBytes <= src.step && rowBytes <= dst.step, lumErrStep);
}

/// The upper limits of the 64-bit functions.
inline LumStatus bitLimits(LumiSizeL roiSize, int64_t srcStep, int64_t dstStep)
{
    return Checks{}
        .require(roiSize.width <= largestLength && roiSize.height <= largestLength && srcStep <= largestLength &&
                     dstStep <= largestLength,
                 lumErrSizeTooLarge)
        .status();
}

}  // namespace lumcv
