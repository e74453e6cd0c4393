// The Gaussian filter's records and sizes: what Init lays and apply reads.
#pragma once

#include <cstdint>

#include "frame/rounding.hpp"
#include "lumcv/filter.h"

namespace lumcv {

/// The five words at the head of both records. A block stands at any byte address, so they are copied in and out.
struct GaussianHeader
{
    Lum32s kernelSize;
    Lum32s tableOffset;  ///< tells the records apart
    Lum32s dataType;
    Lum32s borderType;
    Lum32s tapShift;  ///< fractional bits of the first record's taps; 0 in the second
};

inline constexpr Lum32s tableOffsetOfFirst = 20;
inline constexpr Lum32s tableOffsetOfSecond = 64;

/// The record that apply works on: the second of a block of lumiFilterGaussianInit, the only one of
/// lumiFilterGaussianInit_L. taps[i], for i < kernelSize / 2, is the weight at distance kernelSize / 2 - i from the
/// centre, taps[kernelSize / 2] the centre's.
struct GaussianKernel
{
    GaussianHeader header;
    const Lum32f* taps;
};

constexpr bool isGaussianKernelSize(Lum32s kernelSize)
{
    return kernelSize >= 3 && kernelSize % 2 == 1;
}

GaussianKernel gaussianKernel(const LumFilterGaussianSpec* pSpec);

/// Bytes from one row of the ring to the next.
constexpr int64_t gaussianRingPitch(int64_t width, int channels)
{
    return roundedUp(4 * width * channels, 64);
}

/// Bytes that apply works in: a ring of kernelSize rows of floats and one more row, which has room for a source row
/// with its borders.
constexpr int64_t gaussianScratch(int64_t width, int64_t kernelSize, int channels)
{
    return (kernelSize + 1) * gaussianRingPitch(width, channels) + 12 * kernelSize + 64;
}

}  // namespace lumcv
