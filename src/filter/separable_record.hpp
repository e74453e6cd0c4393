// The separable filter's record and the size of its scratch.
#pragma once

#include <cstdint>

#include "frame/byte_counts.hpp"
#include "lumcv/filter.h"

namespace lumcv {

/// The head of the record; the kernels X and Y follow at once. A block stands at any byte address, so it is copied in
/// and out.
struct SeparableHeader
{
    Lum32s kernelType;  ///< one of kernelOfWords, kernelOfFloats
    Lum32s kernelWidth, kernelHeight;
    Lum32s divisor;      ///< 1 for floats
    Lum32s scaleFactor;  ///< 0 for floats; nothing depends on it
    Lum32s reserved[3];
    const Lum8u* pKernelX;
    const void* reservedPointer;
    const Lum8u* pKernelY;
    Lum32s numChannels;
    Lum32s padding;
};

static_assert(sizeof(SeparableHeader) == 64);

inline constexpr Lum32s kernelOfWords = 0;
inline constexpr Lum32s kernelOfFloats = 1;

/// Bytes of scratch.
Bytes separableScratch(int64_t width, LumiSize kernelSize, int64_t elementSize, int64_t channels);

}  // namespace lumcv
