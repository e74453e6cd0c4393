// First derivatives of a whole image, for the families that stand on them: corners, Canny, optical flow.
//
// Each is a step along the row and a step across the rows; s are the pixels of a row and r the results of the row step,
// indexed from the mask's centre:
//
//   mask 33      along the row            across the rows
//   SobelX       s[-1] - s[1]             r[-1] + r[1] + 2 * r[0]
//   SobelY       s[-1] + s[1] + 2 * s[0]  r[1] - r[-1]
//   ScharrX      s[1] - s[-1]             3 * (r[-1] + r[1]) + 10 * r[0]
//   ScharrY      3 * (s[-1] + s[1]) + 10 * s[0]  r[1] - r[-1]
//   SobelXNeg    s[1] - s[-1]             r[-1] + r[1] + 2 * r[0]
//
//   mask 55, with difference(t) = t[-2] + 2 * t[-1] - 2 * t[1] - t[2]
//                 negated(t)    = t[2] + 2 * t[1] - 2 * t[-1] - t[-2]
//                 smoothed(t)   = t[-2] + t[2] + 6 * t[0] + 4 * (t[-1] + t[1])
//   SobelX       difference(s)            smoothed(r)
//   SobelY       smoothed(s)              negated(r)
//   SobelXNeg    negated(s)               smoothed(r)
//
// SobelX is the left side minus the right one, against the sense of all others; callers rely on that. The integer form
// is exact. The float form computes the steps as they are written, from left to right, each operation rounded by
// itself.
//
// Outside the ROI the border is that of the filters: sides in memory are read as far as the mask reaches, the others
// are replicated, mirrored (bouncing between the edges where the mask is wider than the ROI) or constant; a row above
// or below a constant border is constant over its whole length. Source and destination do not overlap.
//
// Checks, in this order: lumErrNullPointer (pSrc, pDst, pBuffer), lumErrSize, lumErrStepAlignment (32f: both strides,
// 8u16s: dstStep), lumErrMaskSize (Scharr: anything but lumMask3x3), lumErrBorder. Strides are not held against the
// width; the caller has done so.
#pragma once

#include <cstdint>

#include "lumcv/types.h"

namespace lumcv {

enum LumDerivCode : Lum32s
{
    lumDerivSobelX = 0,
    lumDerivSobelY = 1,
    lumDerivScharrX = 2,
    lumDerivScharrY = 3,
    lumDerivSobelXNeg = 10
};

LumStatus lumDerivFilter_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                             LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer,
                             LumDerivCode code);
LumStatus lumDerivFilter_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                               LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer,
                               LumDerivCode code);

// The entries with the code bound.

LumStatus lumDerivSobelX_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                             LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer);
LumStatus lumDerivSobelY_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                             LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer);
LumStatus lumDerivScharrX_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                              LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer);
LumStatus lumDerivScharrY_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                              LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer);
LumStatus lumDerivSobelXNeg_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                LumiMaskSize mask, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer);
LumStatus lumDerivSobelX_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                               LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer);
LumStatus lumDerivSobelY_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                               LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer);
LumStatus lumDerivScharrX_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                                LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer);
LumStatus lumDerivScharrY_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                                LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer);
LumStatus lumDerivSobelXNeg_8u16s(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiMaskSize mask, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer);

/// The scratch of all codes, in bytes. With W and H the size, M the larger of both, A() rounding up to 32,
/// t = 3 * (M + 2) for mask 33 and 7 * (M + 4) for mask 55, it is A(v) + 32, where
///   8u source    v = t
///   other        v = A(t * e) + A(4 * W) * 2 * s + A((W + H) * 2 * s * e),
///                e the bytes of an element: 2 (16s) or 4 (32f), s = 1 for mask 33 and 2 for mask 55
///
/// Checks, in this order: lumErrNullPointer, lumErrSize, lumErrMaskSize; lumErrDataType unless 32f goes to 32f, or 8u
/// or 16s to 16s; lumErrChannels unless there is one; lumErrSizeTooLarge if the size exceeds 31 bits.
LumStatus lumDerivGetBufferSize(LumiSize roiSize, LumiMaskSize mask, LumDataType srcType, LumDataType dstType,
                                Lum32s numChannels, Lum32s* pBufferSize);

/// The size itself, for arguments that pass.
int64_t derivativeScratch(LumiSizeL roiSize, LumiMaskSize mask, LumDataType srcType);

/// The same; but first of all a 16s source is lumErrDataType.
LumStatus lumDerivSobelXGetBufferSize(LumiSize roiSize, LumiMaskSize mask, LumDataType srcType, LumDataType dstType,
                                      Lum32s numChannels, Lum32s* pBufferSize);

/// The same; but first of all any mask but lumMask3x3 is lumErrMaskSize.
LumStatus lumDerivScharrGetBufferSize(LumiSize roiSize, LumiMaskSize mask, LumDataType srcType, LumDataType dstType,
                                      Lum32s numChannels, Lum32s* pBufferSize);

}  // namespace lumcv
