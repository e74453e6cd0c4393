// The box filter: each pixel becomes the mean of a window, at a cost that does not grow with the window's width.
//
// The window of maskSize has left = (maskSize.width - 1) / 2 columns before the pixel and the rest behind it, and
// likewise above = (maskSize.height - 1) / 2 rows above it. With p the pixels of the image and its border, all in
// single precision, each operation rounded by itself:
//
//   column(x) of row y   p[y - above][x] + p[y - above + 1][x] + ... , from top to bottom
//   sum(0)               column(-left) + column(-left + 1) + ... , from left to right
//   sum(x)               sum(x - 1) + column(x - left + maskSize.width - 1) - column(x - left - 1), from left to right
//   the result           sum(x) * (1.0f / (height * width)), the sizes of the window converted to Lum32f first
//
// A window of 1 by 1 copies. Outside the ROI the border is that of the filters: sides in memory are read as far as the
// window reaches, the others are replicated, mirrored (bouncing between the edges where the window is wider than the
// ROI) or constant; a row above or below a constant border is constant over its whole length. Source and destination do
// not overlap.
//
// Checks, in this order: lumErrNullPointer (pSrc, pDst, pBuffer), lumErrStep (a stride not above 0), lumErrSize,
// lumErrMaskSize (a side of the window below 1), lumErrBorder, lumErrNullPointer (pBorderValue, for lumBorderConstant).
#pragma once

#include <cstdint>

#include "lumcv/types.h"

namespace lumcv {

LumStatus lumBoxFilter_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                           LumiSize maskSize, LumiBorderType borderType, const Lum32f* pBorderValue, Lum8u* pBuffer);

/// The output rows whose running sums are in flight at once.
inline constexpr int boxRows = 8;

/// Floats from one line of column sums to the next: an odd number of cache lines, so that the lines do not compete for
/// the same cache sets.
constexpr int64_t boxLinePitch(int64_t width, int64_t maskWidth)
{
    constexpr int64_t lineFloats = 64 / sizeof(Lum32f);
    return ((width + maskWidth - 1 + lineFloats - 1) / lineFloats | 1) * lineFloats;
}

/// The scratch of lumBoxFilter_32f, in bytes, at any address: a line for each row in flight. Its arguments are valid.
constexpr int64_t boxFilterScratch(LumiSize roiSize, LumiSize maskSize)
{
    return boxRows * boxLinePitch(roiSize.width, maskSize.width) * static_cast<int64_t>(sizeof(Lum32f)) + 63;
}

}  // namespace lumcv
