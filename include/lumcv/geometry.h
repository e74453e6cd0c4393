/**
 * @file
 * @brief Lens undistortion, subpixel copies, samples of a line, and the gray gradient.
 */
#ifndef LUMCV_GEOMETRY_H
#define LUMCV_GEOMETRY_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup undistort Lens undistortion
 * @brief Images, or maps of coordinates, without the distortion of the lens.
 *
 * @{
 */

/** @} */

/**
 * @defgroup subpixel Subpixel copy
 * @brief Rectangles at a fractional offset.
 *
 * @{
 */

/** @} */

/**
 * @defgroup sample_line Line sampling
 * @brief The pixels of a straight line.
 *
 * The pixels from `pt1` to `pt2`, both included, are copied one behind the other to `pDst`. With `ax` and `ay` the
 * distances of the points in x and in y, the longer one is `major` and the shorter `minor`; the major axis is x if
 * `ax > ay`, otherwise y. There are `major + 1` samples, one at each step of the major axis towards `pt2`. Between two
 * samples the minor axis is stepped as well wherever the integer error falls below zero:
 *
 *     e = major
 *     before each step:  e = e - 2 * minor;  if e < 0 { step the minor axis;  e = e + 2 * major }
 *
 * The result does not depend on the width of any number; all points of a ROI may be ends. Pixels of three channels are
 * copied whole. The destination must not overlap the source.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: `srcStep` is smaller than a row in bytes. It need not be a multiple of the size of an element.
 * 4. #lumErrOutOfRange: a point is not a pixel of the ROI.
 *
 * @{
 */

/**
 * Copies the pixels of a line, of one channel of bytes.
 *
 * @param pSrc    first pixel of the source
 * @param srcStep stride of the source, in bytes
 * @param roiSize size of the ROI, in pixels
 * @param pDst    receives `max(|pt2.x - pt1.x|, |pt2.y - pt1.y|) + 1` pixels
 * @param pt1     the first pixel of the line
 * @param pt2     the last pixel of the line
 * @retval lumOk             the samples have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        the stride is smaller than a row
 * @retval lumErrOutOfRange  a point is not a pixel of the ROI
 */
LUMCV_API LumStatus lumiSampleLine_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum8u* pDst,
                                          LumiPoint pt1, LumiPoint pt2);

/**
 * Copies the pixels of a line, of three channels of bytes.
 * @copydetails lumiSampleLine_8u_C1R
 */
LUMCV_API LumStatus lumiSampleLine_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum8u* pDst,
                                          LumiPoint pt1, LumiPoint pt2);

/**
 * Copies the pixels of a line, of one channel of words.
 * @copydetails lumiSampleLine_8u_C1R
 */
LUMCV_API LumStatus lumiSampleLine_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum16u* pDst,
                                           LumiPoint pt1, LumiPoint pt2);

/**
 * Copies the pixels of a line, of three channels of words.
 * @copydetails lumiSampleLine_8u_C1R
 */
LUMCV_API LumStatus lumiSampleLine_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum16u* pDst,
                                           LumiPoint pt1, LumiPoint pt2);

/**
 * Copies the pixels of a line, of one channel of floats.
 * @copydetails lumiSampleLine_8u_C1R
 */
LUMCV_API LumStatus lumiSampleLine_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pDst,
                                           LumiPoint pt1, LumiPoint pt2);

/**
 * Copies the pixels of a line, of three channels of floats.
 * @copydetails lumiSampleLine_8u_C1R
 */
LUMCV_API LumStatus lumiSampleLine_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pDst,
                                           LumiPoint pt1, LumiPoint pt2);

/** @} */

/**
 * @defgroup gray_gradient Gray gradient
 * @brief A gradient of three channels, folded into one by a norm.
 *
 * With `a`, `b`, `c` the three channels of a pixel, the result is:
 *
 * | Norm | 8u | 16u | 32f |
 * |---|---|---|---|
 * | #lumGradNormInf | `max(a, b, c)` | `max(a, b, c)` | `max(abs(a), abs(b), abs(c))` |
 * | #lumGradNormL1 | `(s * 1365 + 2048) >> 12` | `(s * 5461 + 8192) >> 14` | `abs(a) + abs(b) + abs(c)` |
 * | #lumGradNormL2 | `sqrt(q * 0.33333334f)` | `sqrt(q * 0.33333334f)` | `sqrt(q * 0.33333334f)` |
 *
 * where `s = a + b + c` and `q = a * a + b * b + c * c`.
 *
 * Of the integer types, #lumGradNormL1 is about a third of the sum (the largest pixel gives 255 of bytes and 65531 of
 * words); of floats it is the sum. #lumGradNormL2 is a root of a mean for all types. For integers the sum of squares is
 * exact, becomes the nearest Lum32f, is multiplied and its root taken in single precision; the result is rounded to the
 * nearest integer, ties to even. For floats every product and sum is rounded to single precision, from left to right,
 * and nothing is fused. `max(x, y, z)` of floats is `max(max(x, y), z)`, with `max(x, y)` being `x > y ? x : y`.
 *
 * **Overlap.** Source and destination may overlap in any way: the result is the one of a plain loop over the pixels,
 * row after row, each from left to right. With `pDst` at `pSrc` the image is folded in place.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: `srcStep` is smaller than three elements for each pixel, or `dstStep` smaller than one.
 * 4. #lumErrStepAlignment: a stride is not a multiple of the size of an element.
 * 5. #lumErrArgument: `norm` is none of those in the table.
 *
 * @{
 */

/** The norms of the gray gradient, values of LumiDistanceNorm. */
enum
{
    lumGradNormInf = 0, /**< the largest magnitude */
    lumGradNormL1 = 1,  /**< the sum of magnitudes, or a third of it */
    lumGradNormL2 = 2   /**< the root of the mean square */
};

/**
 * Folds three channels of bytes into one.
 *
 * @param pSrc    first pixel of the source, of three channels
 * @param srcStep stride of the source, in bytes
 * @param pDst    first pixel of the destination, of one channel
 * @param dstStep stride of the destination, in bytes
 * @param roiSize size of the ROI, in pixels
 * @param norm    #lumGradNormInf, #lumGradNormL1 or #lumGradNormL2
 * @retval lumOk             the destination has been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row
 * @retval lumErrArgument    the norm is not allowed
 */
LUMCV_API LumStatus lumiGradientColorToGray_8u_C3C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, LumiDistanceNorm norm);

/**
 * Folds three channels of words into one.
 * @copydetails lumiGradientColorToGray_8u_C3C1R
 * @retval lumErrStepAlignment a stride is odd
 */
LUMCV_API LumStatus lumiGradientColorToGray_16u_C3C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                      LumiSize roiSize, LumiDistanceNorm norm);

/**
 * Folds three channels of floats into one.
 * @copydetails lumiGradientColorToGray_8u_C3C1R
 * @retval lumErrStepAlignment a stride is not a multiple of 4
 */
LUMCV_API LumStatus lumiGradientColorToGray_32f_C3C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                      LumiSize roiSize, LumiDistanceNorm norm);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
